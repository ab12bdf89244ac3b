#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "foundation/tkMalformedFileException.h"
#include "foundation/tkStrings.h"
#include "foundation/tkTagNode.h"
#include "foundation/tkTagParser.h"
#include "tests/support/tkThrown.h"

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

namespace {

std::unique_ptr<tkTagNode> parse(const std::string& text) {
    return tkTagParser().parse(text);
}

// The whole tree in one string, lengths first so that no text can pass for structure: equal
// dumps are equal trees.
std::string dump(const tkTagNode& node) {
    std::string out = intToString(node.name().size()) + ":" + node.name() + " " +
                      intToString(node.text().size()) + ":" + node.text() + " [";
    for (int32_t i = 0; i < node.childCount(); ++i) {
        out += dump(*node.childAt(i)) + ",";
    }
    return out + "]";
}

}  // namespace

// Each input with the tree it gives, written back by the writer (which re-escapes the text).
TEST(tkTagParser, ReadsElementsTextAndNamesAsWritten) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        // Text without an element gives a nameless node.
        {"", ""},
        {"just &lt;text&gt; &amp; more\n", "just &lt;text&gt; &amp; more\n"},
        {"<a>b</a>", "<a>b</a>"},
        // Closing tags match in any case; the name keeps the case it was written in.
        {"<A>x</a>", "<A>x</A>"},
        {"<?xml version=\"1.0\"?><a>1</a>", "<a>1</a>"},
        {"<a>  x\n\t </a>", "<a>  x\n\t </a>"},  // leaf text is kept to the byte
        {"junk\n<a>1</a>\ntail", "<a>1</a>"},    // what stands outside the element is dropped
        // No attributes, nothing self-closing: it's all the name.
        {"<a b=\"c\">x</A B=\"c\">", "<a b=\"c\">x</a b=\"c\">"},
        {"<a/>x</a/>", "<a/>x</a/>"},
        // A "<" with no ">" behind it inside the element is text.
        {"<a>1 < 2</a>", "<a>1 &lt; 2</a>"},
        {"<a>x > y & z</a>", "<a>x &gt; y &amp; z</a>"},
        {"<a>&amp;lt;</a>", "<a>&amp;lt;</a>"},
        {"<a>a&lt;b&amp;c&gt;d</a>", "<a>a&lt;b&amp;c&gt;d</a>"},
        // Only leaves keep text; a processing instruction is a tag too.
        {"<a>x<b>1</b>y</a>", "<a>\n\t<b>1</b>\n</a>"},
        {"<r>text<?pi?></r>", "<r></r>"},
        {"<timer><Time>5</TIME><?skip?><job numbers><x>1</x></job numbers></timer>",
         "<timer>\n\t<Time>5</Time>\n\t<job numbers>\n\t\t<x>1</x>\n\t</job numbers>\n</timer>"},
        // Several outer elements stay under the nameless root.
        {"<a>1</a><b>2</b>", "\n\t<a>1</a>\n\t<b>2</b>"},
    };
    for (const auto& [input, written] : cases) {
        EXPECT_EQ(parse(input)->toText(0), written) << "input: " << input;
    }
    EXPECT_EQ(parse("just &lt;text&gt;")->text(), "just <text>");
    EXPECT_EQ(parse("<a>&amp;lt;</a>")->text(), "&lt;");
}

// Every tag without a partner is the one failure of the scanner, reported with the tag as
// written; the parser can be used again after it.
TEST(tkTagParser, AnUnmatchedTagIsAMalformedFile) {
    struct Case {
        std::string input, tag;
    };
    const std::vector<Case> cases = {
        {"<a><b>1</b>", "a"},
        {"<a><a>x</a></a>", "a"},  // the first closing tag ends the outer a
        {"<r><!-- note --></r>", "!-- note --"},
        {"</a>", "/a"},
        {"<a/>", "a/"},
        {"<r><Item>1</Item><x>2</r>", "x"},
        {"<>", ""},
        // A tag from a broken or hostile file is quoted clipped and escaped.
        {"<x\x01\xff" + std::string(100, 'y') + ">", "x\\x01\\xff" + std::string(57, 'y') + "..."},
    };
    tkTagParser parser;
    for (const auto& c : cases) {
        std::string log;
        const std::string message = "File has unmatched " + c.tag + " tag.";
        EXPECT_EQ(thrown<tkMalformedFileException>([&] { parser.parse(c.input); }, &log),
                  "Malformed file|" + message)
            << "input: " << c.input;
        EXPECT_EQ(log, "tkException Malformed file thrown: " + message + "\n") << c.input;
        EXPECT_EQ(parser.parse("<ok>1</ok>")->text(), "1") << "after input: " << c.input;
    }
}

// However deep a hostile file nests, it is read whole, without recursion.
TEST(tkTagParser, DeepNestingIsReadWhole) {
    constexpr int kDepth = 100000;
    std::string text;
    for (int i = 0; i < kDepth; ++i) {
        text += "<n" + std::to_string(i) + ">";
    }
    text += "leaf";
    for (int i = kDepth; i-- > 0;) {
        text += "</N" + std::to_string(i) + ">";
    }
    auto node = parse(text);
    int depth = 1;
    const tkTagNode* at = node.get();
    for (; at->childCount() == 1; at = at->childAt(0)) {
        ++depth;
    }
    EXPECT_EQ(depth, kDepth);
    EXPECT_EQ(at->text(), "leaf");
}

// What the writer writes (names with blanks and odd characters, text with every character the
// format treats specially, empty leaves) reads back as the same tree and the same bytes.
TEST(tkTagParser, ReadsBackWhatTheWriterWrote) {
    tkTagNode root("job numbers");
    tkTagNode* inner = root.addChild(std::make_unique<tkTagNode>("A b-c.9_"));
    inner->addChild("x", " <b>&amp;</a> \t\n\"'?/ \xc3\xa9 ");
    inner->addChild("X Y", "");
    inner->addChild(std::make_unique<tkTagNode>("deeper"))->addChild("z", "&lt;&gt;;");
    root.addChild("last", "\n");
    const std::string text = root.toText(0);
    const auto back = tkTagParser().parse(text);
    EXPECT_EQ(dump(*back), dump(root)) << text;
    EXPECT_EQ(back->toText(0), text);
}
