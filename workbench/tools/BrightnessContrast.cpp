#include "workbench/tools/BrightnessContrast.h"

#include "system/color/Luminance.h"
#include "workbench/tools/ToolInputs.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace Marlox {

namespace {

struct Grade {
    double gain = 1.0;
    double lift = 0.0;
    double gamma = 1.0;
    double contrast = 0.0;
    double pivot = 0.18;
    double saturation = 1.0;
    int levels = 0; // of posterising; 0 and 1: none
    bool clipBlack = false;
    bool clipWhite = false;

    bool IsIdentity() const
    {
        return gain == 1.0 && lift == 0.0 && gamma == 1.0 && contrast == 0.0 && saturation == 1.0 &&
               levels < 2 && !clipBlack && !clipWhite;
    }
};

/// The grade made ready for pixels.
class Grader {
public:
    explicit Grader(const Grade& grade)
        : factor_(float(grade.gain - grade.lift)), lift_(float(grade.lift)),
          gain_(float(grade.gain)), exponent_(float(1.0 / grade.gamma)),
          contrast_(float(1.0 + grade.contrast)), pivot_(float(grade.pivot)),
          saturation_(float(grade.saturation)), steps_(float(grade.levels - 1)),
          floor_(grade.clipBlack ? 0.0f : -std::numeric_limits<float>::infinity()),
          ceiling_(grade.clipWhite ? 1.0f : std::numeric_limits<float>::infinity())
    {
    }

    /// RGBA, alpha multiplied in before and after.
    void Apply(const float* from, float* to) const
    {
        const float alpha = from[3];
        to[3] = alpha;
        if (!(alpha > 0.0f)) {
            for (std::size_t i = 0; i < 3; ++i)
                to[i] = from[i] * gain_;
            return;
        }
        std::array<float, 3> rgb{};
        for (std::size_t i = 0; i < 3; ++i)
            rgb[i] = Tone(from[i] / alpha);
        const float luma = Luminance::Of(rgb[0], rgb[1], rgb[2]);
        for (std::size_t i = 0; i < 3; ++i)
            to[i] =
                Finish(saturation_ == 1.0f ? rgb[i] : luma + (rgb[i] - luma) * saturation_) * alpha;
    }

private:
    float Tone(float value) const
    {
        value = value * factor_ + lift_;
        if (exponent_ != 1.0f && value > 0.0f)
            value = std::pow(value, exponent_);
        return contrast_ == 1.0f ? value : (value - pivot_) * contrast_ + pivot_;
    }

    float Finish(float value) const
    {
        if (steps_ > 0.0f)
            value = std::round(value * steps_) / steps_;
        // Written so that a not-a-number passes: clipping must not hide it.
        value = value < floor_ ? floor_ : value;
        return value > ceiling_ ? ceiling_ : value;
    }

    float factor_;
    float lift_;
    float gain_;
    float exponent_;
    float contrast_;
    float pivot_;
    float saturation_;
    float steps_;
    float floor_;
    float ceiling_;
};

class GradeProcess final : public ToolProcess {
public:
    explicit GradeProcess(const Grade& grade) : grade_(grade) {}

    Ref<Image> Run(const Ref<Image>& upstream, RenderContext& context, QString& error) override
    {
        if (!upstream) {
            error = NoInputText();
            return {};
        }
        if (grade_.IsIdentity())
            return upstream;
        auto result = MakeRef<Image>(upstream->GetFormat());
        const Grader grader(grade_);
        const std::ptrdiff_t rowFloats = std::ptrdiff_t(upstream->Width()) * 4;
        context.ForRows(upstream->Height(), [&](int first, int last) {
            for (int y = first; y < last; ++y) {
                const float* from = upstream->Row(y);
                float* to = result->Row(y);
                for (std::ptrdiff_t x = 0; x < rowFloats; x += 4)
                    grader.Apply(from + x, to + x);
            }
        });
        return context.IsCancelled() ? Ref<Image>() : result;
    }

    std::string CacheKey() const override
    {
        return KeyOf({grade_.gain, grade_.lift, grade_.gamma, grade_.contrast, grade_.pivot,
                      grade_.saturation, double(grade_.levels), double(grade_.clipBlack),
                      double(grade_.clipWhite)});
    }

private:
    Grade grade_;
};

} // namespace

BrightnessContrast::BrightnessContrast(const Registry* record) : Operator(record)
{
    const auto centred = [](double centre) {
        return TagList{{IC_Centred, true}, {ICD_Centre, centre}};
    };
    AddImageInput(*this);
    AddSlider(*this, {"Gain", "Gain", 0.0, 5.0, 1.0, "Multiplies light; 2 is one stop more"},
              centred(1.0));
    AddSlider(*this,
              {"Lift", "Lift", -1.0, 1.0, 0.0, "Raises or lowers black and leaves white alone"},
              centred(0.0));
    TagList gamma = centred(1.0);
    gamma.Add(IAD_Minimum, 0.01);
    AddSlider(*this, {"Gamma", "Gamma", 0.2, 5.0, 1.0, "Brightens or darkens the middle tones"},
              gamma);
    TagList contrast = centred(0.0);
    contrast.Add(IAD_Minimum, -1.0);
    contrast.Add(SLCS_LowName, "Flat");
    contrast.Add(SLCS_MidName, "As it is");
    contrast.Add(SLCS_HighName, "Hard");
    AddSlider(
        *this,
        {"Contrast", "Contrast", -1.0, 1.0, 0.0, "Spreads or gathers values around the pivot"},
        contrast);
    AddSlider(*this, {"Pivot", "Pivot", 0.0, 1.0, 0.18, "The value that contrast leaves alone"});
    TagList saturation = centred(1.0);
    saturation.Add(SLCS_LowName, "Grey");
    saturation.Add(SLCS_MidName, "As it is");
    saturation.Add(SLCS_HighName, "Vivid");
    AddSlider(*this, {"Saturation", "Saturation", 0.0, 2.0, 1.0, "Strength of the colours"},
              saturation);
    AddNest(*this, "Range", "Range", 3, true, "Steps and limits of the values");
    AddSlider(*this,
              {"Posterise", "Posterise", 0.0, 32.0, 0.0,
               "Number of steps from black to white; 0 leaves them smooth"},
              {{IA_Integer, true}, {IAD_Minimum, 0.0}, {IAD_Maximum, 256.0}});
    AddFlag(*this, "ClipBlack", "Clip Black", "Cuts values below 0", false);
    AddFlag(*this, "ClipWhite", "Clip White", "Cuts values above 1", false);
    AddMaskInput(*this);
}

std::unique_ptr<ToolProcess> BrightnessContrast::Prepare(double time) const
{
    Grade grade;
    grade.gain = NumberAt(*this, "Gain", time);
    grade.lift = NumberAt(*this, "Lift", time);
    grade.gamma = std::max(NumberAt(*this, "Gamma", time), 0.01);
    grade.contrast = NumberAt(*this, "Contrast", time);
    grade.pivot = NumberAt(*this, "Pivot", time);
    grade.saturation = NumberAt(*this, "Saturation", time);
    grade.levels = WholeAt(*this, "Posterise", time);
    grade.clipBlack = WholeAt(*this, "ClipBlack", time) != 0;
    grade.clipWhite = WholeAt(*this, "ClipWhite", time) != 0;
    return std::make_unique<GradeProcess>(grade);
}

} // namespace Marlox
