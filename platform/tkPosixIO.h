#pragma once

#include <cstddef>
#include <string>

// Small helpers over raw descriptors, shared by the file and file manager
// forms of this layer.
namespace tkPosixIO {

// The largest file that readRegularFile reads: far beyond any real time sheet
// (100,000 rows are about 6 MB), and small enough that a runaway file can't
// take all memory.
inline constexpr std::size_t kMaximumFileSize = std::size_t{512} << 20;

// Writes every byte, retrying short writes and interruptions. False with
// errno set on failure.
bool writeAll(int fd, const std::string& contents);

// Reads to the end of the file, appending to `contents`. False with errno set
// on failure.
bool readAll(int fd, std::string& contents);

// Creates a new, empty, exclusive file next to `path`, named
// "." + name + suffix + "." + pid (+ "." + counter), mode 0600, opened for
// writing with close-on-exec. Returns the descriptor and its path, or -1 with
// `error`.
int createSibling(const std::string& path, const std::string& suffix, std::string& siblingPath,
                  int& error);

// The suffix of the temporaries of replaceContents; a temporary of "name" is
// "." + name + kTemporarySuffix + "." + pid, with "." + counter on rare
// occasions.
inline constexpr const char* kTemporarySuffix = ".tkw";

// Reads a whole regular file into `contents`. Returns "" when done, otherwise
// the reason in words: the system's error text, or that the path is a folder,
// a device or pipe (which could block or never end), or too large. Never
// blocks on a pipe.
std::string readRegularFile(const std::string& path, std::string& contents);

// Replaces the file at `path` (the target of a symbolic link, keeping the
// link) or creates it, in one atomic step: the text goes to a temporary file
// in the same folder, made 0600 and given the old file's permissions and owner
// before its first byte, and the temporary is renamed over the name. So at
// every moment the name holds the whole old or the whole new text, and the
// file is never truncated in place. A new file gets the permissions that the
// process's umask leaves of 0666.
//
// Refused, with the old file untouched, when the file is not a regular file
// or not writable for this process, when its folder can't take the temporary,
// when the disk is full, and when the new copy could not keep the file's
// permissions, or its owner or group in a way that leaves everyone who could
// write the file able to. Returns "" when done, otherwise the reason in words.
std::string replaceContents(const std::string& path, const std::string& contents);

}  // namespace tkPosixIO
