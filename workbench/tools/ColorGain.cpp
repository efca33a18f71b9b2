#include "workbench/tools/ColorGain.h"

#include "workbench/tools/ColorInputs.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

constexpr double brightest = 1e9; // products with usual pixels stay finite in 32 bits

struct Gain {
    std::array<double, 4> channels{1.0, 1.0, 1.0, 1.0};
    double u = 0.0;
    double v = 0.0;
    double coverage = 0.0;

    bool IsIdentity() const
    {
        return std::all_of(channels.begin(), channels.end(),
                           [](double gain) { return gain == 1.0; }) &&
               u == 0.0 && v == 0.0;
    }
};

/// The factor that rises along one side of the picture, at the middle of a pixel.
float rise(double slope, int pixel, int first, int count)
{
    const double at = count > 0 ? (pixel - first + 0.5) / count : 0.5;
    return float(std::max(1.0 + slope * (at - 0.5), 0.0));
}

class GainProcess final : public ToolProcess {
public:
    explicit GainProcess(const Gain& gain) : gain_(gain) {}

    Ref<Image> Run(const Ref<Image>& upstream, RenderContext& context, QString& error) override
    {
        if (!upstream) {
            error = NoInputText();
            return {};
        }
        if (gain_.IsIdentity())
            return upstream;
        const Image::Format& format = upstream->GetFormat();
        const MxRect& frame = format.displayWindow;
        auto result = MakeRef<Image>(format);
        std::vector<float> across;
        for (int x = format.dataWindow.left; x < format.dataWindow.right; ++x)
            across.push_back(rise(gain_.u, x, frame.left, frame.Width()));
        context.ForRows(upstream->Height(), [&](int first, int last) {
            for (int row = first; row < last; ++row) {
                // v runs upwards.
                const float up =
                    rise(-gain_.v, format.dataWindow.top + row, frame.top, frame.Height());
                Multiply(upstream->Row(row), result->Row(row), across, up);
            }
        });
        return context.IsCancelled() ? Ref<Image>() : result;
    }

    std::string CacheKey() const override
    {
        return KeyOf({gain_.channels[0], gain_.channels[1], gain_.channels[2], gain_.channels[3],
                      gain_.u, gain_.v, gain_.coverage});
    }

private:
    void Multiply(const float* from, float* to, const std::vector<float>& across, float up) const
    {
        const auto coverage = float(gain_.coverage);
        const std::array<float, 4> gains{float(gain_.channels[0]), float(gain_.channels[1]),
                                         float(gain_.channels[2]), float(gain_.channels[3])};
        for (const float factor : across) {
            // An alpha that is no number covers, and is left as it is.
            const bool covers = std::isfinite(from[3]);
            const float alpha = covers ? from[3] : 1.0f;
            const float share = 1.0f - coverage + coverage * std::clamp(alpha, 0.0f, 1.0f);
            const float gained = alpha * (1.0f + (gains[3] - 1.0f) * share);
            to[3] = std::min(gained, std::max(alpha, 1.0f));
            const float cover = alpha > 0.0f ? to[3] / alpha : 1.0f;
            for (std::size_t i = 0; i < 3; ++i)
                to[i] = from[i] * cover * (1.0f + (gains[i] * factor * up - 1.0f) * share);
            if (!covers)
                to[3] = from[3];
            from += 4;
            to += 4;
        }
    }

    Gain gain_;
};

constexpr char firstId[] = "Red";

} // namespace

ColorGain::ColorGain(const Registry* record) : Operator(record)
{
    struct Channel {
        int channel;
        SliderSpec slider;
        TagList further;
    };
    const TagList gains{{IC_Centred, true}, {ICD_Centre, 1.0}};
    const TagList rises{
        {IC_Centred, true}, {ICD_Centre, 0.0}, {IAD_Minimum, -2.0}, {IAD_Maximum, 2.0}};
    TagList alpha(gains);
    alpha.Add(IAD_Minimum, 0.0);
    const Channel channels[] = {
        {0, {firstId, "Red", 0.0, 2.0, 1.0, "Multiplies red; 2 is one stop more"}, gains},
        {1, {"Green", "Green", 0.0, 2.0, 1.0, "Multiplies green; 2 is one stop more"}, gains},
        {2, {"Blue", "Blue", 0.0, 2.0, 1.0, "Multiplies blue; 2 is one stop more"}, gains},
        {3,
         {"Alpha", "Alpha", 0.0, 2.0, 1.0, "Multiplies what the picture covers, up to all of it"},
         alpha},
        {13,
         {"U", "U", -2.0, 2.0, 0.0, "Lets the gain rise to the right, below 0 to the left"},
         rises},
        {14, {"V", "V", -2.0, 2.0, 0.0, "Lets the gain rise upwards, below 0 downwards"}, rises},
        {15,
         {"Coverage", "Coverage", 0.0, 1.0, 0.0,
          "Takes the gain back where the picture covers little; 0 applies it everywhere"},
         {{IAD_Minimum, 0.0}, {IAD_Maximum, 1.0}}}};
    AddImageInput(*this);
    for (const Channel& channel : channels)
        AddChannel(
            *this,
            {CLSID_InputControl_Color, channel.channel > 0 ? firstId : nullptr, channel.channel},
            channel.slider, channel.further);
    AddMaskInput(*this);
}

std::unique_ptr<ToolProcess> ColorGain::Prepare(double time) const
{
    const auto numberAt = [&](const char* id, double low, double high, double otherwise) {
        const double value = NumberAt(*this, id, time);
        return std::isnan(value) ? otherwise : std::clamp(value, low, high);
    };
    Gain gain;
    gain.channels = {
        numberAt("Red", -brightest, brightest, 1.0), numberAt("Green", -brightest, brightest, 1.0),
        numberAt("Blue", -brightest, brightest, 1.0), numberAt("Alpha", 0.0, brightest, 1.0)};
    gain.u = numberAt("U", -2.0, 2.0, 0.0);
    gain.v = numberAt("V", -2.0, 2.0, 0.0);
    gain.coverage = numberAt("Coverage", 0.0, 1.0, 0.0);
    return std::make_unique<GainProcess>(gain);
}

} // namespace Marlox
