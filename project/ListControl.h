#pragma once
// A simple list control as the order register fills it: one text per entry
// and a number kept with it. A Qt list and a test double both satisfy it.

#include <cstdint>
#include <string>

namespace qi {

class ListControl {
public:
    virtual ~ListControl() = default;
    /// Adds an entry at the end; returns its index (the control's newest index).
    virtual int addItem(const std::string& text) = 0;
    /// The number kept with an entry.
    virtual void setItemData(int index, std::int32_t data) = 0;
};

} // namespace qi
