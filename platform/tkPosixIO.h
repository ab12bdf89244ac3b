#pragma once

#include <string>

// Small helpers over raw descriptors, shared by the file and file manager
// forms of this layer.
namespace tkPosixIO {

// Writes every byte, retrying short writes and interruptions. False with
// errno set on failure.
bool writeAll(int fd, const std::string& contents);

// Reads to the end of the file, appending to `contents`. False with errno set
// on failure.
bool readAll(int fd, std::string& contents);

// Creates a new, empty, exclusive file next to `path`, named
// "." + name + suffix + "." + pid + counter, opened for writing with
// close-on-exec. Returns the descriptor and its path, or -1 with `error`.
int createSibling(const std::string& path, const std::string& suffix, std::string& siblingPath,
                  int& error);

}  // namespace tkPosixIO
