#include "workbench/tools/DropShadow.h"

#include "workbench/tools/BoxBlur.h"
#include "workbench/tools/ColorInputs.h"
#include "workbench/tools/ImageWindows.h"
#include "workbench/tools/OverlayInputs.h"
#include "workbench/tools/Resample.h"
#include "workbench/tools/ToolInputs.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

constexpr double softest = 500.0; // pixels at full resolution
constexpr int blurPasses = 3;

struct Shadow {
    QPointF origin{0.5, 0.5};
    double offsetX = 0.0;
    double offsetY = 0.0;
    double size = 1.0;
    double softness = 0.0;
    double opacity = 1.0;
    Color color{0.0, 0.0, 0.0, 1.0};

    /// From the picture's pixels to those of its shadow.
    QTransform Matrix(const MxRect& frame) const
    {
        const QPointF from = PlaceIn(frame, origin.x(), origin.y());
        const QPointF to = PlaceIn(frame, origin.x() + offsetX, origin.y() + offsetY);
        QTransform matrix; // written from the last step to the first
        matrix.translate(to.x(), to.y());
        matrix.scale(size, size);
        matrix.translate(-from.x(), -from.y());
        return matrix;
    }
};

/// The row at `y` of an image or a plane with this window; null: it has none there.
template <class Rows>
const float* rowAt(const Rows& rows, const MxRect& window, int y)
{
    return !window.IsEmpty() && y >= window.top && y < window.bottom ? rows.Row(y - window.top)
                                                                     : nullptr;
}

class ShadowProcess final : public ToolProcess {
public:
    explicit ShadowProcess(const Shadow& shadow) : shadow_(shadow) {}

    Ref<Image> Run(const Ref<Image>& upstream, RenderContext& context, QString& error) override
    {
        if (!upstream) {
            error = NoInputText();
            return {};
        }
        if (!(shadow_.opacity > 0.0))
            return upstream;
        const Image::Format& format = upstream->GetFormat();
        context.SetPart(0.0, 0.3);
        const Ref<Image> sharp = Resampled(*upstream, shadow_.Matrix(format.displayWindow),
                                           ResampleFilter::Bilinear, context);
        if (!sharp)
            return {};
        if (sharp->GetFormat().dataWindow.IsEmpty())
            return upstream;
        const double deviation = shadow_.softness * format.scale / 2.0;
        const AlphaPlane soft =
            BlurredAlpha(*sharp, {deviation, deviation * format.pixelAspect, blurPasses, false},
                         context, 0.3, 0.8);
        context.SetPart(0.8, 1.0);
        return soft.rows ? Laid(*upstream, soft, context) : Ref<Image>();
    }

    std::string CacheKey() const override
    {
        return KeyOf({shadow_.origin.x(), shadow_.origin.y(), shadow_.offsetX, shadow_.offsetY,
                      shadow_.size, shadow_.softness, shadow_.opacity, shadow_.color[0],
                      shadow_.color[1], shadow_.color[2]});
    }

private:
    /// The picture over its shadow.
    Ref<Image> Laid(const Image& picture, const AlphaPlane& shadow, RenderContext& context) const
    {
        Image::Format format = picture.GetFormat();
        const MxRect window = format.dataWindow;
        format.dataWindow = United(window, shadow.window);
        auto result = MakeRef<Image>(format);
        context.ForRows(result->Height(), [&](int first, int last) {
            for (int row = first; row < last; ++row) {
                const int y = format.dataWindow.top + row;
                const auto at = [&](int x) {
                    return result->Row(row) + std::ptrdiff_t(x - format.dataWindow.left) * 4;
                };
                if (const float* from = rowAt(picture, window, y))
                    std::copy_n(from, std::ptrdiff_t(window.Width()) * 4, at(window.left));
                if (const float* cover = rowAt(shadow, shadow.window, y))
                    LayRow(cover, shadow.window.Width(), at(shadow.window.left));
            }
        });
        return context.IsCancelled() ? Ref<Image>() : result;
    }

    void LayRow(const float* cover, int count, float* pixel) const
    {
        std::array<float, 4> color{};
        for (std::size_t i = 0; i < 4; ++i)
            color[i] = float(shadow_.color[i] * shadow_.opacity);
        for (int x = 0; x < count; ++x, pixel += 4) {
            const float seen = cover[x] * std::max(1.0f - pixel[3], 0.0f);
            if (!(seen > 0.0f))
                continue;
            for (std::size_t i = 0; i < 4; ++i)
                pixel[i] += color[i] * seen;
        }
    }

    Shadow shadow_;
};

} // namespace

DropShadow::DropShadow(const Registry* record) : Operator(record)
{
    const auto centred = [](double centre) {
        return TagList{{IC_Centred, true}, {ICD_Centre, centre}};
    };
    AddImageInput(*this);
    Input& origin = AddPoint(
        *this,
        {"Origin", "Origin", 0.5, 0.5,
         "The point the shadow is scaled about, as a fraction of the image's width and height"},
        {{IAS_Overlay, CLSID_PreviewControl_Crosshair}, {IA_OverlayIndex, 0}, {CHC_Style, Circle}});
    TagList offset = centred(0.0);
    offset.Merge({{IAS_Overlay, CLSID_PreviewControl_XYOffset},
                  {IA_OverlayIndex, 0},
                  {XYOCP_AxisInput, &origin}});
    AddSlider(*this,
              {"OffsetX", "Offset X", -0.5, 0.5, 0.02,
               "How far to the right the shadow falls, as a fraction of the image's width"},
              offset);
    offset = centred(0.0);
    offset.Merge({{IAS_OverlayWith, "OffsetX"}, {IA_OverlayIndex, 1}});
    AddSlider(*this,
              {"OffsetY", "Offset Y", -0.5, 0.5, -0.03,
               "How far up the shadow falls, as a fraction of the image's height"},
              offset);
    TagList size = centred(1.0);
    size.Add(IAD_Minimum, 0.0);
    AddSlider(*this,
              {"Size", "Size", 0.0, 2.0, 1.0, "Scales the shadow about its origin; 1 is as it is"},
              size);
    AddSlider(*this,
              {"Softness", "Softness", 0.0, 100.0, 20.0,
               "Width of the shadow's soft edge in full-resolution pixels"},
              {{IAD_Minimum, 0.0}, {IAD_Maximum, softest}, {ICD_Gamma, 2.0}});
    AddSlider(*this, {"Opacity", "Opacity", 0.0, 1.0, 0.6, "How dense the shadow is; 0 is none"},
              {{IAD_Minimum, 0.0}, {IAD_Maximum, 1.0}});
    AddColor(*this, {"", "", {0.0, 0.0, 0.0, 1.0}, false});
}

std::unique_ptr<ToolProcess> DropShadow::Prepare(double time) const
{
    Shadow shadow;
    shadow.origin = PointAt(*this, "Origin", time);
    shadow.offsetX = NumberAt(*this, "OffsetX", time);
    shadow.offsetY = NumberAt(*this, "OffsetY", time);
    shadow.size = NumberAt(*this, "Size", time);
    shadow.softness = std::min(NumberAt(*this, "Softness", time), softest);
    shadow.opacity = std::min(NumberAt(*this, "Opacity", time), 1.0);
    shadow.color = ColorAt(*this, "", time);
    return std::make_unique<ShadowProcess>(shadow);
}

} // namespace Marlox
