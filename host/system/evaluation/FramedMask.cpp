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

/// The two pixels whose middles a place lies between, along one axis. Within the frame those are
/// pixels of it: its edge does not fade.
class Pair {
public:
    Pair(double place, int low, int high)
        : first_(int(std::floor(place - 0.5))), second_(first_ + 1),
          part_(float(place - 0.5 - first_))
    {
        if (place < low || place > high)
            return;
        first_ = std::max(first_, low);
        second_ = std::min(second_, high - 1);
    }

    template <class Value>
    float Mixed(Value value) const
    {
        const float first = value(first_);
        return first + (value(second_) - first) * part_;
    }

private:
    int first_;
    int second_;
    float part_;
};

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

float FramedMask::At(int x, int y) const
{
    const MxRect& window = image_->GetFormat().dataWindow;
    if (!window.Contains({x, y}))
        return 0.0f;
    const float value = image_->Row(y - window.top)[std::ptrdiff_t(x - window.left) * 4 + 3];
    return value > 0.0f ? std::min(value, 1.0f) : 0.0f; // what is not a number covers nothing
}

float FramedMask::Between(double x, double y) const
{
    const MxRect& frame = image_->GetFormat().displayWindow;
    const Pair across(x, frame.left, frame.right);
    const Pair down(y, frame.top, frame.bottom);
    const auto row = [&](int at) {
        return across.Mixed([&](int column) { return At(column, at); });
    };
    return down.Mixed(row);
}

void FramedMask::Alphas(const MxRect& frame, int left, int y, float* alphas, int count) const
{
    if (!image_ || frame.IsEmpty()) {
        std::fill_n(alphas, count, 0.0f);
        return;
    }
    const MxRect& own = image_->GetFormat().displayWindow;
    if (own == frame) {
        for (int i = 0; i < count; ++i)
            alphas[i] = At(left + i, y);
        return;
    }
    const Axis across = horizontal(frame, own);
    const double row = vertical(frame, own).At(y + 0.5);
    for (int i = 0; i < count; ++i)
        alphas[i] = Between(across.At(left + i + 0.5), row);
}

} // namespace Marlox
