#pragma once
// The list control of the order register on a Qt list box: each entry's text,
// with the number kept in the item's user data.

#include "ListControl.h"

class QListWidget;

namespace qi {

class QtListControl : public ListControl {
public:
    explicit QtListControl(QListWidget& list) : list_(list) {}
    int addItem(const std::string& text) override;
    void setItemData(int index, std::int32_t data) override;
    /// The number kept with an entry (0 for an entry without one or an index out of range).
    std::int32_t itemData(int index) const;

private:
    QListWidget& list_;
};

} // namespace qi
