#pragma once

// Helpers of the benchmarks that measure a whole process: its resident memory,
// and work done in a fresh child that reports back through a pipe.

#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <initializer_list>
#include <utility>
#include <vector>

// Resident memory of this process, in bytes.
inline double residentBytes() {
    long pages = 0;
    long resident = 0;
    std::FILE* statm = std::fopen("/proc/self/statm", "r");
    if (statm == nullptr || std::fscanf(statm, "%ld %ld", &pages, &resident) != 2) {
        resident = 0;
    }
    if (statm != nullptr) {
        std::fclose(statm);
    }
    return static_cast<double>(resident) * static_cast<double>(::sysconf(_SC_PAGESIZE));
}

inline double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// What a child reported, and how long it took to end after its report.
struct ChildReport {
    std::vector<double> values;
    double secondsToExit = 0;
};

// Runs `body` in a fresh child, which writes `count` doubles to the pipe it
// is given and then ends as `body` decides. Empty values when the child
// reported nothing.
template <class Body>
ChildReport inChild(size_t count, Body body) {
    ChildReport result;
    int pipeEnds[2];
    if (::pipe(pipeEnds) != 0) {
        return result;
    }
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(pipeEnds[0]);
        body(pipeEnds[1]);
        ::_exit(0);
    }
    ::close(pipeEnds[1]);
    std::vector<double> values(count, -1.0);
    const auto bytes = static_cast<ssize_t>(count * sizeof(double));
    const bool got = ::read(pipeEnds[0], values.data(), static_cast<size_t>(bytes)) == bytes;
    const auto reported = std::chrono::steady_clock::now();
    ::close(pipeEnds[0]);
    ::waitpid(child, nullptr, 0);
    result.secondsToExit = secondsSince(reported);
    if (got) {
        result.values = std::move(values);
    }
    return result;
}

inline void report(int fd, std::initializer_list<double> values) {
    const std::vector<double> data(values);
    (void)!::write(fd, data.data(), data.size() * sizeof(double));
}
