#pragma once

#include <cstdint>
#include <string>
#include <utility>

// One event on the notification center: a name that identifies it exactly
// (byte for byte, final full stop included), the object it is about, and an
// optional 64-bit payload whose type the handler knows from the name. The
// sender is an identity only; the center never dereferences it.
class tkNotification {
  public:
    tkNotification(std::string name, const void* sender, uint64_t data = 0)
        : _name(std::move(name)), _sender(sender), _data(data) {}

    const std::string& name() const { return _name; }
    const void* sender() const { return _sender; }
    uint64_t data() const { return _data; }

  private:
    std::string _name;
    const void* _sender;
    uint64_t _data;
};
