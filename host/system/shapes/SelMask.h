#pragma once

#include "system/base/Types.h"

#include <span>
#include <utility>
#include <vector>

namespace Marlox {

/// Which points of a shape are selected, and which of them was selected last. A value type.
class MARLOXSYSTEM_EXPORT SelMask {
public:
    enum Mode { Clear, Select, Toggle };

    SelMask() = default;
    explicit SelMask(int count, bool selected = false) { Create(count, selected); }
    /// Starts anew: `count` items, none or all selected, none of them last.
    void Create(int count, bool selected = false);
    int Count() const { return int(items_.size()); }

    /// Changes one item. Selecting makes it the last one; clearing the last one leaves none.
    /// Positions outside the mask are ignored.
    void DoSet(int index, Mode mode);
    bool GetSetItem(int index) const; // false outside
    int SetCount() const { return set_; }
    bool IsAnySet() const { return set_ > 0; }
    bool IsAllSet() const { return set_ > 0 && set_ == Count(); }
    int First() const;                                   // the first selected item; -1: none
    std::vector<int> Items() const;                      // all selected items, ascending
    std::span<const u8> Bytes() const { return items_; } // one for each item, 0 or 1

    int Last() const { return last_; } // the item selected last; -1: none
    bool IsLastSet() const { return last_ >= 0; }
    void SetLast(int index) { last_ = index >= 0 && index < Count() ? index : -1; }

    void Reset(); // none selected, none last
    /// `count` items come in at `index` (unselected), or go from there when it is negative: what is
    /// selected stays selected.
    void ShiftSet(int index, int count);
    /// The selected items as one run of neighbours: its first item and its length. In a closed
    /// shape the run may go over the end. (-1, 0): nothing selected, or several runs.
    std::pair<int, int> GetSegment(bool closed) const;

    friend bool operator==(const SelMask&, const SelMask&) = default;

private:
    std::vector<u8> items_;
    int set_ = 0;
    int last_ = -1;
};

} // namespace Marlox
