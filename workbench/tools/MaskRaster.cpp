#include "workbench/tools/MaskRaster.h"

#include "workbench/tools/ImageWindows.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

constexpr int rowsTogether = 32;   // stay in the processor's cache
constexpr double narrowest = 0.75; // pixels: edges below it are the antialiasing's alone,
constexpr double wideEnough = 1.5; // and above it the band's
constexpr double overlap = 1e-6;   // pixels by which triangles reach into their neighbours
constexpr double leastArea = 1e-7; // of a triangle
constexpr double rounding = 1e-6;  // pixels

double distance(const PixelPlace& a, const PixelPlace& b)
{
    return std::sqrt((b.x - a.x) * (b.x - a.x) + (b.y - a.y) * (b.y - a.y));
}

/// How wide the band is at a place of the inner outline, across it. There may be less to it than
/// the distance of the matching places: they may lie askew.
double widthAt(const MaskOutlines& outlines, std::size_t i)
{
    const std::size_t count = outlines.inner.size();
    const PixelPlace along =
        outlines.inner[i + 1 < count ? i + 1 : 0] - outlines.inner[i > 0 ? i - 1 : count - 1];
    const PixelPlace way = outlines.outer[i] - outlines.inner[i];
    const double length = std::sqrt(along.x * along.x + along.y * along.y);
    return length > 0.0 ? std::abs(along.x * way.y - along.y * way.x) / length
                        : distance(outlines.inner[i], outlines.outer[i]);
}

/// The inner outline moved outwards, to the middle of a narrow band and by half a pixel to almost a
/// whole one in wider bands. Together with the band's values in the middles of pixels it makes up
/// for what the inner outline leaves of those it runs through.
Outline coreOf(const MaskOutlines& outlines)
{
    Outline core;
    core.reserve(outlines.outer.size());
    for (std::size_t i = 0; i < outlines.outer.size(); ++i) {
        const PixelPlace& from = outlines.inner[i];
        const PixelPlace way = outlines.outer[i] - from;
        const double width = widthAt(outlines, i);
        const double by = 0.5 + 0.2 * std::clamp((width - 2.0) / 8.0, 0.0, 1.0);
        const double part = width > 2.0 * by ? by / width : 0.5;
        core.push_back({from.x + way.x * part, from.y + way.y * part});
    }
    return core;
}

/// Most of what it winds round.
bool windsPositively(const Outline& outline)
{
    double area = 0.0;
    for (std::size_t i = 0; i < outline.size(); ++i) {
        const PixelPlace& next = outline[i + 1 < outline.size() ? i + 1 : 0];
        area += outline[i].x * next.y - next.x * outline[i].y;
    }
    return area < 0.0;
}

float linear(float value)
{
    return value;
}

float smooth(float value)
{
    return value * value * (3.0f - 2.0f * value);
}

} // namespace

MxRect MaskOutlines::Bounds() const
{
    double left = INFINITY;
    double top = INFINITY;
    double right = -INFINITY;
    double bottom = -INFINITY;
    for (const Outline* outline : {&inner, &outer}) {
        for (const PixelPlace& place : *outline) {
            left = std::min(left, place.x);
            right = std::max(right, place.x);
            top = std::min(top, place.y);
            bottom = std::max(bottom, place.y);
        }
    }
    if (!(left < right && top < bottom))
        return {};
    // Less cover than that counts as none.
    return {int(std::floor(left + rounding)), int(std::floor(top + rounding)),
            int(std::ceil(right - rounding)), int(std::ceil(bottom - rounding))};
}

// SoftBand ---------------------------------------------------------------------------------------

SoftBand::SoftBand(const MaskOutlines& outlines, const MxRect& window) : window_(window)
{
    const std::size_t count = outlines.rungs.size();
    triangles_.reserve(count * 2);
    const auto corner = [&](const PixelPlace& place, double value) {
        return Corner{place.x - window.left, place.y - window.top, value};
    };
    const auto strength = [&](std::size_t i) {
        const double width = widthAt(outlines, i);
        return std::clamp((width - narrowest) / (wideEnough - narrowest), 0.0, 1.0);
    };
    for (std::size_t rung = 0; rung < count; ++rung) {
        const std::size_t i = outlines.rungs[rung];
        const std::size_t next = outlines.rungs[rung + 1 < count ? rung + 1 : 0];
        const Corner inner = corner(outlines.inner[i], strength(i));
        const Corner innerNext = corner(outlines.inner[next], strength(next));
        if (inner.value == 0.0 && innerNext.value == 0.0)
            continue;
        const Corner outer = corner(outlines.outer[i], 0.0);
        const Corner outerNext = corner(outlines.outer[next], 0.0);
        if (distance(outlines.inner[i], outlines.outer[next]) <
            distance(outlines.inner[next], outlines.outer[i])) {
            Add(inner, outerNext, innerNext);
            Add(inner, outer, outerNext);
        } else {
            Add(inner, outer, innerNext);
            Add(outer, outerNext, innerNext);
        }
    }
    order_ = OrderByRow(triangles_, window.Height(),
                        [](const Triangle& triangle) { return triangle.top.y; });
}

void SoftBand::Add(Corner a, Corner b, Corner c)
{
    const auto turn = [&] { return (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y); };
    if (std::abs(turn()) < leastArea)
        return; // where it is as thin its neighbours overlap
    (turn() < 0.0 ? hasLeft_ : hasRight_) = true;
    if (b.y < a.y)
        std::swap(a, b);
    if (c.y < b.y)
        std::swap(b, c);
    if (b.y < a.y)
        std::swap(a, b);
    if (c.y <= 0.0 || a.y >= window_.Height())
        return;
    const double area = turn();
    const double ab = b.value - a.value;
    const double ac = c.value - a.value;
    const double right = (ab * (c.y - a.y) - ac * (b.y - a.y)) / area;
    const double down = (ac * (b.x - a.x) - ab * (c.x - a.x)) / area;
    const auto slope = [](const Corner& from, const Corner& to) {
        return to.y > from.y ? (to.x - from.x) / (to.y - from.y) : 0.0;
    };
    triangles_.push_back({{a.x, a.y},
                          {b.x, b.y},
                          c.y,
                          slope(a, c),
                          slope(a, b),
                          slope(b, c),
                          a.value,
                          right,
                          down,
                          area > 0.0});
}

/// Rows `first` to `last`, which the upper side or the lower one and the whole one bound: the
/// pixels whose middles lie between them.
template <class Shaped>
void SoftBand::DrawHalf(const Triangle& triangle, bool isUpper, int first, int last, float* to,
                        std::ptrdiff_t stride, Shaped shaped) const
{
    const PixelPlace& corner = isUpper ? triangle.top : triangle.middle;
    const double slope = isUpper ? triangle.upper : triangle.lower;
    const double farRight = window_.Width();
    const double each = triangle.right;
    const auto step = float(each);
    for (int row = first; row < last; ++row, to += stride) {
        const double y = row + 0.5;
        double left = triangle.top.x + (y - triangle.top.y) * triangle.whole;
        double right = corner.x + (y - corner.y) * slope;
        if (!triangle.isWholeLeft)
            std::swap(left, right);
        const double from = std::max(left - 0.5 - overlap, 0.0);
        const double end = std::clamp(right + 0.5 + overlap, 0.0, farRight);
        const int column = int(from) + int(double(int(from)) < from);
        const int count = int(end) - column;
        const auto begin = float(triangle.value + (column + 0.5 - triangle.top.x) * each +
                                 (y - triangle.top.y) * triangle.down);
        float* at = to + column;
        for (int i = 0; i < count; ++i) {
            const float value = begin + step * float(i);
            const float shapedValue = shaped(value < 0.0f ? 0.0f : value < 1.0f ? value : 1.0f);
            at[i] = at[i] < shapedValue ? shapedValue : at[i];
        }
    }
}

template <class Shaped>
void SoftBand::Draw(const Triangle& triangle, int first, int last, float* to, std::ptrdiff_t stride,
                    Shaped shaped) const
{
    const auto rowOf = [&](double y) { // the first one whose middle is not above
        return int(std::ceil(std::clamp(y - 0.5, double(first), double(last))));
    };
    const int from = rowOf(triangle.top.y);
    const int middle = rowOf(triangle.middle.y);
    const int end = rowOf(triangle.bottom + overlap);
    DrawHalf(triangle, true, from, middle, to + (from - first) * stride, stride, shaped);
    DrawHalf(triangle, false, middle, end, to + (middle - first) * stride, stride, shaped);
}

void SoftBand::Walk::Raise(int count, Falloff falloff, float* to, std::ptrdiff_t stride)
{
    const std::vector<Triangle>& triangles = band_.triangles_;
    const int last = row_ + count;
    const std::vector<u32>& order = band_.order_;
    for (; next_ < order.size() && triangles[order[next_]].top.y < last; ++next_) {
        if (triangles[order[next_]].bottom > row_)
            active_.push_back(order[next_]);
    }
    for (const u32 index : active_) {
        if (falloff == Falloff::Smooth)
            band_.Draw(triangles[index], row_, last, to, stride, smooth);
        else
            band_.Draw(triangles[index], row_, last, to, stride, linear);
    }
    std::erase_if(active_, [&](u32 index) { return triangles[index].bottom <= last; });
    row_ = last;
}

// MaskRaster -------------------------------------------------------------------------------------

MaskRaster::MaskRaster(const MaskOutlines& outlines, FillRule rule, Falloff falloff,
                       const MxRect& window)
    : window_(window), covered_(Shared(window, outlines.Bounds())), falloff_(falloff),
      isSoft_(!outlines.outer.empty()), inner_(outlines.inner, rule, covered_),
      core_(coreOf(outlines), rule, covered_), outer_(outlines.outer, FillRule::NonZero, covered_),
      filled_(rule == FillRule::EvenOdd ? outlines.inner : Outline(), FillRule::NonZero, covered_),
      band_(outlines, covered_), rule_(rule),
      isPlain_(rule == FillRule::NonZero && !band_.IsFolded() &&
               band_.GrowsPositive() == windsPositively(outlines.inner))
{
}

void MaskRaster::Rows(int first, int last, float* to, std::ptrdiff_t stride,
                      const RenderContext& context) const
{
    const auto row = [&](int y) { return to + (y - first) * stride; };
    if (covered_.IsEmpty()) {
        for (int y = first; y < last; ++y)
            std::fill_n(row(y), window_.Width(), 0.0f);
        return;
    }
    const int top = std::clamp(covered_.top - window_.top, first, last);
    const int bottom = std::clamp(covered_.bottom - window_.top, top, last);
    const int left = covered_.left - window_.left;
    for (int y = first; y < last; ++y) {
        const bool isCovered = y >= top && y < bottom;
        std::fill(row(y), row(y) + (isCovered ? left : window_.Width()), 0.0f);
        if (isCovered)
            std::fill(row(y) + left + covered_.Width(), row(y) + window_.Width(), 0.0f);
    }
    const int above = covered_.top - window_.top;
    if (isSoft_)
        return SoftRows(top - above, bottom - above, row(top) + left, stride, context);
    ShapeRaster::Walk walk(inner_, top - above);
    for (int y = top; y < bottom && !context.IsCancelled(); ++y)
        walk.Next(row(y) + left, RasterJoin::Replace);
}

/// Mostly the band lies around the core, which holds the inner outline. Where it folds, or the
/// inner outline winds the other way round, the band is drawn first and cut at the outer outline:
/// what lies within the inner one, or beyond both, is none of its.
void MaskRaster::SoftRows(int first, int last, float* to, std::ptrdiff_t stride,
                          const RenderContext& context) const
{
    ShapeRaster::Walk plain(core_, first);
    ShapeRaster::Walk outer(outer_, first);
    ShapeRaster::Walk core(core_, first);
    ShapeRaster::Walk inner(inner_, first);
    ShapeRaster::Walk filled(filled_, first);
    SoftBand::Walk band(band_, first);
    for (int row = first; row < last && !context.IsCancelled();) {
        const int count = std::min(rowsTogether, last - row);
        bool isPlain = isPlain_;
        plain.SkipTo(row);
        for (int i = 0; i < count && isPlain; ++i) {
            plain.Next(to + i * stride, RasterJoin::Replace);
            isPlain =
                !(band_.GrowsPositive() ? plain.HasNegativeWinding() : plain.HasPositiveWinding());
        }
        for (int i = 0; i < count && !isPlain; ++i)
            std::fill_n(to + i * stride, covered_.Width(), 0.0f);
        band.Raise(count, falloff_, to, stride);
        outer.SkipTo(row);
        core.SkipTo(row);
        inner.SkipTo(row);
        filled.SkipTo(row);
        for (int i = 0; i < count && !isPlain; ++i) {
            outer.Next(to + i * stride, RasterJoin::Minimum);
            if (rule_ == FillRule::EvenOdd)
                filled.Next(to + i * stride, RasterJoin::Clear);
            core.Next(to + i * stride, RasterJoin::Maximum);
            inner.Next(to + i * stride, RasterJoin::Maximum);
        }
        row += count;
        to += count * stride;
    }
}

} // namespace Marlox
