#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "foundation/tkMalformedFileException.h"
#include "foundation/tkStrings.h"
#include "foundation/tkTagNode.h"
#include "foundation/tkTagParser.h"
#include "tests/support/tkStdoutCapture.h"

namespace {

std::unique_ptr<tkTagNode> parse(const std::string& text) {
    tkTagParser parser;
    return parser.parse(text);
}

// The whole tree in one string, lengths first so that no text can pass for
// structure: equal dumps are equal trees.
std::string dump(const tkTagNode& node) {
    std::string out = intToString(node.name().size()) + ":" + node.name() + " " +
                      intToString(node.text().size()) + ":" + node.text() + " [";
    for (int32_t i = 0; i < node.childCount(); ++i) {
        out += dump(*node.childAt(i)) + ",";
    }
    return out + "]";
}

}  // namespace

TEST(tkTagParser, TextWithoutAnElementGivesANamelessNode) {
    auto empty = parse("");
    EXPECT_EQ(empty->name(), "");
    EXPECT_EQ(empty->childCount(), 0);
    EXPECT_EQ(empty->text(), "");

    auto text = parse("just &lt;text&gt; &amp; more\n");
    EXPECT_EQ(text->name(), "");
    EXPECT_EQ(text->childCount(), 0);
    EXPECT_EQ(text->text(), "just <text> & more\n");
}

TEST(tkTagParser, ASingleOuterElementIsTheResult) {
    struct Case {
        std::string input, name, text;
    };
    const std::vector<Case> cases = {
        {"<a></a>", "a", ""},
        {"<a>b</a>", "a", "b"},
        // Closing tags match in any case; the name keeps the case it was
        // written in.
        {"<A>x</a>", "A", "x"},
        {"<?xml version=\"1.0\"?><a>1</a>", "a", "1"},
        // Leaf text is kept to the byte.
        {"<a>  x\n\t </a>", "a", "  x\n\t "},
        // Whatever stands outside the element is dropped.
        {"junk\n<a>1</a>\ntail", "a", "1"},
        // No attributes, nothing self-closing: it's all the name.
        {"<a b=\"c\">x</A B=\"c\">", "a b=\"c\"", "x"},
        {"<a/>x</a/>", "a/", "x"},
        {"<job numbers>7</job numbers>", "job numbers", "7"},
        // A "<" with no ">" behind it inside the element is text; the ">" of
        // the closing tag is not behind it within the element.
        {"<a>1 < 2</a>", "a", "1 < 2"},
        {"<a>x > y & z</a>", "a", "x > y & z"},
        {"<a>&amp;lt;</a>", "a", "&lt;"},
        {"<a>a&lt;b&amp;c&gt;d</a>", "a", "a<b&c>d"},
    };
    for (const auto& c : cases) {
        auto node = parse(c.input);
        EXPECT_EQ(node->name(), c.name) << "input: " << c.input;
        EXPECT_EQ(node->text(), c.text) << "input: " << c.input;
        EXPECT_EQ(node->childCount(), 0) << "input: " << c.input;
    }
}

TEST(tkTagParser, OnlyLeavesKeepText) {
    auto a = parse("<a>x<b>1</b>y</a>");
    EXPECT_EQ(a->text(), "");
    ASSERT_EQ(a->childCount(), 1);
    EXPECT_EQ(a->childAt(0)->text(), "1");

    // A processing instruction is a tag too: the level holds no text.
    auto r = parse("<r>text<?pi?></r>");
    EXPECT_EQ(r->text(), "");
    EXPECT_EQ(r->childCount(), 0);
}

TEST(tkTagParser, ChildrenAreFoundInAnyCaseAndInOrder) {
    auto timer = parse(
        "<?xml?>\n<timer>\n\t<Time>5</TIME>\n\t<?skip me?>\n\t<time>6</time>\n"
        "\t<job numbers>\n\t\t<x>1</x>\n\t</job numbers>\n</timer>\n");
    EXPECT_EQ(timer->name(), "timer");
    ASSERT_EQ(timer->childCount(), 3);
    EXPECT_EQ(timer->childLong("TIME", 0), 5);
    EXPECT_EQ(timer->childAt(1)->text(), "6");
    ASSERT_NE(timer->findChild("JOB NUMBERS"), nullptr);
    EXPECT_EQ(timer->findChild("job numbers")->childText("x", ""), "1");
}

TEST(tkTagParser, SeveralOuterElementsStayUnderTheNamelessRoot) {
    auto root = parse("<a>1</a><b>2</b>");
    EXPECT_EQ(root->name(), "");
    ASSERT_EQ(root->childCount(), 2);
    EXPECT_EQ(root->childAt(0)->name(), "a");
    EXPECT_EQ(root->childAt(1)->name(), "b");
    EXPECT_EQ(root->toText(0), "\n\t<a>1</a>\n\t<b>2</b>");
}

// Every tag without a partner is the one failure of the scanner, reported
// with the tag as written.
TEST(tkTagParser, AnUnmatchedTagIsAMalformedFile) {
    struct Case {
        std::string input, tag;
    };
    const std::vector<Case> cases = {
        {"<a><b>1</b>", "a"},
        // The first closing tag ends the outer a, leaving "<a>x" inside.
        {"<a><a>x</a></a>", "a"},
        {"<r><!-- note --></r>", "!-- note --"},
        {"</a>", "/a"},
        {"<a/>", "a/"},
        {"<a b=\"c\">x</a>", "a b=\"c\""},
        {"<r><Item>1</Item><x>2</r>", "x"},
        {"<>", ""},
        // A tag from a broken or hostile file is quoted clipped and escaped.
        {"<x\x01\xff" + std::string(100, 'y') + ">", "x\\x01\\xff" + std::string(57, 'y') + "..."},
    };
    for (const auto& c : cases) {
        tkStdoutCapture out;
        try {
            parse(c.input);
            ADD_FAILURE() << "no failure for input: " << c.input;
        } catch (const tkMalformedFileException& e) {
            EXPECT_EQ(e.name(), "Malformed file") << "input: " << c.input;
            EXPECT_EQ(e.message(), "File has unmatched " + c.tag + " tag.") << "input: " << c.input;
        }
        EXPECT_EQ(out.take(),
                  "tkException Malformed file thrown: File has "
                  "unmatched " +
                      c.tag + " tag.\n")
            << "input: " << c.input;
    }
}

// However deep a hostile file nests, it is read whole, without recursion and
// in time linear in its size.
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
    while (at->childCount() == 1) {
        at = at->childAt(0);
        ++depth;
    }
    EXPECT_EQ(depth, kDepth);
    EXPECT_EQ(at->text(), "leaf");
}

TEST(tkTagParser, CanBeReusedAfterAFailure) {
    tkTagParser parser;
    tkStdoutCapture out;
    EXPECT_THROW(parser.parse("<a><b>1</b><c>"), tkMalformedFileException);
    auto node = parser.parse("<ok>1</ok>");
    EXPECT_EQ(node->name(), "ok");
    EXPECT_EQ(node->text(), "1");
}

namespace {

// Random trees within the writer's promise: names non-empty, without "<" or
// ">", not repeated down a branch in any case; text only on leaves.
class TreeMaker {
  public:
    explicit TreeMaker(uint32_t seed) : _random(seed) {}

    std::unique_ptr<tkTagNode> make() {
        std::vector<std::string> branch;
        return makeNode(0, branch);
    }

  private:
    int pick(int below) { return std::uniform_int_distribution<int>(0, below - 1)(_random); }

    std::string name(const std::vector<std::string>& branch) {
        static const std::string letters =
            "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789 _-.";
        for (;;) {
            std::string result(1, letters[pick(52)]);
            int length = pick(8);
            for (int i = 0; i < length; ++i) {
                result += letters[pick(static_cast<int>(letters.size()))];
            }
            bool repeats = false;
            for (const auto& above : branch) {
                repeats = repeats || toUpperCase(above) == toUpperCase(result);
            }
            if (!repeats) {
                return result;
            }
        }
    }

    std::string text() {
        static const std::vector<std::string> pieces = {
            "a",    "Z",    "7", " ",  "\t", "\n",       "&",    "<",   ">", "&amp;",
            "&lt;", "&gt;", ";", "\"", "'",  "\xc3\xa9", "</a>", "<b>", "?", "/"};
        std::string result;
        int length = pick(12);
        for (int i = 0; i < length; ++i) {
            result += pieces[pick(static_cast<int>(pieces.size()))];
        }
        return result;
    }

    std::unique_ptr<tkTagNode> makeNode(int depth, std::vector<std::string>& branch) {
        auto node = std::make_unique<tkTagNode>(name(branch));
        int children = depth < 4 ? pick(5) : 0;
        if (children == 0) {
            node->setText(text());
            return node;
        }
        branch.push_back(node->name());
        for (int i = 0; i < children; ++i) {
            node->addChild(makeNode(depth + 1, branch));
        }
        branch.pop_back();
        return node;
    }

    std::mt19937 _random;
};

}  // namespace

TEST(tkTagParser, ReadsBackWhatTheWriterWrote) {
    TreeMaker maker(20240601);
    tkTagParser parser;
    for (int i = 0; i < 300; ++i) {
        auto tree = maker.make();
        const std::string text = tree->toText(0);
        auto back = parser.parse(text);
        ASSERT_EQ(dump(*back), dump(*tree)) << "tree " << i << ":\n" << text;
        // And writing it again gives the same bytes.
        ASSERT_EQ(back->toText(0), text) << "tree " << i;
    }
}
