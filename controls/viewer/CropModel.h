#pragma once

#include <array>

#include <QPointF>
#include <QSizeF>

namespace Marlox {

/// One direction of a crop: from the low edge (left, bottom) to the high one (right, top).
struct CropSpan {
    double low = 0.0;
    double high = 1.0;
    double size = 1.0;
};

/// At most one edge of each direction: those that the pointer is on, or holds.
struct CropEdges {
    enum Edge : unsigned char { None, Low, High };
    Edge x = None;
    Edge y = None;

    bool Any() const { return x != None || y != None; }
    friend bool operator==(const CropEdges&, const CropEdges&) = default;
};

/// The corners of a crop in view pixels; the first digit of the name tells the x edge (0 low, 1
/// high), the second the y edge.
struct CropCorners {
    QPointF p00;
    QPointF p10;
    QPointF p01;
    QPointF p11;

    /// The edges whose lines, endless both ways, are closer to the point than `reach`. A low edge
    /// wins over the high one. A line whose corners coincide runs along its direction.
    CropEdges EdgesAt(QPointF point, double reach) const;
};

/// The values of a crop and what follows from one for the others: a window-free model. Values are
/// whatever unit the inputs have, y upwards. They are told apart by index: 0 low x, 1 low y, 2 high
/// x, 3 high y, 4 width, 5 height. Size-linked, the sizes are what is stored and the high edges
/// follow; otherwise the edges are stored and the sizes follow.
class CropModel {
public:
    static constexpr int valueCount = 6;

    bool IsSizeLinked() const { return sizeLinked_; }
    void SetSizeLinked(bool linked) { sizeLinked_ = linked; }

    const CropSpan& X() const { return spans_[0]; }
    const CropSpan& Y() const { return spans_[1]; }
    double Value(int index) const;
    /// The values that are stored, in the order in which they are sent.
    std::array<int, 4> StoredValues() const;

    /// Whether a value is another than the one that is held: by more than 1e-5.
    static bool Differs(double value, double held);
    /// Takes over what an input has now. False: there is no such index, or it does not differ.
    bool Store(int index, double value);

    /// The edges divided by a size: in image coordinates.
    CropModel Normalised(const QSizeF& size) const;
    /// As it is with the grabbed edges at `cursor`, which is given divided by `size`. Sizes that
    /// are stored never fall below 0; edges that are stored may cross.
    CropModel Dragged(CropEdges grabbed, QPointF cursor, const QSizeF& size) const;

private:
    CropSpan DraggedSpan(CropSpan span, CropEdges::Edge edge, double to) const;

    std::array<CropSpan, 2> spans_; // x, y
    bool sizeLinked_ = false;
};

} // namespace Marlox
