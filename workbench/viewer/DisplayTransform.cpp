// The adapter that shows images through OpenColorIO.

#include "workbench/viewer/DisplayTransform.h"

#include "system/evaluation/Process.h"
#include "workbench/images/ColorConfig.h"

#include <OpenColorIO/OpenColorIO.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <mutex>
#include <stdexcept>
#include <vector>

#include <qfloat16.h>

namespace Marlox {

namespace {

namespace ocio = OCIO_NAMESPACE;

/// Light beyond this, once exposed, shows as white; infinities would upset the curves.
constexpr float brightest = 1.0e9f;
constexpr float brightestHalf = 65504.0f;

/// One colour channel, or the luminance, on all three.
ocio::ConstTransformRcPtr channelsOf(const ocio::Config& config, ChannelView view)
{
    std::array<int, 4> hot{0, 0, 0, 0};
    if (view == ChannelView::Luminance)
        hot = {1, 1, 1, 0};
    else
        hot[std::size_t(view) - std::size_t(ChannelView::Red)] = 1;
    double luma[3];
    config.getDefaultLumaCoefs(luma);
    double matrix[16];
    double offset[4];
    ocio::MatrixTransform::View(matrix, offset, hot.data(), luma);
    auto transform = ocio::MatrixTransform::Create();
    transform->setMatrix(matrix);
    transform->setOffset(offset);
    return transform;
}

ocio::ConstTransformRcPtr gammaOf(double gamma)
{
    const double exponent = 1.0 / std::max(gamma, 0.01);
    auto transform = ocio::ExponentTransform::Create();
    transform->setValue({exponent, exponent, exponent, 1.0});
    return transform;
}

unsigned char byteOf(float value)
{
    if (!(value > 0.0f)) // not-a-numbers too
        return 0;
    return value >= 1.0f ? 255 : static_cast<unsigned char>(value * 255.0f + 0.5f);
}

/// Values times `exposure`, within +-`most`; what is no number becomes 0.
void makeFinite(const float* from, std::size_t count, float exposure, float most, float* to)
{
    std::transform(from, from + count, to, [=](float value) {
        return value == value ? std::clamp(value * exposure, -most, most) : 0.0f;
    });
}

void finiteRow(const float* from, int width, float exposure, float most, std::vector<float>& row)
{
    row.resize(std::size_t(width) * 4);
    makeFinite(from, row.size(), exposure, most, row.data());
}

class ViewedColors final : public ColorDisplay {
public:
    ViewedColors(ocio::ConstCPUProcessorRcPtr processor, double exposure)
        : processor_(std::move(processor)), exposure_(float(std::exp2(exposure)))
    {
    }
    void Apply(float* rgb, int count) const override
    {
        makeFinite(rgb, std::size_t(count) * 3, exposure_, brightest, rgb);
        ocio::PackedImageDesc strip(rgb, count, 1, 3);
        processor_->apply(strip);
    }

private:
    ocio::ConstCPUProcessorRcPtr processor_;
    float exposure_; // factor of the light
};

/// What a processor is for: pictures, proxies of them (from half floats to bytes), or colours.
enum class Use { Pictures, Proxies, Colors };

/// How rows are converted.
struct Conversion {
    ocio::ConstCPUProcessorRcPtr processor;
    bool keepAlpha = true;
    float exposure = 1.0f; // factor of the light, before the processor
};

void alphaRow(const float* from, int width, unsigned char* to)
{
    for (int x = 0; x < width; ++x, from += 4, to += 4) {
        to[0] = to[1] = to[2] = byteOf(from[3]);
        to[3] = 255;
    }
}

void colorRow(const Conversion& how, const float* from, int width, std::vector<float>& scratch,
              unsigned char* to)
{
    finiteRow(from, width, how.exposure, brightest, scratch);
    ocio::PackedImageDesc strip(scratch.data(), width, 1, 4);
    how.processor->apply(strip);
    for (std::size_t i = 0; i < scratch.size(); i += 4) {
        for (std::size_t channel = 0; channel < 3; ++channel)
            to[i + channel] = byteOf(scratch[i + channel]);
        to[i + 3] = how.keepAlpha ? byteOf(from[i + 3]) : 255;
    }
}

/// The same through half floats, for which the library looks curves up instead of computing them:
/// several times as fast, and a code off here and there.
void quickRow(const Conversion& how, const float* from, int width, std::vector<float>& scratch,
              unsigned char* to)
{
    finiteRow(from, width, how.exposure, brightestHalf, scratch);
    std::vector<qfloat16> halves(scratch.size());
    qFloatToFloat16(halves.data(), scratch.data(), qsizetype(scratch.size()));
    const ocio::PackedImageDesc strip(halves.data(), width, 1, 4, ocio::BIT_DEPTH_F16, 2, 8,
                                      std::ptrdiff_t(width) * 8);
    ocio::PackedImageDesc codes(to, width, 1, 4, ocio::BIT_DEPTH_UINT8, 1, 4,
                                std::ptrdiff_t(width) * 4);
    how.processor->apply(strip, codes);
    for (int x = 0; x < width; ++x)
        to[x * 4 + 3] = how.keepAlpha ? byteOf(from[x * 4 + 3]) : 255;
}

} // namespace

struct DisplayTransform::Config {
    explicit Config(ocio::ConstConfigRcPtr loaded) : colors(std::move(loaded)) {}

    /// For light that has its exposure.
    ocio::ConstCPUProcessorRcPtr Processor(DisplaySettings settings, Use use) const
    {
        const std::scoped_lock lock(mutex);
        Made& last = made[std::size_t(use)];
        settings.exposure = 0.0;
        if (last.processor && last.settings == settings)
            return last.processor;
        const ocio::ConstProcessorRcPtr processor = Make(settings);
        last.processor =
            use == Use::Proxies
                ? processor->getOptimizedCPUProcessor(ocio::BIT_DEPTH_F16, ocio::BIT_DEPTH_UINT8,
                                                      ocio::OPTIMIZATION_DEFAULT)
                : processor->getDefaultCPUProcessor();
        last.settings = settings;
        return last.processor;
    }

    ocio::ConstProcessorRcPtr Make(const DisplaySettings& settings) const
    {
        const std::string display = settings.display.isEmpty() ? colors->getDefaultDisplay()
                                                               : settings.display.toStdString();
        const std::string view = settings.view.isEmpty() ? colors->getDefaultView(display.c_str())
                                                         : settings.view.toStdString();
        if (view.empty())
            throw std::runtime_error("the colour configuration has no display \"" + display + "\"");
        auto toDisplay = ocio::DisplayViewTransform::Create();
        toDisplay->setSrc(ocio::ROLE_SCENE_LINEAR);
        toDisplay->setDisplay(display.c_str());
        toDisplay->setView(view.c_str());
        auto pipeline = ocio::LegacyViewingPipeline::Create();
        pipeline->setDisplayViewTransform(toDisplay);
        if (settings.channels != ChannelView::Color)
            pipeline->setChannelView(channelsOf(*colors, settings.channels));
        if (settings.gamma != 1.0)
            pipeline->setDisplayCC(gammaOf(settings.gamma));
        return pipeline->getProcessor(colors);
    }

    struct Made {
        ocio::ConstCPUProcessorRcPtr processor;
        DisplaySettings settings;
    };
    ocio::ConstConfigRcPtr colors;
    mutable std::mutex mutex;
    mutable std::array<Made, 3> made; // by use; making one takes longer than a small picture
};

DisplayTransform::DisplayTransform() : DisplayTransform(QString::fromLocal8Bit(qgetenv("OCIO"))) {}

DisplayTransform::DisplayTransform(const QString& configFile)
{
    if (!configFile.isEmpty()) {
        try {
            auto colors = ocio::Config::CreateFromFile(configFile.toLocal8Bit().constData());
            colors->validate();
            auto users = std::make_shared<Config>(colors);
            users->Make({}); // a configuration that cannot show anything is of no use
            config_ = users;
            return;
        } catch (const std::exception& fault) {
            problem_ = QString("The colour configuration %1 cannot be used: %2")
                           .arg(configFile, QString::fromUtf8(fault.what()).simplified());
        }
    }
    config_ = std::make_shared<Config>(BuiltInColorConfig());
}

QStringList DisplayTransform::Displays() const
{
    QStringList names;
    for (int i = 0; i < config_->colors->getNumDisplays(); ++i)
        names << config_->colors->getDisplay(i);
    return names;
}

QString DisplayTransform::DefaultDisplay() const
{
    return config_->colors->getDefaultDisplay();
}

QString DisplayTransform::DefaultView(const QString& display) const
{
    return config_->colors->getDefaultView(display.toStdString().c_str());
}

QStringList DisplayTransform::Views(const QString& display) const
{
    const std::string name =
        display.isEmpty() ? config_->colors->getDefaultDisplay() : display.toStdString();
    QStringList names;
    for (int i = 0; i < config_->colors->getNumViews(name.c_str()); ++i)
        names << config_->colors->getView(name.c_str(), i);
    return names;
}

QImage DisplayTransform::Apply(const Image& image, const DisplaySettings& settings,
                               const std::atomic<bool>* cancelled, QString* error) const
{
    if (image.IsEmpty() || image.GetFormat().dataWindow.IsEmpty())
        return {};
    QImage picture(image.Width(), image.Height(), QImage::Format_RGBA8888_Premultiplied);
    if (picture.isNull()) {
        if (error)
            *error = "There is not enough memory to show the picture.";
        return {};
    }
    try {
        const bool isAlpha = settings.channels == ChannelView::Alpha;
        const bool isQuick = image.GetFormat().scale < 1.0;
        const auto convert = isQuick ? quickRow : colorRow;
        Conversion how;
        if (!isAlpha)
            how.processor = config_->Processor(settings, isQuick ? Use::Proxies : Use::Pictures);
        how.keepAlpha = settings.channels == ChannelView::Color;
        how.exposure = float(std::exp2(settings.exposure));
        unsigned char* bits = picture.bits(); // detached once, before the threads
        const std::ptrdiff_t stride = picture.bytesPerLine();
        RenderContext context;
        context.ForRows(image.Height(), [&](int first, int last) {
            std::vector<float> scratch;
            for (int y = first; y < last; ++y) {
                if (cancelled && *cancelled) {
                    context.Cancel();
                    return;
                }
                if (isAlpha)
                    alphaRow(image.Row(y), image.Width(), bits + y * stride);
                else
                    convert(how, image.Row(y), image.Width(), scratch, bits + y * stride);
            }
        });
        return context.IsCancelled() ? QImage() : picture;
    } catch (const std::exception& fault) {
        if (error)
            *error = QString("The picture cannot be shown: %1")
                         .arg(QString::fromUtf8(fault.what()).simplified());
        return {};
    }
}

std::shared_ptr<const ColorDisplay> DisplayTransform::Colors(const DisplaySettings& settings) const
{
    DisplaySettings all = settings;
    all.channels = ChannelView::Color;
    try {
        return std::make_shared<ViewedColors>(config_->Processor(all, Use::Colors), all.exposure);
    } catch (const std::exception&) {
        return nullptr;
    }
}

} // namespace Marlox
