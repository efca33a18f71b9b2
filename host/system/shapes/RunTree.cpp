#include "system/shapes/RunTree.h"

#include <cmath>

namespace Marlox {

namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();

} // namespace

RunTree::Box RunTree::Box::Of(std::span<const ShapePlace> places)
{
    Box box{{infinite, infinite}, {-infinite, -infinite}};
    for (const ShapePlace& place : places) {
        if (std::isnan(place.x) || std::isnan(place.y))
            return {{infinite, infinite}, {-infinite, -infinite}};
        box.low = {std::min(box.low.x, place.x), std::min(box.low.y, place.y)};
        box.high = {std::max(box.high.x, place.x), std::max(box.high.y, place.y)};
    }
    return box;
}

void RunTree::Join(std::size_t level, std::size_t node)
{
    const std::vector<Box>& below = levels_[level - 1];
    Box joined{{infinite, infinite}, {-infinite, -infinite}};
    for (std::size_t i = node * run; i < std::min(below.size(), (node + 1) * run); ++i) {
        joined.low = {std::min(joined.low.x, below[i].low.x),
                      std::min(joined.low.y, below[i].low.y)};
        joined.high = {std::max(joined.high.x, below[i].high.x),
                       std::max(joined.high.y, below[i].high.y)};
    }
    levels_[level][node] = joined;
}

void RunTree::Build(std::vector<Box> boxes)
{
    levels_.clear();
    levels_.push_back(std::move(boxes));
    while (levels_.back().size() > 1) {
        levels_.emplace_back((levels_.back().size() + run - 1) / run);
        for (std::size_t node = 0; node < levels_.back().size(); ++node)
            Join(levels_.size() - 1, node);
    }
}

void RunTree::Update(std::span<const int> things, std::span<const Box> boxes)
{
    std::vector<std::size_t> changed;
    for (std::size_t i = 0; i < things.size(); ++i) {
        levels_[0][std::size_t(things[i])] = boxes[i];
        changed.push_back(std::size_t(things[i]));
    }
    for (std::size_t level = 1; level < levels_.size(); ++level) {
        for (std::size_t& node : changed)
            node /= run;
        changed.erase(std::unique(changed.begin(), changed.end()), changed.end());
        for (const std::size_t node : changed)
            Join(level, node);
    }
}

} // namespace Marlox
