#pragma once

#include <string>

#include "foundation/tkFile.h"

// A tkFile on a POSIX file system. The path is tilde-expanded once, when the
// object is built.
class tkFilePosix : public tkFile {
  public:
    explicit tkFilePosix(const std::string& path);

    // Reads a regular file; anything else (a folder, a pipe, a device) and
    // any failure read as empty, without ever blocking.
    std::string read() const override;

    // Replaces the text in one atomic step (tkPosixIO::replaceContents), so
    // that a crash at any moment leaves the old or the new text under the
    // name and never a file cut short. A missing file stays missing; failures
    // leave the old text and report nothing but a diagnostic line on standard
    // output (replaceFile of the file manager reports them).
    void write(const std::string& contents) override;

    std::string path() const override { return _path; }

    // "~" and "~/..." become $HOME (or the password database's home folder);
    // "~user/..." becomes that user's home folder; other paths are unchanged.
    static std::string expandTilde(const std::string& path);

  private:
    std::string _path;
};
