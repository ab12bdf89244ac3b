#include "shell/tkCommandWire.h"

#include <algorithm>
#include <initializer_list>
#include <optional>

namespace {

constexpr std::string_view kMagic = "CLT1 ";
// The longest header line: magic, three numbers of at most 20 digits, blanks.
constexpr size_t kMaxHeaderLine = 80;
constexpr size_t kMaxDigits = 20;

// A plain decimal number, no sign, at most `limit`.
std::optional<size_t> parseNumber(std::string_view text, size_t limit) {
    if (text.empty() || text.size() > kMaxDigits) {
        return std::nullopt;
    }
    size_t value = 0;
    for (char c : text) {
        if (c < '0' || c > '9') {
            return std::nullopt;
        }
        const auto digit = static_cast<size_t>(c - '0');
        if (digit > limit || value > (limit - digit) / 10) {
            return std::nullopt;
        }
        value = value * 10 + digit;
    }
    return value;
}

// Reads one line (without its "\n") at `pos`. Incomplete while no line break
// is in sight and the line could still be valid; Malformed past `maxLength`.
tkWireStatus readLine(std::string_view bytes, size_t& pos, size_t maxLength,
                      std::string_view& line) {
    const size_t end = bytes.find('\n', pos);
    if (end == std::string_view::npos) {
        return bytes.size() - pos > maxLength ? tkWireStatus::Malformed : tkWireStatus::Incomplete;
    }
    if (end - pos > maxLength) {
        return tkWireStatus::Malformed;
    }
    line = bytes.substr(pos, end - pos);
    pos = end + 1;
    return tkWireStatus::Complete;
}

// A prefix of the magic is still a message in the making.
bool couldBeMagic(std::string_view bytes) {
    const size_t n = std::min(bytes.size(), kMagic.size());
    return bytes.substr(0, n) == kMagic.substr(0, n);
}

// The header line: the magic, then one number per limit, split on single
// blanks, each within its limit. Leaves `pos` behind the line.
tkWireStatus readHeader(std::string_view bytes, size_t& pos, std::initializer_list<size_t> limits,
                        std::vector<size_t>& numbers) {
    if (!couldBeMagic(bytes)) {
        return tkWireStatus::Malformed;
    }
    std::string_view line;
    const tkWireStatus status = readLine(bytes, pos, kMaxHeaderLine, line);
    if (status != tkWireStatus::Complete) {
        return status;
    }
    line.remove_prefix(kMagic.size());
    for (const size_t limit : limits) {
        const bool last = numbers.size() + 1 == limits.size();
        const size_t end = last ? line.size() : line.find(' ');
        const std::optional<size_t> number =
            end == std::string_view::npos ? std::nullopt : parseNumber(line.substr(0, end), limit);
        if (!number) {
            return tkWireStatus::Malformed;
        }
        numbers.push_back(*number);
        line.remove_prefix(last ? end : end + 1);
    }
    return tkWireStatus::Complete;
}

}  // namespace

std::string encodeRequest(const std::vector<std::string>& words) {
    std::string text(kMagic);
    text += std::to_string(words.size()) + "\n";
    for (const std::string& word : words) {
        text += std::to_string(word.size()) + "\n" + word;
    }
    return text;
}

std::string encodeReply(const tkCommandReply& reply) {
    const int32_t code =
        reply.exitCode < 0 || reply.exitCode > kMaxExitCode ? kMaxExitCode : reply.exitCode;
    std::string text(kMagic);
    text += std::to_string(code) + " " + std::to_string(reply.out.size()) + " " +
            std::to_string(reply.err.size()) + "\n";
    return text + reply.out + reply.err;
}

tkDecodedRequest decodeRequest(std::string_view bytes) {
    tkDecodedRequest result;
    size_t pos = 0;
    std::vector<size_t> header;
    result.status = readHeader(bytes, pos, {kMaxRequestWords}, header);
    if (result.status != tkWireStatus::Complete) {
        return result;
    }
    const size_t count = header[0];
    std::string_view line;
    size_t total = 0;
    std::vector<std::string> words;
    words.reserve(count);
    for (size_t i = 0; i < count; ++i) {
        const tkWireStatus status = readLine(bytes, pos, kMaxDigits, line);
        if (status != tkWireStatus::Complete) {
            result.status = status;
            return result;
        }
        const std::optional<size_t> length = parseNumber(line, kMaxRequestBytes - total);
        if (!length) {
            result.status = tkWireStatus::Malformed;
            return result;
        }
        if (bytes.size() - pos < *length) {
            result.status = tkWireStatus::Incomplete;
            return result;
        }
        words.emplace_back(bytes.substr(pos, *length));
        pos += *length;
        total += *length;
    }
    result.status = tkWireStatus::Complete;
    result.consumed = pos;
    result.words = std::move(words);
    return result;
}

tkDecodedReply decodeReply(std::string_view bytes) {
    tkDecodedReply result;
    size_t pos = 0;
    std::vector<size_t> header;
    result.status = readHeader(
        bytes, pos, {size_t{kMaxExitCode}, kMaxReplyStreamBytes, kMaxReplyStreamBytes}, header);
    if (result.status != tkWireStatus::Complete) {
        return result;
    }
    const size_t outLength = header[1];
    const size_t errLength = header[2];
    if (bytes.size() - pos < outLength + errLength) {
        result.status = tkWireStatus::Incomplete;
        return result;
    }
    result.reply.exitCode = static_cast<int32_t>(header[0]);
    result.reply.out.assign(bytes.substr(pos, outLength));
    result.reply.err.assign(bytes.substr(pos + outLength, errLength));
    result.consumed = pos + outLength + errLength;
    return result;
}
