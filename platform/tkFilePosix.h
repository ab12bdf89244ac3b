#pragma once

#include <string>

#include "foundation/tkFile.h"

// A tkFile on a POSIX file system. The path is tilde-expanded once, when the
// object is built.
class tkFilePosix : public tkFile {
  public:
    explicit tkFilePosix(const std::string& path);

    std::string read() const override;

    // Writes the new text to a fresh file in the same folder and renames it
    // over the old one, with the old file's permissions, so that a crash at
    // any moment leaves either the old or the new text under the name. Only
    // where the folder can't take a new file is the file rewritten in place.
    // A missing file stays missing; failures leave the old text and report
    // nothing but a diagnostic line on standard output.
    void write(const std::string& contents) override;

    std::string path() const override { return _path; }

    // "~" and "~/..." become $HOME (or the password database's home folder);
    // "~user/..." becomes that user's home folder; other paths are unchanged.
    static std::string expandTilde(const std::string& path);

  private:
    std::string _path;
};
