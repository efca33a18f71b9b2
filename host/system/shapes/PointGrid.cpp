#include "system/shapes/PointGrid.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace Marlox {

namespace {

constexpr std::size_t sampled = 512; // points that tell where most are
constexpr int mostCellsOfAxis = 1024;

} // namespace

int PointGrid::Axis::CellOf(double at) const
{
    // In this order, in which what is no number counts to cell 0.
    return int(std::min(std::max(0.0, (at - low) * cellsPerUnit), last));
}

/// From where a tenth of the points lie to where nine tenths do, and as much more on both sides; no
/// more than all.
PointGrid::Axis PointGrid::AxisFor(std::vector<double> sample, int cells)
{
    Axis axis;
    if (sample.empty())
        return axis;
    std::sort(sample.begin(), sample.end());
    const double low = sample[sample.size() / 10];
    const double high = sample[sample.size() - 1 - sample.size() / 10];
    const double begin = std::max(sample.front(), low - (high - low));
    const double end = std::min(sample.back(), high + (high - low));
    const double perUnit = cells / (end - begin);
    axis.low = begin;
    if (std::isfinite(perUnit) && std::isfinite(begin)) {
        axis.cellsPerUnit = perUnit;
        axis.cells = cells;
        axis.last = cells - 1;
    }
    return axis;
}

std::size_t PointGrid::CellOf(ShapePlace at) const
{
    return std::size_t(y_.CellOf(at.y)) * std::size_t(x_.cells) + std::size_t(x_.CellOf(at.x));
}

void PointGrid::Build(std::span<const ShapePlace> points)
{
    const auto isNumber = [](ShapePlace at) { return std::isfinite(at.x) && std::isfinite(at.y); };
    std::vector<double> xs;
    std::vector<double> ys;
    for (std::size_t i = 0; i < points.size(); i += 1 + points.size() / sampled) {
        if (isNumber(points[i])) {
            xs.push_back(points[i].x);
            ys.push_back(points[i].y);
        }
    }
    const int cells = std::clamp(int(std::sqrt(2.0 * double(points.size()))), 1, mostCellsOfAxis);
    // Cells of one row lie together in memory: few rows, many columns.
    x_ = AxisFor(std::move(xs), 2 * cells);
    y_ = AxisFor(std::move(ys), cells / 2 + 1);
    // Sorted by counting, which keeps the points of a cell in their order.
    starts_.assign(std::size_t(x_.cells) * std::size_t(y_.cells) + 2, 0);
    std::vector<u32> cellOf(points.size());
    u32 count = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (!isNumber(points[i]))
            continue;
        cellOf[i] = u32(CellOf(points[i]));
        ++starts_[cellOf[i] + 2];
        ++count;
    }
    std::partial_sum(starts_.begin(), starts_.end(), starts_.begin());
    entries_.resize(count);
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (isNumber(points[i]))
            entries_[starts_[cellOf[i] + 1]++] = {points[i], int(i)};
    }
    starts_.pop_back();
}

std::vector<int> PointGrid::PointsIn(const ShapeBounds& bounds) const
{
    std::vector<int> found;
    if (bounds.isEmpty || entries_.empty())
        return found;
    const auto [low, high, isEmpty] = bounds;
    const std::size_t left = std::size_t(x_.CellOf(low.x));
    const std::size_t right = std::size_t(x_.CellOf(high.x));
    const int top = y_.CellOf(high.y);
    for (int row = y_.CellOf(low.y); row <= top; ++row) {
        const u32* cell = &starts_[std::size_t(row) * std::size_t(x_.cells)];
        for (u32 i = cell[left]; i < cell[right + 1]; ++i) {
            const ShapePlace at = entries_[i].place;
            if (at.x >= low.x && at.x <= high.x && at.y >= low.y && at.y <= high.y)
                found.push_back(entries_[i].index);
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

int PointGrid::PointAt(ShapePlace at, ShapePlace tolerance, int from) const
{
    if (entries_.empty())
        return -1;
    const int left = x_.CellOf(at.x - tolerance.x);
    const int right = x_.CellOf(at.x + tolerance.x);
    const int top = y_.CellOf(at.y + tolerance.y);
    int found = std::numeric_limits<int>::max();
    for (int row = y_.CellOf(at.y - tolerance.y); row <= top; ++row) {
        const u32* cell = &starts_[std::size_t(row) * std::size_t(x_.cells)];
        for (u32 i = cell[left]; i < cell[right + 1]; ++i) {
            const Entry& entry = entries_[i];
            if (std::abs(entry.place.x - at.x) < tolerance.x &&
                std::abs(entry.place.y - at.y) < tolerance.y && entry.index >= from)
                found = std::min(found, entry.index);
        }
    }
    return found == std::numeric_limits<int>::max() ? -1 : found;
}

} // namespace Marlox
