#pragma once

#include <string>

// Root of every failure that the core reports to a caller. The name is the
// short title the user reads in the error window, the message its body, so
// both must be complete and final when the exception is built.
//
// Constructing one writes "tkException <name> thrown: <message>" to standard
// output and flushes: that line is the program's whole error log, and it is
// written even for exceptions that are caught and handled quietly. Copies do
// not write again, so throwing by value and catching by const reference logs
// each failure exactly once.
//
// Deliberately a plain class without virtual operations: the children add no
// state, and a catch of `const tkException&` sees name and message.
class tkException {
  public:
    tkException(std::string name, std::string message);

    tkException(const tkException&) = default;
    tkException(tkException&&) noexcept = default;
    tkException& operator=(const tkException&) = default;
    tkException& operator=(tkException&&) noexcept = default;
    ~tkException() = default;

    const std::string& name() const { return _name; }
    const std::string& message() const { return _message; }

    // False at construction; kept for the error display, nothing in the core
    // reads it.
    bool flag() const { return _flag; }
    void setFlag(bool value) { _flag = value; }

  private:
    std::string _message;
    std::string _name;
    bool _flag = false;
};
