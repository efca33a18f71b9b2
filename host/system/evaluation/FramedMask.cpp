#include "system/evaluation/FramedMask.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

/// From the pixels of one frame to those of another, along one axis.
struct Axis {
    double from;
    double scale;
    double to;

    double At(double place) const { return (place - from) * scale + to; }
};

Axis horizontal(const MxRect& from, const MxRect& to)
{
    return {double(from.left), double(to.Width()) / from.Width(), double(to.left)};
}

Axis vertical(const MxRect& from, const MxRect& to)
{
    return {double(from.top), double(to.Height()) / from.Height(), double(to.top)};
}

/// The two pixels whose middles a place lies between, along one axis, within an edge that does not
/// fade.
struct Between {
    Between(double place, int low, int high)
        : first(int(std::floor(place - 0.5))), second(first + 1), part(float(place - 0.5 - first))
    {
        if (place < low || place > high)
            return;
        first = std::max(first, low);
        second = std::min(second, high - 1);
    }

    float Mixed(float one, float other) const { return one + (other - one) * part; }

    int first;
    int second;
    float part;
};

float strength(float alpha)
{
    return alpha > 0.0f ? std::min(alpha, 1.0f) : 0.0f; // what is not a number covers nothing
}

} // namespace

FramedMask::FramedMask(const Ref<Image>& image)
    : image_(image && !image->GetFormat().displayWindow.IsEmpty() ? image : Ref<Image>())
{
}

MxRect FramedMask::Covered(const MxRect& frame) const
{
    if (!image_ || image_->GetFormat().dataWindow.IsEmpty() || frame.IsEmpty())
        return {};
    const MxRect& window = image_->GetFormat().dataWindow;
    const MxRect& own = image_->GetFormat().displayWindow;
    if (own == frame)
        return window;
    const Axis x = horizontal(own, frame);
    const Axis y = vertical(own, frame);
    // Samples between pixels reach a pixel further.
    return {int(std::floor(x.At(window.left - 1))), int(std::floor(y.At(window.top - 1))),
            int(std::ceil(x.At(window.right + 1))), int(std::ceil(y.At(window.bottom + 1)))};
}

/// From the data window's left edge on, each fourth; null: there is no such row.
const float* FramedMask::AlphasOf(int y) const
{
    const MxRect& window = image_->GetFormat().dataWindow;
    return y >= window.top && y < window.bottom ? image_->Row(y - window.top) + 3 : nullptr;
}

void FramedMask::Alphas(const MxRect& frame, int left, int y, float* alphas, int count) const
{
    std::fill_n(alphas, count, 0.0f);
    if (!image_ || image_->GetFormat().dataWindow.IsEmpty() || frame.IsEmpty())
        return;
    const MxRect& window = image_->GetFormat().dataWindow;
    const MxRect& own = image_->GetFormat().displayWindow;
    if (own == frame) {
        const float* const row = AlphasOf(y);
        const int end = row ? std::min(left + count, window.right) : left;
        for (int x = std::max(left, window.left); x < end; ++x)
            alphas[x - left] = strength(row[std::ptrdiff_t(x - window.left) * 4]);
        return;
    }
    // Neither a full frame nor what lies beyond it fades at the frame's edge.
    const Axis across = horizontal(frame, own);
    const int low = std::min(own.left, window.left);
    const int high = std::max(own.right, window.right);
    const Between rows(vertical(frame, own).At(y + 0.5), std::min(own.top, window.top),
                       std::max(own.bottom, window.bottom));
    const float* const upper = AlphasOf(rows.first);
    const float* const lower = AlphasOf(rows.second);
    const auto at = [&window](const float* row, int x) {
        const bool is = row && x >= window.left && x < window.right;
        return is ? strength(row[std::ptrdiff_t(x - window.left) * 4]) : 0.0f;
    };
    if (!upper && !lower)
        return;
    for (int i = 0; i < count; ++i) {
        const Between columns(across.At(left + i + 0.5), low, high);
        alphas[i] = rows.Mixed(columns.Mixed(at(upper, columns.first), at(upper, columns.second)),
                               columns.Mixed(at(lower, columns.first), at(lower, columns.second)));
    }
}

} // namespace Marlox
