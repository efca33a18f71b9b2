#include "widgets/ColorRangesModel.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Marlox {

namespace {

constexpr int hitOrder[] = {1, 2, 5, 6, 0, 3, 4, 7};
constexpr int reach = 5; // pixels from a node's middle to the first that misses it
constexpr double fineSteps = 10.0;
constexpr double nudgeGrid = 1e4; // takes what adding up leaves behind

/// 0 to 1; a plot without extent has nothing but its beginning.
double share(double part, double extent)
{
    return extent > 0.0 ? std::clamp(part / extent, 0.0, 1.0) : 0.0;
}

} // namespace

QPointF ColorRangesModel::ToPixel(QPointF position) const
{
    return {plot_.left() + Across() * position.x(), plot_.top() + Down() * (1.0 - position.y())};
}

QPoint ColorRangesModel::NodePixel(QPointF position) const
{
    const QPointF pixel = ToPixel(position);
    return {int(std::lround(pixel.x())), int(std::lround(pixel.y()))};
}

QPointF ColorRangesModel::ToPosition(QPointF pixel, bool fine) const
{
    const double steps = StepsOf(std::max(Across(), Down())) * (fine ? fineSteps : 1.0);
    return {OnSteps(share(pixel.x() - plot_.left(), Across()), steps),
            OnSteps(1.0 - share(pixel.y() - plot_.top(), Down()), steps)};
}

int ColorRangesModel::HitTest(const Positions& nodes, QPoint pointer) const
{
    for (const int node : hitOrder) {
        const QPoint distance = NodePixel(nodes[std::size_t(node)]) - pointer;
        if (std::abs(distance.x()) < reach && std::abs(distance.y()) < reach)
            return node;
    }
    return none;
}

QPointF ColorRangesModel::Nudged(QPointF position, QPoint way, int level)
{
    const double step = NudgeOf(level);
    const auto moved = [step](double from, int by) {
        return by == 0 ? from : std::clamp(OnSteps(from + by * step, nudgeGrid), 0.0, 1.0);
    };
    return {moved(position.x(), way.x()), moved(position.y(), way.y())};
}

QPointF ColorRangesModel::Dragged(const PointerDrag::Step& step, QPointF start) const
{
    const QPointF to = ToPosition(step.at, step.fine);
    if (!step.oneAxis)
        return to;
    const QPointF way = step.at - step.press;
    return std::abs(way.x()) >= std::abs(way.y()) ? QPointF(to.x(), start.y())
                                                  : QPointF(start.x(), to.y());
}

} // namespace Marlox
