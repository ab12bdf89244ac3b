#include "platform/tkFilePosix.h"

#include <pwd.h>
#include <sys/stat.h>

#include <iostream>

#include "platform/tkPosixIO.h"
#include "platform/tkUserInfoPosix.h"

namespace {

void reportWriteFailure(const std::string& path, const std::string& reason) {
    std::cout << "Could not write file at: " << path << " (" << reason << ")" << std::endl;
}

}  // namespace

tkFilePosix::tkFilePosix(const std::string& path) : _path(expandTilde(path)) {}

std::string tkFilePosix::expandTilde(const std::string& path) {
    if (path.empty() || path[0] != '~') {
        return path;
    }
    const std::string::size_type slash = path.find('/');
    const std::string user =
        path.substr(1, slash == std::string::npos ? std::string::npos : slash - 1);
    std::string home;
    if (user.empty()) {
        home = posixHomeFolder();
    } else {
        const struct passwd* entry = ::getpwnam(user.c_str());
        if (entry == nullptr || entry->pw_dir == nullptr) {
            // An unknown user: the path stays as it was written.
            return path;
        }
        home = entry->pw_dir;
    }
    if (home.empty()) {
        return path;
    }
    while (home.size() > 1 && home.back() == '/') {
        home.pop_back();
    }
    if (slash == std::string::npos) {
        return home;
    }
    return (home == "/" ? std::string() : home) + path.substr(slash);
}

std::string tkFilePosix::read() const {
    std::string contents;
    if (!tkPosixIO::readRegularFile(_path, contents).empty()) {
        // Whatever can't be read (a folder, a pipe, a missing file) reads as
        // empty, by contract; readFile of the file manager says why.
        contents.clear();
    }
    return contents;
}

void tkFilePosix::write(const std::string& contents) {
    struct stat info;
    if (::stat(_path.c_str(), &info) != 0) {
        // A missing file stays missing: only createFile and safeSave make files.
        return;
    }
    const std::string problem = tkPosixIO::replaceContents(_path, contents);
    if (!problem.empty()) {
        reportWriteFailure(_path, problem);
    }
}
