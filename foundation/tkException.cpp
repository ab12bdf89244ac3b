#include "foundation/tkException.h"

#include <iostream>
#include <utility>

tkException::tkException(std::string name, std::string message)
    : _message(std::move(message)), _name(std::move(name)) {
    // Written at construction, not at throw or catch: every failure leaves its
    // line, including those that a caller handles quietly.
    std::cout << "tkException " << _name << " thrown: " << _message << '\n' << std::flush;
}
