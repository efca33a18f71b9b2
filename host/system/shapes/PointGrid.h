#pragma once

#include "system/shapes/PolyLine.h"

#include <span>
#include <vector>

namespace Marlox {

/// Points by the cell of a grid that they lie in. The grid spans where most points are; what lies
/// further out counts to its outermost cells.
class MARLOXSYSTEM_EXPORT PointGrid {
public:
    void Build(std::span<const ShapePlace> points);
    /// As ShapeIndex has it.
    int PointAt(ShapePlace at, ShapePlace tolerance, int from) const;
    std::vector<int> PointsIn(const ShapeBounds& bounds) const;

private:
    struct Entry {
        ShapePlace place;
        int index;
    };
    struct Axis {
        double low = 0.0;
        double cellsPerUnit = 0.0;
        double last = 0.0; // cell
        int cells = 1;
        int CellOf(double at) const; // never falls with growing `at`
    };
    static Axis AxisFor(std::vector<double> sample, int cells);
    std::size_t CellOf(ShapePlace at) const;

    Axis x_;
    Axis y_;
    std::vector<u32> starts_; // of cells, row by row, in entries_; and the end
    std::vector<Entry> entries_;
};

} // namespace Marlox
