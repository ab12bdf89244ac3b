#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The bytes that pass between a starting copy of the program (or the
// command-line tool) and the running application over its local socket.
//
// A request is the list of words of a command line:
//   "CLT1 <count>\n" then, per word, "<length>\n<bytes>"
// A reply is an exit code and the two output streams:
//   "CLT1 <code> <outlen> <errlen>\n<out><err>"
// Numbers are plain decimal. Every count and length is checked against the
// limits below before anything is allocated for it, so a hostile peer can
// make the application hold at most that much.

// What the running copy runs for a command line, and what it answers.
struct tkCommandReply {
    int32_t exitCode = 0;
    std::string out;
    std::string err;
};

// The request of a second start: show yourself. No command of the
// command-line tool can be spelled this way.
inline constexpr const char* kReopenRequest = "@reopen";

inline constexpr size_t kMaxRequestWords = 4096;
// Over all words together.
inline constexpr size_t kMaxRequestBytes = size_t{1} << 20;
// Per stream of a reply: a listing of a large time sheet fits.
inline constexpr size_t kMaxReplyStreamBytes = size_t{64} << 20;
inline constexpr int32_t kMaxExitCode = 255;

enum class tkWireStatus {
    Incomplete,  // a prefix of a valid message: read more
    Complete,
    Malformed,  // not the format, or beyond a limit: drop the peer
};

struct tkDecodedRequest {
    tkWireStatus status = tkWireStatus::Incomplete;
    size_t consumed = 0;  // bytes of a complete message
    std::vector<std::string> words;
};

struct tkDecodedReply {
    tkWireStatus status = tkWireStatus::Incomplete;
    size_t consumed = 0;
    tkCommandReply reply;
};

// REQUIRES: the words within the limits (the encoder does not check).
std::string encodeRequest(const std::vector<std::string>& words);
// An exit code outside 0..255 is sent as 255.
std::string encodeReply(const tkCommandReply& reply);

// Decode the message at the start of `bytes`; bytes after it are left alone.
tkDecodedRequest decodeRequest(std::string_view bytes);
tkDecodedReply decodeReply(std::string_view bytes);
