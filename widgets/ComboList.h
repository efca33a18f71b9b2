#pragma once

#include "widgets/ComboModel.h"

#include <QRect>

namespace Marlox {

/// Where an open list stands, in the coordinates of the screen, and how much of it is shown.
struct ComboPlace {
    QRect rect;        // with the frame
    int shownRows = 0; // whole ones

    /// Below the field, or above it where there is more room and below too little; as wide as
    /// wanted, but no wider than the screen; never over the field.
    static ComboPlace Find(const QRect& field, int wantedWidth, int rows, const QRect& screen);
};

/// The rows of an open list: which one is lit, and which are in view. Rows are whole; pixels count
/// from the top of the first one in view.
class ComboList {
public:
    static constexpr int rowHeight = 24; // pixels
    static constexpr int frame = 1;      // around the rows
    static constexpr int mostRows = 16;  // in view at once
    static constexpr int none = ComboModel::none;

    ComboList(int count, int shownRows);

    int Count() const { return count_; }
    int Shown() const { return shown_; }
    int First() const { return first_; }
    int LastFirst() const { return count_ - shown_; } // the first in view when scrolled to the end
    int Lit() const { return lit_; }
    bool Scrolls() const { return shown_ < count_; }

    /// Lights a row and brings it into view; none puts the light out.
    void Light(int row);
    /// Lights the row below the pointer; false, and nothing else, if there is none.
    bool LightAt(int y);
    /// Puts a row in the middle of the view, as far as the ends allow.
    void Centre(int row) { ScrollTo(row - shown_ / 2); }
    void ScrollTo(int first);
    int RowAt(int y) const; // none outside the rows in view
    int TopOf(int row) const { return (row - first_) * rowHeight; }

private:
    int count_;
    int shown_;
    int first_ = 0;
    int lit_ = none;
};

} // namespace Marlox
