#pragma once

#include "system/base/MxGeometry.h"
#include "system/evaluation/Process.h"

#include <algorithm>
#include <numeric>
#include <span>
#include <vector>

namespace Marlox {

/// A place in an image: pixels from its left top, y down.
using PixelPlace = MxPointT<double>;
/// A closed polyline: the last place is joined to the first. Finite, no further than 1e7 from 0.
using Outline = std::vector<PixelPlace>;

enum class FillRule { NonZero, EvenOdd };

/// The indices of the items, those that begin in higher rows of pixels first. `top` gives y; what
/// begins above row 0 counts as in it, what begins below `rows` as there.
template <class Item, class Top>
std::vector<u32> OrderByRow(const std::vector<Item>& items, int rows, Top top)
{
    const auto rowOf = [&](const Item& item) {
        return std::size_t(std::clamp(top(item), 0.0, double(std::max(rows, 0))));
    };
    std::vector<u32> places(std::size_t(std::max(rows, 0)) + 2);
    for (const Item& item : items)
        ++places[rowOf(item) + 1];
    std::partial_sum(places.begin(), places.end(), places.begin());
    std::vector<u32> order(items.size());
    for (std::size_t i = 0; i < items.size(); ++i)
        order[places[rowOf(items[i])]++] = u32(i);
    return order;
}

/// How what is rasterised joins what the row holds. Clear: 0 where it covers all of the pixel.
enum class RasterJoin { Replace, Maximum, Minimum, Clear };

/// How much of each pixel an outline covers, 0 to 1: the exact area, also where the outline crosses
/// or overlaps itself. (Only where hundreds of its lines lie side by side or across each other in
/// one row of pixels, the area is sampled along up to 32 lines of the row.) The values depend
/// neither on where the outline begins nor, but for rounding, on its direction.
class ShapeRaster {
public:
    /// `window` is the rectangle of pixels that will be asked for.
    ShapeRaster(const Outline& outline, FillRule rule, const MxRect& window);

    /// Walks down the rows of the window. Each thread needs its own.
    class Walk;

private:
    /// A line that goes down, in pixels of the window.
    struct Edge {
        double x0, y0, x1, y1;
        int direction; // 1: the outline runs down here, -1: up
    };

    std::vector<Edge> edges_;
    std::vector<u32> order_; // by the row of y0
    FillRule rule_;
    MxRect window_;
};

/// Gathers the changes of coverage along one row of pixels: each line adds to what lies to its
/// right.
class RowCoverage {
public:
    explicit RowCoverage(int width);
    /// A line from x0 to x1 that spans `height` of the row; the sign tells whether coverage begins
    /// or ends there.
    void Add(double x0, double x1, double height);
    /// Joins the coverage to `width` values and is empty again.
    void WriteTo(float* to, RasterJoin join);

private:
    void AddWithin(double x0, double x1, double height);
    void Touch(int column);
    float Take(int column);

    int width_;
    std::vector<double> changes_;
    std::vector<u64> touched_; // a bit for each column that changes
    double sum_ = 0.0;
};

class ShapeRaster::Walk {
public:
    /// From row `first` of the window on.
    Walk(const ShapeRaster& raster, int first);
    /// The next row, joined to the window's width of values.
    void Next(float* to, RasterJoin join);
    /// Leaves rows out: `row`, further down, is the next one.
    void SkipTo(int row) { row_ = row; }
    // Whether the outline winds that way round anything in the last row.
    bool HasPositiveWinding() const { return highest_ > 0; }
    bool HasNegativeWinding() const { return lowest_ < 0; }

private:
    /// What of an edge lies in the row; y from its top.
    struct Piece {
        double x0, y0, x1, y1;
        double low, high; // of x
        u32 edge;
        int direction;

        double At(double y) const; // x
    };
    struct Across {
        double top, bottom; // x
        int direction;
    };

    void Gather();
    void Sort();
    bool IsFilled(int winding) const;
    void Note(int winding);
    int Cross(int winding, const Across& line, double x0, double x1, double height);
    void FillCrossing(std::span<const Piece> pieces, int winding);
    void FillSlab(int winding, double top, double bottom);
    bool IsTooMuch(std::span<const Piece> pieces);
    void FillSampled(std::span<const Piece> pieces, int winding);

    const ShapeRaster& raster_;
    int row_;
    int lowest_ = 0; // winding in the row
    int highest_ = 0;
    std::size_t nextEdge_ = 0;
    std::vector<u32> active_;
    std::vector<Piece> pieces_;
    std::vector<double> levels_;
    std::vector<double> splits_;
    std::vector<Across> across_;
    std::vector<const Piece*> waiting_; // of a group, by where they begin
    std::vector<const Piece*> slab_;    // that reach through it
    RowCoverage coverage_;
};

} // namespace Marlox
