#pragma once

#include <string>

// A named place in the file system. A tkFile says nothing about whether the
// file exists: it is a name and may well name nothing. The platform layer
// supplies the concrete form; the core only ever sees this interface.
class tkFile {
  public:
    virtual ~tkFile() = default;

    // The whole file, byte for byte. A file that can't be opened reads as "".
    virtual std::string read() const = 0;

    // Replaces the whole content of an existing file with `contents`.
    // A missing file stays missing and nothing is reported; failures are
    // silent by contract. The platform form never leaves a half-written file.
    virtual void write(const std::string& contents) = 0;

    // The stored path, already tilde-expanded, as UTF-8.
    virtual std::string path() const = 0;

    // The last path component ("b" for "/a/b" and for "/a/b/").
    virtual std::string name() const;

    // The path minus its last component ("/a" for "/a/b", "/" for "/a",
    // "" for a bare name).
    virtual std::string directory() const;

    // The two path rules above as plain functions, for code that has a path
    // string and no file.
    static std::string lastPathComponent(const std::string& path);
    static std::string deletingLastPathComponent(const std::string& path);
};
