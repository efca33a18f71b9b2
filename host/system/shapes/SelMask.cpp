#include "system/shapes/SelMask.h"

#include <algorithm>

namespace Marlox {

void SelMask::Create(int count, bool selected)
{
    items_.assign(std::size_t(std::max(count, 0)), u8(selected));
    set_ = selected ? Count() : 0;
    last_ = -1;
}

void SelMask::DoSet(int index, Mode mode)
{
    if (index < 0 || index >= Count())
        return;
    u8& item = items_[std::size_t(index)];
    const bool selected = mode == Select || (mode == Toggle && !item);
    set_ += int(selected) - int(item);
    item = u8(selected);
    if (selected)
        last_ = index;
    else if (last_ == index)
        last_ = -1;
}

bool SelMask::GetSetItem(int index) const
{
    return index >= 0 && index < Count() && items_[std::size_t(index)];
}

int SelMask::First() const
{
    const auto found = std::find(items_.begin(), items_.end(), u8(1));
    return found == items_.end() ? -1 : int(found - items_.begin());
}

std::vector<int> SelMask::Items() const
{
    std::vector<int> found;
    found.reserve(std::size_t(set_));
    for (int i = 0; i < Count(); ++i) {
        if (items_[std::size_t(i)])
            found.push_back(i);
    }
    return found;
}

void SelMask::Reset()
{
    Create(Count());
}

void SelMask::ShiftSet(int index, int count)
{
    index = std::clamp(index, 0, Count());
    if (count > 0) {
        items_.insert(items_.begin() + index, std::size_t(count), u8(0));
        if (last_ >= index)
            last_ += count;
        return;
    }
    const int gone = std::min(-count, Count() - index);
    set_ -= int(std::count(items_.begin() + index, items_.begin() + index + gone, u8(1)));
    items_.erase(items_.begin() + index, items_.begin() + index + gone);
    if (last_ >= index + gone)
        last_ -= gone;
    else if (last_ >= index)
        last_ = -1;
}

std::pair<int, int> SelMask::GetSegment(bool closed) const
{
    if (set_ == 0)
        return {-1, 0};
    if (IsAllSet())
        return {0, set_};
    // Where a run begins: a selected item behind one that is not.
    int start = -1;
    for (int i = 0; i < Count(); ++i) {
        const bool before = i > 0 ? GetSetItem(i - 1) : closed && GetSetItem(Count() - 1);
        if (!GetSetItem(i) || before)
            continue;
        if (start >= 0)
            return {-1, 0};
        start = i;
    }
    return {start, set_};
}

} // namespace Marlox
