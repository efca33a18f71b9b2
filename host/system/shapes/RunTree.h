#pragma once

#include "system/shapes/PolyPoint.h"

#include <algorithm>
#include <array>
#include <limits>
#include <span>
#include <vector>

namespace Marlox {

/// Boxes of things in a row, and of runs of eight neighbours, of eight such runs and so on: things
/// that are neighbours in a shape mostly are in the picture too, so that the boxes are small.
class MARLOXSYSTEM_EXPORT RunTree {
public:
    struct Box {
        ShapePlace low;
        ShapePlace high;
        static Box Of(std::span<const ShapePlace> places); // one that holds nothing, if one is NaN
        /// No more than the square of the distance to anything inside, however that is rounded.
        double SquareTo(ShapePlace at, ShapePlace scale) const;
    };
    /// Takes over the boxes of the things.
    void Build(std::vector<Box> boxes);
    /// Things, in ascending order, have other boxes now.
    void Update(std::span<const int> things, std::span<const Box> boxes);

    /// Calls `square(thing)` for those that may be nearest and returns the nearest; the first of
    /// equally near ones. -1: all are infinitely far away.
    template <class Square>
    int Nearest(ShapePlace at, ShapePlace scale, const Square& square) const;

private:
    static constexpr std::size_t run = 8;
    struct Best {
        double square;
        int thing = -1;
    };
    void Join(std::size_t level, std::size_t node);
    template <class Square>
    void Search(std::size_t level, std::size_t node, ShapePlace at, ShapePlace scale,
                const Square& square, Best& best) const;

    std::vector<std::vector<Box>> levels_; // from the things to one box
};

inline double RunTree::Box::SquareTo(ShapePlace at, ShapePlace scale) const
{
    const auto along = [](double from, double to, double place, double unit) {
        const double below = from - place;
        const double above = place - to;
        const double outside = std::max({below, above, 0.0});
        const double unsure = 1e-12 * std::max(std::abs(below), std::abs(above));
        return std::max(outside - unsure, 0.0) * unit;
    };
    const double x = along(low.x, high.x, at.x, scale.x);
    const double y = along(low.y, high.y, at.y, scale.y);
    return x * x + y * y;
}

template <class Square>
void RunTree::Search(std::size_t level, std::size_t node, ShapePlace at, ShapePlace scale,
                     const Square& square, Best& best) const
{
    if (level == 0) {
        const double found = square(int(node));
        if (found < best.square || (found == best.square && int(node) < best.thing))
            best = {found, int(node)};
        return;
    }
    struct Child {
        double square;
        std::size_t node;
    };
    std::array<Child, run> children;
    std::size_t count = 0;
    const std::vector<Box>& below = levels_[level - 1];
    for (std::size_t i = node * run; i < std::min(below.size(), (node + 1) * run); ++i) {
        const Child child{below[i].SquareTo(at, scale), i};
        if (child.square > best.square)
            continue;
        std::size_t place = count++; // the nearest first
        for (; place > 0 && children[place - 1].square > child.square; --place)
            children[place] = children[place - 1];
        children[place] = child;
    }
    for (std::size_t i = 0; i < count; ++i) {
        if (!(children[i].square > best.square)) // boxes without numbers stand anywhere
            Search(level - 1, children[i].node, at, scale, square, best);
    }
}

template <class Square>
int RunTree::Nearest(ShapePlace at, ShapePlace scale, const Square& square) const
{
    Best best{std::numeric_limits<double>::infinity()};
    if (!levels_.empty() && !levels_[0].empty())
        Search(levels_.size() - 1, 0, at, scale, square, best);
    return best.thing;
}

} // namespace Marlox
