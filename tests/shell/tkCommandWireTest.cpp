#include "shell/tkCommandWire.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "shell/tkCommandSocket.h"

namespace {

using Words = std::vector<std::string>;

TEST(tkCommandWire, RequestsRoundTripAndEveryPrefixIsIncomplete) {
    const Words cases[] = {{}, {kReopenRequest}, {"add", "", "two\nlines", std::string("a\0b", 3)}};
    for (const Words& words : cases) {
        const std::string bytes = encodeRequest(words);
        const tkDecodedRequest whole = decodeRequest(bytes + "trailing");
        ASSERT_EQ(whole.status, tkWireStatus::Complete) << bytes;
        EXPECT_EQ(whole.consumed, bytes.size());
        EXPECT_EQ(whole.words, words);
        for (size_t n = 0; n < bytes.size(); ++n) {
            EXPECT_EQ(decodeRequest(bytes.substr(0, n)).status, tkWireStatus::Incomplete)
                << bytes.substr(0, n);
        }
    }
}

TEST(tkCommandWire, RepliesRoundTripAndOutOfRangeCodesAreClamped) {
    const tkCommandReply reply{3, "out\ntext", "err"};
    const std::string bytes = encodeReply(reply);
    EXPECT_EQ(bytes, "CLT1 3 8 3\nout\ntexterr");
    const tkDecodedReply decoded = decodeReply(bytes);
    ASSERT_EQ(decoded.status, tkWireStatus::Complete);
    EXPECT_EQ(decoded.reply.exitCode, 3);
    EXPECT_EQ(decoded.reply.out, "out\ntext");
    EXPECT_EQ(decoded.reply.err, "err");
    EXPECT_EQ(decodeReply(bytes.substr(0, bytes.size() - 1)).status, tkWireStatus::Incomplete);
    EXPECT_EQ(decodeReply(encodeReply({-1, "", ""})).reply.exitCode, 255);
    EXPECT_EQ(decodeReply(encodeReply({300, "", ""})).reply.exitCode, 255);
}

// Input a hostile or confused peer could send: each must be refused before
// anything of the claimed size is allocated.
TEST(tkCommandWire, MalformedAndOversizedInputIsRefused) {
    const std::string tooManyWords = "CLT1 " + std::to_string(kMaxRequestWords + 1) + "\n";
    const std::string tooLongWord = "CLT1 1\n" + std::to_string(kMaxRequestBytes + 1) + "\n";
    const std::string tooLongTogether = "CLT1 2\n" + std::to_string(kMaxRequestBytes) + "\n" +
                                        std::string(kMaxRequestBytes, 'x') + "1\nx";
    const std::string requests[] = {
        "GET / HTTP/1.1\r\n",
        "CLT2 1\n",
        "CLT1 -1\n",
        "CLT1 +1\n",
        "CLT1 1 \n",
        "CLT1 99999999999999999999999\n",
        "CLT1 1\nx\n",
        "CLT1 1\n3x\nabc",
        tooManyWords,
        tooLongWord,
        tooLongTogether,
        // A header that never ends.
        "CLT1 " + std::string(200, '1'),
        "CLT1 1\n" + std::string(40, '9'),
    };
    for (const std::string& bytes : requests) {
        EXPECT_EQ(decodeRequest(bytes).status, tkWireStatus::Malformed) << bytes.substr(0, 60);
    }
    const std::string replies[] = {
        "CLT1 0 1\n",
        "CLT1 256 0 0\n",
        "CLT1 0 0 0 0\n",
        "CLT1 0 x 0\n",
        "CLT1 0 " + std::to_string(kMaxReplyStreamBytes + 1) + " 0\n",
    };
    for (const std::string& bytes : replies) {
        EXPECT_EQ(decodeReply(bytes).status, tkWireStatus::Malformed) << bytes;
    }
}

TEST(tkCommandSocket, PlaceFollowsTheRuntimeFolderAndTheDataFolder) {
    const tkCommandSocketPlace usual = commandSocketPlace("/run/user/1000", 1000, "/home/a/.local");
    EXPECT_EQ(usual.folder, "/run/user/1000");
    EXPECT_FALSE(usual.privateFolder);
    EXPECT_EQ(usual.path.rfind("/run/user/1000/chronolet-", 0), 0u) << usual.path;
    EXPECT_EQ(commandSocketPlace("/run/user/1000", 1000, "/home/a/.local").path, usual.path);
    EXPECT_NE(commandSocketPlace("/run/user/1000", 1000, "/tmp/test-home").path, usual.path);

    for (const std::string& runtime : Words{"", "relative/run", "/" + std::string(120, 'r')}) {
        const tkCommandSocketPlace fallback = commandSocketPlace(runtime, 1000, "/home/a/.local");
        EXPECT_EQ(fallback.folder, "/tmp/chronolet-1000") << runtime;
        EXPECT_TRUE(fallback.privateFolder);
    }
    EXPECT_EQ(dispatchCommand({"frobnicate"}).exitCode, 1);
    EXPECT_EQ(dispatchCommand({"frobnicate"}).err,
              "chronolet: unknown command: frobnicate (see \"chronolet help\")\n");
}

}  // namespace
