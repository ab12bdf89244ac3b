#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <iostream>
#include <string>

// Test helper: captures what is written to standard output between its construction and
// take() (exception lines, parser diagnostics). Only one capture can run at a time.
class tkStdoutCapture {
  public:
    tkStdoutCapture() {
        std::cout.flush();
        testing::internal::CaptureStdout();
    }
    ~tkStdoutCapture() { take(); }
    tkStdoutCapture(const tkStdoutCapture&) = delete;
    tkStdoutCapture& operator=(const tkStdoutCapture&) = delete;

    // Ends the capture and returns what was written.
    std::string take() {
        if (!_capturing) {
            return std::string();
        }
        std::cout.flush();
        std::fflush(stdout);
        _capturing = false;
        return testing::internal::GetCapturedStdout();
    }

  private:
    bool _capturing = true;
};
