#pragma once

#include "widgets/PointerDrag.h"

#include <array>

#include <QRect>

namespace Marlox {

/// Where the nodes of two tonal curves lie on a plot, and what the pointer does to them; no window.
/// Positions are 0 to 1 along both axes, y upwards. Pixels are the widget's, y downwards; the plot
/// runs from the pixel of position 0 to that of position 1 on each axis.
class ColorRangesModel {
public:
    static constexpr int nodeCount = 8;
    static constexpr int none = -1;
    /// Nodes 0 to 3 are the first curve: its start, the handle of the start, the handle of the end
    /// and the end; 4 to 7 are the second.
    using Positions = std::array<QPointF, nodeCount>;

    /// The plot's first and last pixels.
    void SetPlot(const QRect& plot) { plot_ = plot; }
    const QRect& Plot() const { return plot_; }

    QPointF ToPixel(QPointF position) const;
    /// The pixel in the middle of a node at this position.
    QPoint NodePixel(QPointF position) const;
    /// The position for a pointer: within the plot, on the grid of positions that the plot's longer
    /// side tells apart; of a fine drag on one ten times as fine.
    QPointF ToPosition(QPointF pixel, bool fine) const;
    /// The node under the pointer or `none`. Handles are looked for before starts and ends, so that
    /// one that lies on its end can be pulled away from it.
    int HitTest(const Positions& nodes, QPoint pointer) const;
    /// `way`, -1 to 1 along each axis, from a position, within the plot: a tenth, a hundredth or
    /// with level 0 a thousandth of it.
    static QPointF Nudged(QPointF position, QPoint way, int level);
    /// The position that a drag brings a node to which lay at `start` when it was pressed: that of
    /// the pointer, or, kept to one axis, along the axis on which it is further from the press.
    QPointF Dragged(const PointerDrag::Step& step, QPointF start) const;

private:
    double Across() const { return plot_.right() - plot_.left(); }
    double Down() const { return plot_.bottom() - plot_.top(); }

    QRect plot_;
};

} // namespace Marlox
