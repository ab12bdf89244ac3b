#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "foundation/tkTagNode.h"

// The writer's layout keeps values exact and files readable: each child behind a newline and
// one more tab than its parent's depth, a leaf on one line, the closing tag at the indent of
// its opening tag; text beside children goes last, and a nameless node writes no tags.
TEST(tkTagNode, WriterIndentsChildrenOneTabDeeperAndClosesAtTheParentIndent) {
    tkTagNode record("record");
    record.addChild("date", "1/3/5");
    tkTagNode* time = record.addChild(std::make_unique<tkTagNode>("time"));
    time->addChild("start", int64_t{1700000000000});
    time->addChild("running", true);
    record.addChild("description", "a<b&c>d");
    record.setText("T");
    EXPECT_EQ(record.toText(0),
              "<record>\n"
              "\t<date>1/3/5</date>\n"
              "\t<time>\n"
              "\t\t<start>1700000000000</start>\n"
              "\t\t<running>true</running>\n"
              "\t</time>\n"
              "\t<description>a&lt;b&amp;c&gt;d</description>\n"
              "T</record>");
    EXPECT_EQ(time->toText(1),
              "<time>\n\t\t<start>1700000000000</start>\n"
              "\t\t<running>true</running>\n\t</time>");
    tkTagNode root;
    root.addChild("a", "1");
    root.setText("tail");
    EXPECT_EQ(root.toText(0), "\n\t<a>1</a>tail");
}

TEST(tkTagNode, EscapeAndUnescapeWorkInTheirOrders) {
    const std::vector<std::pair<std::string, std::string>> roundTrips = {
        {"a<b&c>d", "a&lt;b&amp;c&gt;d"},
        {"&lt;", "&amp;lt;"},
        {"&amp;gt;", "&amp;amp;gt;"},
        {"\"q\"\t\n\xc3\xa9", "\"q\"\t\n\xc3\xa9"}};
    for (const auto& [text, escaped] : roundTrips) {
        EXPECT_EQ(tkTagNode::escape(text), escaped) << "text: " << text;
        EXPECT_EQ(tkTagNode::unescape(escaped), text) << "text: " << text;
    }
    EXPECT_EQ(tkTagNode::unescape("&quot;&#60;& x"), "&quot;&#60;& x");
}

// Typed values are written in decimal and lower-case booleans; read back, anything missing or
// unreadable gives the caller's default, and only the writer's own spellings are booleans.
// Only the first child of a name is found, whatever the case of either name.
TEST(tkTagNode, TypedChildrenWriteDecimalAndReadBackWithFallbacks) {
    tkTagNode node("n");
    node.addChild("text", "literal");  // a string literal must not become a bool
    node.addChild("no", false);
    node.addChild("i32", int32_t{-7});
    node.addChild("u64", UINT64_MAX);
    node.addChild("u32", uint32_t{4000000000u});
    for (const char* name : {"number", "NUMBER"}) {
        node.addChild(name, "12abc");
    }
    node.addChild("empty", "");
    node.addChild("shout", "TRUE");
    node.addChild("padded", " true");
    std::string written;
    for (int32_t i = 0; i < 5; ++i) {
        written += node.childAt(i)->text() + " ";
    }
    EXPECT_EQ(written, "literal false -7 18446744073709551615 4000000000 ");
    EXPECT_EQ(std::to_string(node.childLong("Number", 9)) + " " +
                  std::to_string(node.childLong("text", 9)) + " " +
                  std::to_string(node.childLong("empty", 9)) + " " +
                  std::to_string(node.childLongLong("missing", -1)),
              "12 9 9 -1");
    const auto flag = [&node](const char* name, bool fallback) {
        return node.childBool(name, fallback) ? 'T' : 'F';
    };
    EXPECT_EQ((std::string{flag("no", true), flag("shout", true), flag("shout", false),
                           flag("padded", false), flag("missing", true)}),
              "FTFFT");
    EXPECT_EQ(node.childText("missing", "d"), "d");
    EXPECT_EQ(node.childText("empty", "d"), "");  // found, so its empty text wins
    node.childAt(5)->setText("first");
    EXPECT_EQ(node.findChild("number")->text(), "first");
    EXPECT_FALSE(node.hasChild("numbe"));
    node.detachChild(5);
    EXPECT_EQ(node.childText("number", ""), "12abc");
}

// A long chain of nested nodes, as a hostile file could produce, is taken apart without
// recursing once per level.
TEST(tkTagNode, DestroysAVeryDeepChainWithoutExhaustingTheStack) {
    auto root = std::make_unique<tkTagNode>("n");
    tkTagNode* tip = root.get();
    for (int i = 0; i < 200'000; ++i) {
        tip = tip->addChild(std::make_unique<tkTagNode>("n"));
    }
    root.reset();
    EXPECT_EQ(root, nullptr);
}
