#pragma once

#include <memory>

class tkTagNode;

// An object that writes its state out as a tree of tagged text and reads it
// back. What each object writes is up to the object.
class ItkXMLCreatable {
  public:
    // A new tree holding the object's state, owned by the caller.
    virtual std::unique_ptr<tkTagNode> toTag() const = 0;

    // Sets the object's state from a tree. Missing or unreadable values fall
    // back to defaults without a word; nothing is thrown for them.
    virtual void fromTag(const tkTagNode& node) = 0;

    virtual ~ItkXMLCreatable() = default;
};
