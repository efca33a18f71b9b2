#include "controls/viewer/CropModel.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

constexpr double tolerance = 1e-5;
constexpr double CropSpan::*parts[] = {&CropSpan::low, &CropSpan::high, &CropSpan::size};

/// From a point to the line through two others; `normal` is the line's where these coincide.
double Distance(QPointF point, QPointF from, QPointF to, QPointF normal)
{
    const QPointF along = to - from;
    const double length = std::hypot(along.x(), along.y());
    if (length > 0.0)
        normal = QPointF(-along.y(), along.x()) / length;
    return std::abs(QPointF::dotProduct(point - from, normal));
}

CropSpan Divided(const CropSpan& span, double by)
{
    return {span.low / by, span.high / by, span.size / by};
}

} // namespace

CropEdges CropCorners::EdgesAt(QPointF point, double reach) const
{
    const auto pick = [&](double low, double high) {
        if (low < reach)
            return CropEdges::Low;
        return high < reach ? CropEdges::High : CropEdges::None;
    };
    constexpr QPointF acrossX(1.0, 0.0);
    constexpr QPointF acrossY(0.0, 1.0);
    return {pick(Distance(point, p00, p01, acrossX), Distance(point, p10, p11, acrossX)),
            pick(Distance(point, p00, p10, acrossY), Distance(point, p01, p11, acrossY))};
}

double CropModel::Value(int index) const
{
    return spans_[index % 2].*parts[index / 2];
}

std::array<int, 4> CropModel::StoredValues() const
{
    return sizeLinked_ ? std::array{0, 1, 4, 5} : std::array{0, 1, 2, 3};
}

bool CropModel::Differs(double value, double held)
{
    // What is no number yields to any number.
    return std::isnan(held) ? !std::isnan(value) : std::abs(value - held) > tolerance;
}

bool CropModel::Store(int index, double value)
{
    if (index < 0 || index >= valueCount || !Differs(value, Value(index)))
        return false;
    CropSpan& span = spans_[index % 2];
    const auto part = parts[index / 2];
    span.*part = value;
    if (part == &CropSpan::size || (part == &CropSpan::low && sizeLinked_))
        span.high = span.low + span.size;
    else if (index == 3)
        span.size = span.low - span.high; // meant: the sign is the other than everywhere else
    else
        span.size = span.high - span.low;
    return true;
}

CropModel CropModel::Normalised(const QSizeF& size) const
{
    CropModel normalised(*this);
    normalised.spans_ = {Divided(X(), size.width()), Divided(Y(), size.height())};
    return normalised;
}

CropSpan CropModel::DraggedSpan(CropSpan span, CropEdges::Edge edge, double to) const
{
    if (sizeLinked_) {
        if (edge == CropEdges::Low) {
            span.size = std::max(span.size - (to - span.low), 0.0);
            span.low = to;
        } else if (edge == CropEdges::High) {
            span.size = std::max(to - span.low, 0.0);
        }
        span.high = span.low + span.size;
        return span;
    }
    if (edge == CropEdges::Low)
        span.low = to;
    else if (edge == CropEdges::High)
        span.high = to;
    span.size = span.high - span.low;
    return span;
}

CropModel CropModel::Dragged(CropEdges grabbed, QPointF cursor, const QSizeF& size) const
{
    const auto drag = [this](const CropSpan& span, CropEdges::Edge edge, double to, double scale) {
        const CropSpan before = Divided(span, scale);
        const CropSpan after = DraggedSpan(before, edge, to);
        CropSpan dragged;
        // What stays keeps every digit: a large value comes back from the division as another.
        for (const auto part : parts)
            dragged.*part = after.*part == before.*part ? span.*part : after.*part * scale;
        return dragged;
    };
    CropModel dragged(*this);
    dragged.spans_ = {drag(X(), grabbed.x, cursor.x(), size.width()),
                      drag(Y(), grabbed.y, cursor.y(), size.height())};
    return dragged;
}

} // namespace Marlox
