#include "script/LayoutModel.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

namespace Marlox {

namespace {

int Sum(int a, int b)
{
    return std::min(a + b, LayoutExtent::Any);
}

/// Turns real sizes into whole ones by rounding the edges between them, so that no gap opens. A
/// size between two whole numbers stays between them: the small addition keeps edges in the middle
/// of a pixel from falling to one side or the other by the error of a sum.
void RoundEdges(std::span<const double> sizes, std::vector<int>& rounded)
{
    double edge = 0.0;
    double before = 0.0;
    for (double size : sizes) {
        edge += size;
        const double after = std::floor(edge + 0.5 + 1e-6);
        rounded.push_back(int(after - before));
        before = after;
    }
}

/// A place of `size` within `room` that begins at `start`.
std::pair<int, int> Place(int start, int room, int size, LayoutBox::Align align)
{
    int offset = 0;
    if (align == LayoutBox::Align::End)
        offset = room - size;
    else if (align != LayoutBox::Align::Start)
        offset = (room - size) / 2;
    return {start + offset, start + offset + size};
}

} // namespace

void ShareSpace(std::span<const LayoutShare> parts, int total, std::vector<int>& sizes)
{
    sizes.clear();
    std::vector<double> real;
    real.reserve(parts.size());
    double needed = 0.0;
    for (const LayoutShare& part : parts) {
        real.push_back(part.minimum);
        needed += part.minimum;
    }
    double surplus = double(total) - needed;
    if (surplus < 0.0) {
        for (double& size : real)
            size *= std::max(total, 0) / needed;
        RoundEdges(real, sizes);
        return;
    }
    // Each round fills at least one part up to its maximum or shares out all that is left.
    std::vector<char> open(parts.size());
    for (std::size_t i = 0; i < parts.size(); ++i)
        open[i] = parts[i].weight > 0.0 && parts[i].maximum > parts[i].minimum;
    for (bool filled = true; filled && surplus > 0.0;) {
        filled = false;
        double weights = 0.0;
        for (std::size_t i = 0; i < parts.size(); ++i)
            weights += open[i] ? parts[i].weight : 0.0;
        const double unit = weights > 0.0 ? surplus / weights : 0.0;
        for (std::size_t i = 0; i < parts.size(); ++i) {
            if (open[i] && parts[i].minimum + unit * parts[i].weight >= parts[i].maximum) {
                real[i] = parts[i].maximum;
                surplus -= parts[i].maximum - parts[i].minimum;
                open[i] = false;
                filled = true;
            }
        }
        for (std::size_t i = 0; !filled && i < parts.size(); ++i)
            real[i] += open[i] ? unit * parts[i].weight : 0.0;
    }
    RoundEdges(real, sizes);
}

void LayoutBox::Measure()
{
    for (LayoutBox* child : children)
        child->Measure();
    shown = ComputeShown();
    for (int axis = 0; axis < 2; ++axis)
        measured[axis] = !shown      ? LayoutExtent{0, 0, 0}
                         : IsGroup() ? MeasureGroup(axis)
                                     : MeasureLeaf(axis);
}

bool LayoutBox::ComputeShown() const
{
    if (kind == Kind::Spacer)
        return true;
    const bool reserved = limits[0].minimum > 0 || limits[1].minimum > 0;
    if (!IsGroup())
        return hasContent ? contentVisible : reserved;
    if (children.empty())
        return reserved;
    // A group of nothing but spacers is one; beside content that is all hidden they go with it.
    bool onlySpacers = true;
    for (const LayoutBox* child : children) {
        const bool spacer = child->kind == Kind::Spacer;
        onlySpacers = onlySpacers && spacer;
        if (!spacer && child->shown)
            return true;
    }
    return onlySpacers;
}

LayoutExtent LayoutBox::MeasureLeaf(int axis) const
{
    const LayoutExtent& limit = limits[axis];
    const LayoutExtent& own = content[axis];
    const int minimum =
        std::min(std::max(hasContent ? own.minimum : 0, limit.minimum), limit.maximum);
    // Aligned content leaves the rest of its place empty, so the place itself may grow.
    const bool bounded = hasContent && align[axis] == Align::Fill;
    const int maximum = std::min(bounded ? own.maximum : LayoutExtent::Any, limit.maximum);
    return {minimum, 0, std::max(minimum, maximum)};
}

int LayoutBox::Gaps() const
{
    int count = 0;
    for (const LayoutBox* child : children)
        count += child->shown;
    return count > 1 ? (count - 1) * spacing : 0;
}

LayoutExtent LayoutBox::MeasureGroup(int axis) const
{
    LayoutExtent total{0, 0, 0};
    const bool along = axis == MainAxis();
    for (const LayoutBox* child : children) {
        if (!child->shown || (!along && child->kind == Kind::Spacer))
            continue;
        const LayoutExtent& part = child->measured[axis];
        total.minimum =
            along ? Sum(total.minimum, part.minimum) : std::max(total.minimum, part.minimum);
        total.maximum =
            along ? Sum(total.maximum, part.maximum) : std::max(total.maximum, part.maximum);
    }
    const int fixed = margins[axis] + margins[axis + 2] + (along ? Gaps() : 0);
    const LayoutExtent& limit = limits[axis];
    const int minimum = std::min(std::max(Sum(total.minimum, fixed), limit.minimum), limit.maximum);
    return {minimum, 0, std::max(minimum, std::min(Sum(total.maximum, fixed), limit.maximum))};
}

void LayoutBox::Arrange(const MxRect& place)
{
    rect = place;
    if (IsGroup()) {
        const int width = std::min(place.Width(), limits[0].maximum);
        const int height = std::min(place.Height(), limits[1].maximum);
        std::tie(rect.left, rect.right) = Place(place.left, place.Width(), width, align[0]);
        std::tie(rect.top, rect.bottom) = Place(place.top, place.Height(), height, align[1]);
        ArrangeGroup();
    } else {
        ArrangeLeaf();
    }
}

void LayoutBox::ArrangeLeaf()
{
    const std::array<std::pair<int, int>, 2> room{
        {{rect.left, rect.Width()}, {rect.top, rect.Height()}}};
    std::array<std::pair<int, int>, 2> placed;
    for (int axis = 0; axis < 2; ++axis) {
        const auto [start, available] = room[axis];
        const LayoutExtent& own = content[axis];
        const LayoutExtent& limit = limits[axis];
        const int wanted =
            align[axis] == Align::Fill ? own.maximum : std::max(own.preferred, limit.minimum);
        const int size = std::clamp(std::min(wanted, limit.maximum), 0, std::max(available, 0));
        placed[axis] = Place(start, available, size, align[axis]);
    }
    inner = {placed[0].first, placed[1].first, placed[0].second, placed[1].second};
}

void LayoutBox::ArrangeGroup()
{
    const int main = MainAxis();
    const MxRect area(rect.left + margins[0], rect.top + margins[1], rect.right - margins[2],
                      rect.bottom - margins[3]);
    std::vector<LayoutShare> parts;
    parts.reserve(children.size());
    for (const LayoutBox* child : children) {
        if (child->shown)
            parts.push_back(
                {child->measured[main].minimum, child->measured[main].maximum, child->weight});
    }
    const int length = (main == 0 ? area.Width() : area.Height()) - Gaps();
    std::vector<int> sizes;
    ShareSpace(parts, length, sizes);

    int unused = length;
    for (int size : sizes)
        unused -= size;
    const Align own = align[main] == Align::Fill ? Align::Start : align[main];
    int at = Place(main == 0 ? area.left : area.top, std::max(unused, 0), 0, own).first;
    auto size = sizes.begin();
    for (LayoutBox* child : children) {
        if (child->shown && size != sizes.begin())
            at += spacing;
        const int end = at + (child->shown ? *size++ : 0);
        child->Arrange(main == 0 ? MxRect(at, area.top, end, area.bottom)
                                 : MxRect(area.left, at, area.right, end));
        at = end;
    }
}

} // namespace Marlox
