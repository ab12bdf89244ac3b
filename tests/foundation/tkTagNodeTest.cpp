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
    EXPECT_EQ(record.toText(0),
              "<record>\n"
              "\t<date>1/3/5</date>\n"
              "\t<time>\n"
              "\t\t<start>1700000000000</start>\n"
              "\t\t<running>true</running>\n"
              "\t</time>\n"
              "\t<description>a&lt;b&amp;c&gt;d</description>\n"
              "</record>");
    EXPECT_EQ(time->toText(1),
              "<time>\n\t\t<start>1700000000000</start>\n"
              "\t\t<running>true</running>\n\t</time>");

    tkTagNode a("a");
    a.setText("T");
    a.addChild("b", "1");
    EXPECT_EQ(a.toText(0), "<a>\n\t<b>1</b>\nT</a>");
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
        {"\"q\"\t\n\xc3\xa9", "\"q\"\t\n\xc3\xa9"},
    };
    for (const auto& [text, escaped] : roundTrips) {
        EXPECT_EQ(tkTagNode::escape(text), escaped) << "text: " << text;
        EXPECT_EQ(tkTagNode::unescape(escaped), text) << "text: " << text;
    }
    EXPECT_EQ(tkTagNode::unescape("&quot;&#60;& x"), "&quot;&#60;& x");
}

// Typed values are written in decimal and lower-case booleans; read back, anything missing or
// unreadable gives the caller's default, and only the writer's own spellings are booleans.
TEST(tkTagNode, TypedChildrenWriteDecimalAndReadBackWithFallbacks) {
    tkTagNode node("n");
    node.addChild("text", "literal");  // a string literal must not become a bool
    node.addChild("no", false);
    node.addChild("i32", int32_t{-7});
    node.addChild("u64", UINT64_MAX);
    node.addChild("u32", uint32_t{4000000000u});
    node.addChild("number", "12abc");
    node.addChild("empty", "");
    node.addChild("shout", "TRUE");
    node.addChild("padded", " true");
    const std::vector<std::string> written = {"literal", "false", "-7", "18446744073709551615",
                                              "4000000000"};
    for (int32_t i = 0; i < 5; ++i) {
        EXPECT_EQ(node.childAt(i)->text(), written[i]) << node.childAt(i)->name();
    }
    EXPECT_EQ(node.childLong("number", 9), 12);
    EXPECT_EQ(node.childLong("text", 9), 9);
    EXPECT_EQ(node.childLong("empty", 9), 9);
    EXPECT_EQ(node.childLongLong("missing", -1), -1);
    EXPECT_FALSE(node.childBool("no", true));
    EXPECT_TRUE(node.childBool("shout", true));
    EXPECT_FALSE(node.childBool("shout", false));
    EXPECT_FALSE(node.childBool("padded", false));
    EXPECT_TRUE(node.childBool("missing", true));
    EXPECT_EQ(node.childText("missing", "d"), "d");
    EXPECT_EQ(node.childText("empty", "d"), "");  // found, so its empty text wins
}

// Only the first child of a name is found, whatever the case of either name; later ones are
// reached by position.
TEST(tkTagNode, LookupFindsTheFirstChildOfANameInAnyCase) {
    tkTagNode node("timer");
    node.addChild("Time", "1");
    node.addChild("TIME", "2");
    ASSERT_NE(node.findChild("TIME"), nullptr);
    EXPECT_EQ(node.findChild("time")->text(), "1");
    EXPECT_EQ(node.childAt(1)->text(), "2");
    EXPECT_FALSE(node.hasChild("tim"));
    EXPECT_EQ(node.detachChild(0)->text(), "1");
    EXPECT_EQ(node.childText("time", ""), "2");
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
