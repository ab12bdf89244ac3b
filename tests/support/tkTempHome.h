#pragma once

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>

namespace tkTestFiles {

// The whole file, or nullopt when it can't be opened.
inline std::optional<std::string> read(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        return std::nullopt;
    }
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline void write(const std::string& path, const std::string& text) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

}  // namespace tkTestFiles

// Test helper: a fresh temporary folder that stands in for the user's home for the life of
// the object. HOME points at it and XDG_DATA_HOME at its "data" subfolder, so every default
// path of the program lands inside; both variables are restored and the folder removed
// (whatever its permissions) when the object goes.
//
//   tkTempHome home;
//   home.writeText("data/Tekamo/Chronolet Timers.txt", "...");
//   EXPECT_EQ(home.readText("data/Tekamo/Chronolet Timers.txt"), "...");
class tkTempHome {
  public:
    tkTempHome() {
        for (int i = 0; i < 2; ++i) {
            const char* value = std::getenv(kVariables[i]);
            _saved[i] = value != nullptr ? std::optional<std::string>(value) : std::nullopt;
        }
        std::string pattern = (std::filesystem::temp_directory_path() / "tkhome.XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("mkdtemp failed");
        }
        _root = pattern;
        ::setenv("HOME", _root.c_str(), 1);
        ::setenv("XDG_DATA_HOME", dataFolder().c_str(), 1);
    }

    ~tkTempHome() {
        for (int i = 0; i < 2; ++i) {
            _saved[i] ? ::setenv(kVariables[i], _saved[i]->c_str(), 1) : ::unsetenv(kVariables[i]);
        }
        // A test may have taken write permission away; give it back so that the folder can go.
        std::error_code error;
        for (auto it = std::filesystem::recursive_directory_iterator(_root, error);
             !error && it != std::filesystem::recursive_directory_iterator(); it.increment(error)) {
            ::chmod(it->path().c_str(), 0700);
        }
        ::chmod(_root.c_str(), 0700);
        std::filesystem::remove_all(_root, error);
    }

    tkTempHome(const tkTempHome&) = delete;
    tkTempHome& operator=(const tkTempHome&) = delete;

    const std::string& root() const { return _root; }
    std::string dataFolder() const { return _root + "/data"; }
    // Where the program keeps its files under this home.
    std::string supportFolder() const { return dataFolder() + "/Tekamo"; }
    // The place that earlier versions used, below this home.
    std::string oldSupportFolder() const {
        return _root + "/Library/Application Support/Tekamo Chronolet";
    }

    // A path below the root; absolute paths are returned as they are.
    std::string path(const std::string& relative) const {
        return !relative.empty() && relative[0] == '/' ? relative : _root + "/" + relative;
    }
    // Writes the text, creating the folders above.
    void writeText(const std::string& relative, const std::string& text) const {
        tkTestFiles::write(path(relative), text);
    }
    std::optional<std::string> readText(const std::string& relative) const {
        return tkTestFiles::read(path(relative));
    }
    bool exists(const std::string& relative) const {
        struct stat info;
        return ::lstat(path(relative).c_str(), &info) == 0;
    }

  private:
    static constexpr const char* kVariables[2] = {"HOME", "XDG_DATA_HOME"};
    std::string _root;
    std::optional<std::string> _saved[2];
};

// Test helper for the one fixed path outside the temporary home, "/tmp/corrupt_timers.txt",
// which every process on the machine shares. While the guard lives it holds a lock that keeps
// other tests using it out (waiting, not polling), and it moves whatever was there aside; when
// it goes it removes what the test left and puts the earlier file back.
class tkCorruptTimersGuard {
  public:
    static constexpr const char* kPath = "/tmp/corrupt_timers.txt";

    tkCorruptTimersGuard() {
        _lock = ::open("/tmp/corrupt_timers.txt.testlock", O_RDWR | O_CREAT | O_CLOEXEC, 0666);
        if (_lock >= 0) {
            ::flock(_lock, LOCK_EX);
        }
        _backup = std::string(kPath) + ".saved." + std::to_string(::getpid());
        struct stat info;
        _hadFile = ::lstat(kPath, &info) == 0 && ::rename(kPath, _backup.c_str()) == 0;
    }

    ~tkCorruptTimersGuard() {
        ::unlink(kPath);
        if (_hadFile) {
            ::rename(_backup.c_str(), kPath);
        }
        if (_lock >= 0) {
            ::close(_lock);
        }
    }

    tkCorruptTimersGuard(const tkCorruptTimersGuard&) = delete;
    tkCorruptTimersGuard& operator=(const tkCorruptTimersGuard&) = delete;

    std::optional<std::string> contents() const { return tkTestFiles::read(kPath); }

  private:
    int _lock = -1;
    bool _hadFile = false;
    std::string _backup;
};
