#include "workbench/tools/ColorGradient.h"

#include "workbench/tools/ColorInputs.h"
#include "workbench/tools/ImageWindows.h"
#include "workbench/tools/OverlayInputs.h"
#include "workbench/tools/ToolInputs.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

using Pixel = std::array<float, 4>;

struct Ramp {
    QPointF start;
    QPointF end;
    GradientShape shape = GradientShape::Linear;
    bool behind = false;
    double mix = 1.0;
    Color startColor{};
    Color endColor{};
};

/// Alpha multiplied in, as strong as the mix wants it.
Pixel layerOf(const Color& color, double mix)
{
    Pixel pixel{};
    const double cover = color[3] * mix;
    for (std::size_t i = 0; i < 3; ++i)
        pixel[i] = float(color[i] * cover);
    pixel[3] = float(cover);
    return pixel;
}

/// The ramp in the pixels of one picture: how far, 0 to 1, a pixel is from the start to the end.
class RampLine {
public:
    RampLine(const Ramp& ramp, const Image::Format& format)
        : shape_(ramp.shape), aspect_(format.pixelAspect)
    {
        const auto place = [&](const QPointF& point) {
            const QPointF pixel = PlaceIn(format.displayWindow, point.x(), point.y());
            return QPointF(pixel.x() * aspect_, pixel.y());
        };
        start_ = place(ramp.start);
        const QPointF way = place(ramp.end) - start_;
        const double square = way.x() * way.x() + way.y() * way.y();
        isPoint_ = !(square > 0.0) || !std::isfinite(square);
        step_ = QPointF(way.x() / square, way.y() / square);
        perPixel_ = 1.0 / std::sqrt(square);
    }

    /// Positions 0 to 1 for `count` pixels from the left end of row `y`, image coordinates.
    void Row(int left, int y, int count, float* to) const
    {
        // Of two points in one place, or one out of reach, all lies beyond the first.
        if (isPoint_) {
            std::fill_n(to, count, 1.0f);
            return;
        }
        const double acrossStart = (left + 0.5) * aspect_ - start_.x();
        const double down = y + 0.5 - start_.y();
        if (shape_ == GradientShape::Linear) {
            const double first = acrossStart * step_.x() + down * step_.y();
            const double step = aspect_ * step_.x();
            for (int i = 0; i < count; ++i)
                to[i] = float(std::clamp(first + i * step, 0.0, 1.0));
            return;
        }
        for (int i = 0; i < count; ++i) {
            const double across = acrossStart + i * aspect_;
            to[i] = float(std::min(std::sqrt(across * across + down * down) * perPixel_, 1.0));
        }
    }

private:
    GradientShape shape_;
    double aspect_;
    QPointF start_; // square pixels, y down
    QPointF step_;  // of the position, for each
    double perPixel_ = 0.0;
    bool isPoint_ = false;
};

class GradientProcess final : public ToolProcess {
public:
    explicit GradientProcess(const Ramp& ramp)
        : ramp_(ramp), start_(layerOf(ramp.startColor, ramp.mix)),
          end_(layerOf(ramp.endColor, ramp.mix))
    {
    }

    Ref<Image> Run(const Ref<Image>& upstream, RenderContext& context, QString&) override
    {
        if (upstream && start_ == Pixel{} && end_ == Pixel{})
            return upstream; // nothing to see of it
        Image::Format format = upstream ? upstream->GetFormat() : StandardFormat(context);
        format.dataWindow = United(format.displayWindow, format.dataWindow);
        auto result = MakeRef<Image>(format);
        const RampLine line(ramp_, format);
        context.ForRows(result->Height(), [&](int first, int last) {
            std::vector<float> positions(std::size_t(result->Width()));
            for (int row = first; row < last; ++row) {
                if (upstream)
                    CopyRow(*upstream, row, *result);
                line.Row(format.dataWindow.left, format.dataWindow.top + row, result->Width(),
                         positions.data());
                ramp_.behind ? LayRowBehind(positions, result->Row(row))
                             : LayRowOver(positions, result->Row(row));
            }
        });
        return context.IsCancelled() ? Ref<Image>() : result;
    }

    bool NeedsUpstream() const override { return false; }

    std::string CacheKey() const override
    {
        std::string key = KeyOf({ramp_.start.x(), ramp_.start.y(), ramp_.end.x(), ramp_.end.y(),
                                 double(ramp_.shape), double(ramp_.behind), ramp_.mix});
        for (const Color& color : {ramp_.startColor, ramp_.endColor})
            key += KeyOf({color[0], color[1], color[2], color[3]});
        return key;
    }

private:
    static void CopyRow(const Image& from, int row, Image& to)
    {
        const MxRect& source = from.GetFormat().dataWindow;
        const MxRect& window = to.GetFormat().dataWindow;
        const int y = window.top + row - source.top;
        if (!source.IsEmpty() && y >= 0 && y < source.Height())
            std::copy_n(from.Row(y), std::ptrdiff_t(source.Width()) * 4,
                        to.Row(row) + std::ptrdiff_t(source.left - window.left) * 4);
    }

    float At(float position, std::size_t channel) const
    {
        return start_[channel] + (end_[channel] - start_[channel]) * position;
    }

    /// The gradient over what is there.
    void LayRowOver(const std::vector<float>& positions, float* pixel) const
    {
        for (const float position : positions) {
            const float seen = 1.0f - At(position, 3);
            for (std::size_t i = 0; i < 4; ++i) {
                // Wholly covered is gone, even what is infinite or not a number.
                pixel[i] = (seen > 0.0f ? pixel[i] * seen : 0.0f) + At(position, i);
            }
            pixel += 4;
        }
    }

    void LayRowBehind(const std::vector<float>& positions, float* pixel) const
    {
        for (const float position : positions) {
            const float seen = std::clamp(1.0f - pixel[3], 0.0f, 1.0f);
            for (std::size_t i = 0; i < 4; ++i)
                pixel[i] += At(position, i) * seen;
            pixel += 4;
        }
    }

    Ramp ramp_;
    Pixel start_;
    Pixel end_;
};

} // namespace

ColorGradient::ColorGradient(const Registry* record) : Operator(record)
{
    AddImageInput(*this);
    AddPoint(*this,
             {"Start", "Start", 0.25, 0.5,
              "Where the first colour is, as a fraction of the image's width and height"},
             {{IAS_Overlay, CLSID_PreviewControl_Point}, {IA_OverlayIndex, 0}});
    AddPoint(*this,
             {"End", "End", 0.75, 0.5,
              "Where the second colour is reached, as a fraction of the image's width and height"},
             {{IAS_Overlay, CLSID_PreviewControl_Point},
              {IA_OverlayIndex, 0},
              {PCID_PrevPoint, "Start"}});
    AddChoice(*this, "Shape", "Shape", "Runs along a line, or outwards from the start",
              {"Linear", "Radial"}, int(GradientShape::Linear));
    AddFlag(*this, "Behind", "Behind", "Lays it behind the picture instead of over it", false);
    AddSlider(*this,
              {"Mix", "Mix", 0.0, 1.0, 1.0,
               "How much there is of the gradient; 0 leaves the picture as it is"},
              {{IAD_Minimum, 0.0}, {IAD_Maximum, 1.0}});
    AddColor(*this, {"Start", "Start ", {0.0, 0.0, 0.0, 1.0}, true});
    AddColor(*this, {"End", "End ", {1.0, 1.0, 1.0, 1.0}, true});
}

std::unique_ptr<ToolProcess> ColorGradient::Prepare(double time) const
{
    Ramp ramp;
    ramp.start = PointAt(*this, "Start", time);
    ramp.end = PointAt(*this, "End", time);
    ramp.shape = GradientShape(std::clamp(WholeAt(*this, "Shape", time), 0, 1));
    ramp.behind = WholeAt(*this, "Behind", time) != 0;
    const double mix = NumberAt(*this, "Mix", time);
    ramp.mix = mix > 0.0 ? std::min(mix, 1.0) : 0.0;
    ramp.startColor = ColorAt(*this, "Start", time);
    ramp.endColor = ColorAt(*this, "End", time);
    return std::make_unique<GradientProcess>(ramp);
}

} // namespace Marlox
