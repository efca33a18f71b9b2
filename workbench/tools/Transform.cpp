#include "workbench/tools/Transform.h"

#include "workbench/tools/ToolInputs.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <QPointF>
#include <QTransform>

namespace Marlox {

namespace {

constexpr int mostSamples = 8; // along one side, for each pixel, where the picture shrinks

using Pixel = std::array<float, 4>;

/// Pixel (x, y) of the image's own coordinates; transparent outside the data window.
const float* pixelAt(const Image& image, int x, int y)
{
    static constexpr Pixel outside{};
    const MxRect& window = image.GetFormat().dataWindow;
    if (!window.Contains({x, y}))
        return outside.data();
    return image.Row(y - window.top) + std::ptrdiff_t(x - window.left) * 4;
}

/// Adds `weight` times the image at (x, y), where pixel centres lie at halves.
using Sampler = void (*)(const Image& image, double x, double y, float weight, Pixel& sum);

void addWeighted(const float* pixel, float weight, Pixel& sum)
{
    for (std::size_t i = 0; i < 4; ++i)
        sum[i] += weight * pixel[i];
}

void sampleNearest(const Image& image, double x, double y, float weight, Pixel& sum)
{
    addWeighted(pixelAt(image, int(std::floor(x)), int(std::floor(y))), weight, sum);
}

/// Weights of the pixels around a position, `count` along each axis.
template <std::size_t count, class Weights>
void sampleAround(const Image& image, double x, double y, float weight, Pixel& sum, Weights weights)
{
    const double left = std::floor(x - 0.5);
    const double top = std::floor(y - 0.5);
    const std::array<float, count> across = weights(float(x - 0.5 - left));
    const std::array<float, count> down = weights(float(y - 0.5 - top));
    constexpr int before = int(count) / 2 - 1;
    for (std::size_t j = 0; j < count; ++j) {
        if (down[j] == 0.0f)
            continue;
        for (std::size_t i = 0; i < count; ++i) {
            if (across[i] != 0.0f)
                addWeighted(pixelAt(image, int(left) - before + int(i), int(top) - before + int(j)),
                            weight * across[i] * down[j], sum);
        }
    }
}

void sampleBilinear(const Image& image, double x, double y, float weight, Pixel& sum)
{
    sampleAround<2>(image, x, y, weight, sum, [](float t) {
        return std::array<float, 2>{1.0f - t, t};
    });
}

/// Catmull and Rom's spline: passes through the pixels.
void sampleBicubic(const Image& image, double x, double y, float weight, Pixel& sum)
{
    sampleAround<4>(image, x, y, weight, sum, [](float t) {
        const float t2 = t * t;
        const float t3 = t2 * t;
        return std::array<float, 4>{0.5f * (-t3 + 2.0f * t2 - t),
                                    0.5f * (3.0f * t3 - 5.0f * t2 + 2.0f),
                                    0.5f * (-3.0f * t3 + 4.0f * t2 + t), 0.5f * (t3 - t2)};
    });
}

struct Placement {
    double centreX = 0.5;
    double centreY = 0.5;
    double size = 1.0;
    double angle = 0.0;
    double aspect = 1.0;
    TransformFilter filter = TransformFilter::Bilinear;

    bool IsIdentity() const
    {
        return centreX == 0.5 && centreY == 0.5 && size == 1.0 && aspect == 1.0 &&
               std::fmod(angle, 360.0) == 0.0;
    }

    /// From the source's pixels to the result's.
    QTransform Matrix(const Image::Format& format) const
    {
        const MxRect& frame = format.displayWindow;
        const double width = frame.Width();
        const double height = frame.Height();
        QTransform matrix; // written from the last step to the first
        matrix.translate(frame.left + centreX * width, frame.top + (1.0 - centreY) * height);
        matrix.scale(1.0 / format.pixelAspect, 1.0); // turned where pixels are square
        matrix.rotate(-angle);
        matrix.scale(size * aspect * format.pixelAspect, size);
        matrix.translate(-(frame.left + 0.5 * width), -(frame.top + 0.5 * height));
        return matrix;
    }
};

int wholeWithin(double value, int low, int high)
{
    return int(std::clamp(value, double(low), double(high)));
}

/// The result's data window: where the source's comes to, with room for the filter.
MxRect windowOf(const Image::Format& format, const QTransform& matrix)
{
    constexpr double filterRoom = 2.0;
    const QRectF reach = matrix.mapRect(QRectF(ToQRect(format.dataWindow)))
                             .adjusted(-filterRoom, -filterRoom, filterRoom, filterRoom);
    const MxRect& frame = format.displayWindow;
    const MxRect most = frame.Widened(frame.Width() / 2, frame.Height() / 2);
    const MxRect window(wholeWithin(std::floor(reach.left()), most.left, most.right),
                        wholeWithin(std::floor(reach.top()), most.top, most.bottom),
                        wholeWithin(std::ceil(reach.right()), most.left, most.right),
                        wholeWithin(std::ceil(reach.bottom()), most.top, most.bottom));
    return window.IsEmpty() ? MxRect(frame.left, frame.top, frame.left, frame.top) : window;
}

class TransformProcess final : public ToolProcess {
public:
    explicit TransformProcess(const Placement& placement) : placement_(placement) {}

    Ref<Image> Run(const Ref<Image>& upstream, RenderContext& context, QString& error) override
    {
        if (!upstream) {
            error = NoInputText();
            return {};
        }
        if (placement_.IsIdentity())
            return upstream;
        const QTransform matrix = placement_.Matrix(upstream->GetFormat());
        bool invertible = false;
        const QTransform back = matrix.inverted(&invertible);
        Image::Format format = upstream->GetFormat();
        format.dataWindow = invertible
                                ? windowOf(format, matrix)
                                : MxRect(format.displayWindow.left, format.displayWindow.top,
                                         format.displayWindow.left, format.displayWindow.top);
        auto result = MakeRef<Image>(format);
        context.ForRows(result->Height(), [&](int first, int last) {
            for (int y = first; y < last; ++y)
                FillRow(*upstream, back, *result, y);
        });
        return context.IsCancelled() ? Ref<Image>() : result;
    }

    std::string CacheKey() const override
    {
        return KeyOf({placement_.centreX, placement_.centreY, placement_.size, placement_.angle,
                      placement_.aspect, double(placement_.filter)});
    }

private:
    void FillRow(const Image& source, const QTransform& back, Image& result, int row) const
    {
        constexpr std::array<Sampler, 3> samplers{sampleNearest, sampleBilinear, sampleBicubic};
        const Sampler sample = samplers[std::size_t(placement_.filter)];
        // A pixel of the result covers this many of the source: more than one needs as many
        // samples.
        const int across = Samples(std::hypot(back.m11(), back.m12()));
        const int down = Samples(std::hypot(back.m21(), back.m22()));
        const float weight = 1.0f / float(across * down);
        const MxRect& window = result.GetFormat().dataWindow;
        float* to = result.Row(row);
        for (int column = 0; column < window.Width(); ++column, to += 4) {
            Pixel sum{};
            for (int j = 0; j < down; ++j) {
                for (int i = 0; i < across; ++i) {
                    const QPointF at = back.map(QPointF(window.left + column + (i + 0.5) / across,
                                                        window.top + row + (j + 0.5) / down));
                    sample(source, at.x(), at.y(), weight, sum);
                }
            }
            std::copy(sum.begin(), sum.end(), to);
        }
    }

    int Samples(double sourcePixels) const
    {
        if (placement_.filter == TransformFilter::Nearest)
            return 1;
        return std::clamp(int(std::ceil(sourcePixels - 0.01)), 1, mostSamples);
    }

    Placement placement_;
};

} // namespace

Transform::Transform(const Registry* record) : Operator(record)
{
    const auto centred = [](double centre) {
        return TagList{{IC_Centred, true}, {ICD_Centre, centre}};
    };
    AddImageInput(*this);
    AddSlider(*this,
              {"CentreX", "Centre X", -0.5, 1.5, 0.5,
               "Where the picture's middle comes to; 0 is the left edge, 1 the right"},
              centred(0.5));
    AddSlider(*this,
              {"CentreY", "Centre Y", -0.5, 1.5, 0.5,
               "Where the picture's middle comes to; 0 is the bottom edge, 1 the top"},
              centred(0.5));
    TagList size = centred(1.0);
    size.Add(IAD_Minimum, 0.0);
    AddSlider(*this, {"Size", "Size", 0.0, 5.0, 1.0, "Scales the picture"}, size);
    TagList angle = centred(0.0);
    angle.Add(ICD_Snap, 90.0);
    AddSlider(*this, {"Angle", "Angle", -180.0, 180.0, 0.0, "Degrees, counterclockwise"}, angle);
    TagList aspect = centred(1.0);
    aspect.Add(IAD_Minimum, 0.01);
    AddSlider(*this, {"Aspect", "Aspect", 0.2, 5.0, 1.0, "Stretches the width alone"}, aspect);
    AddChoice(*this, "Filter", "Filter", "How values between pixels are found",
              {"Nearest", "Bilinear", "Bicubic"}, int(TransformFilter::Bilinear));
}

std::unique_ptr<ToolProcess> Transform::Prepare(double time) const
{
    Placement placement;
    placement.centreX = NumberAt(*this, "CentreX", time);
    placement.centreY = NumberAt(*this, "CentreY", time);
    placement.size = NumberAt(*this, "Size", time);
    placement.angle = NumberAt(*this, "Angle", time);
    placement.aspect = NumberAt(*this, "Aspect", time);
    placement.filter = TransformFilter(std::clamp(WholeAt(*this, "Filter", time), 0, 2));
    return std::make_unique<TransformProcess>(placement);
}

} // namespace Marlox
