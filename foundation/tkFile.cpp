#include "foundation/tkFile.h"

namespace {

// Index one past the last character that isn't a trailing slash; a path made
// of slashes only keeps its first one.
std::string::size_type endWithoutTrailingSlashes(const std::string& path) {
    std::string::size_type end = path.size();
    while (end > 1 && path[end - 1] == '/') {
        --end;
    }
    return end;
}

}  // namespace

std::string tkFile::name() const {
    return lastPathComponent(path());
}

std::string tkFile::directory() const {
    return deletingLastPathComponent(path());
}

std::string tkFile::lastPathComponent(const std::string& path) {
    if (path.empty()) {
        return path;
    }
    const std::string::size_type end = endWithoutTrailingSlashes(path);
    if (end == 1 && path[0] == '/') {
        return "/";
    }
    const std::string::size_type slash = path.rfind('/', end - 1);
    if (slash == std::string::npos) {
        return path.substr(0, end);
    }
    return path.substr(slash + 1, end - slash - 1);
}

std::string tkFile::deletingLastPathComponent(const std::string& path) {
    if (path.empty()) {
        return path;
    }
    const std::string::size_type end = endWithoutTrailingSlashes(path);
    if (end == 1 && path[0] == '/') {
        return "/";
    }
    std::string::size_type slash = path.rfind('/', end - 1);
    if (slash == std::string::npos) {
        return "";
    }
    // "a//b" names the same folder as "a/b".
    while (slash > 0 && path[slash - 1] == '/') {
        --slash;
    }
    if (slash == 0) {
        return "/";
    }
    return path.substr(0, slash);
}
