#include "widgets/ComboList.h"

#include <algorithm>

namespace Marlox {

ComboPlace ComboPlace::Find(const QRect& field, int wantedWidth, int rows, const QRect& screen)
{
    constexpr int frames = 2 * ComboList::frame;
    const auto rowsWithin = [rows](int pixels) {
        const int room = std::max((pixels - frames) / ComboList::rowHeight, 1);
        return std::min({rows, room, ComboList::mostRows});
    };
    const int below = screen.bottom() - field.bottom();
    const int above = field.top() - screen.top();
    const bool down = rowsWithin(below) >= rowsWithin(above);
    ComboPlace place;
    place.shownRows = rowsWithin(down ? below : above);
    const int height = place.shownRows * ComboList::rowHeight + frames;
    const int width = std::min(std::max(wantedWidth, field.width()), screen.width());
    const int left = std::clamp(field.left(), screen.left(), screen.right() + 1 - width);
    place.rect = QRect(left, down ? field.bottom() + 1 : field.top() - height, width, height);
    return place;
}

ComboList::ComboList(int count, int shownRows)
    : count_(count), shown_(std::clamp(shownRows, 0, count))
{
}

void ComboList::Light(int row)
{
    lit_ = row >= 0 && row < count_ ? row : none;
    if (lit_ != none)
        ScrollTo(std::clamp(first_, lit_ - shown_ + 1, lit_));
}

bool ComboList::LightAt(int y)
{
    const int row = RowAt(y);
    if (row == none)
        return false;
    lit_ = row;
    return true;
}

void ComboList::ScrollTo(int first)
{
    first_ = std::clamp(first, 0, LastFirst());
}

int ComboList::RowAt(int y) const
{
    const bool inside = y >= 0 && y < shown_ * rowHeight;
    return inside ? first_ + y / rowHeight : none;
}

} // namespace Marlox
