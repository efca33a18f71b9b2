#include "workbench/tools/ColorCorrector.h"

#include "workbench/tools/ColorCorrection.h"
#include "workbench/tools/ColorInputs.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

constexpr char curvesId[] = "Ranges";

/// Ids begin with these, names too.
constexpr std::array<const char*, 4> ranges{"Master", "Shadows", "Midtones", "Highlights"};

struct Wheel {
    const char* id;
    const char* name;
    double low;
    double high;
    double normal;
    const char* help;
    bool isBounded; // below by `low`, and by 1 if that is `high`
    double RangeCorrection::*value;
};
constexpr std::array<Wheel, 4> wheels{
    {{"Hue", "Hue", -1.0, 1.0, 0.0, "Turns all hues; 1 is a whole turn, a third makes green red",
      false, &RangeCorrection::hue},
     {"Saturation", "Saturation", 0.0, 2.0, 1.0,
      "Strength of the colours; 0 is grey, 1 as it is, more is stronger", true,
      &RangeCorrection::saturation},
     {"TintAngle", "Tint Angle", 0.0, 1.0, 0.0,
      "The hue of the tint; 1 is a whole turn, 0 red, a third green", false,
      &RangeCorrection::tintAngle},
     {"TintLength", "Tint Strength", 0.0, 1.0, 0.0,
      "How much of the tint's colour is added; the luminance stays", true,
      &RangeCorrection::tintLength}}};

struct Sector {
    const char* id;
    const char* name;
    const char* help;
};
constexpr std::array<Sector, 6> sectors{
    {{"KeepRed", "Red Amount", "How much stays of the saturation of reds; 0 makes them grey"},
     {"KeepYellow", "Yellow Amount",
      "How much stays of the saturation of yellows; 0 makes them grey"},
     {"KeepGreen", "Green Amount", "How much stays of the saturation of greens; 0 makes them grey"},
     {"KeepCyan", "Cyan Amount", "How much stays of the saturation of cyans; 0 makes them grey"},
     {"KeepBlue", "Blue Amount", "How much stays of the saturation of blues; 0 makes them grey"},
     {"KeepMagenta", "Magenta Amount",
      "How much stays of the saturation of magentas; 0 makes them grey"}}};

std::string idOf(std::size_t range, const char* id)
{
    return std::string(ranges[range]) + id;
}

std::string nameOf(std::size_t range, const char* name)
{
    return std::string(ranges[range]) + ' ' + name;
}

/// For the inputs that one control edits together: the id of the first of them; that one has none.
const char* sharedBy(const std::string& firstId, std::size_t range, std::size_t channel)
{
    return range == 0 && channel == 0 ? nullptr : firstId.c_str();
}

void addWheels(Operator& tool)
{
    const std::string firstId = idOf(0, wheels[0].id);
    for (std::size_t range = 0; range < ranges.size(); ++range) {
        for (std::size_t i = 0; i < wheels.size(); ++i) {
            const Wheel& wheel = wheels[i];
            TagList bounds;
            if (wheel.isBounded)
                bounds.Add(IAD_Minimum, wheel.low);
            if (wheel.isBounded && wheel.high == 1.0)
                bounds.Add(IAD_Maximum, wheel.high);
            AddChannel(
                tool,
                {CLSID_InputControl_ColorWheel, sharedBy(firstId, range, i), int(i), int(range)},
                {idOf(range, wheel.id).c_str(), nameOf(range, wheel.name).c_str(), wheel.low,
                 wheel.high, wheel.normal, wheel.help},
                bounds);
        }
    }
}

void addSectors(Operator& tool)
{
    const std::string firstId = idOf(0, sectors[0].id);
    for (std::size_t range = 0; range < ranges.size(); ++range) {
        for (std::size_t i = 0; i < sectors.size(); ++i)
            AddChannel(tool,
                       {CLSID_InputControl_ColorSuppression, sharedBy(firstId, range, i), int(i),
                        int(range)},
                       {idOf(range, sectors[i].id).c_str(), nameOf(range, sectors[i].name).c_str(),
                        0.0, 1.0, 1.0, sectors[i].help},
                       {{IAD_Minimum, 0.0}, {IAD_Maximum, 1.0}});
    }
}

class CorrectionProcess final : public ToolProcess {
public:
    explicit CorrectionProcess(const Correction& correction) : correction_(correction) {}

    Ref<Image> Run(const Ref<Image>& upstream, RenderContext& context, QString& error) override
    {
        if (!upstream) {
            error = NoInputText();
            return {};
        }
        if (correction_.IsIdentity())
            return upstream;
        auto result = MakeRef<Image>(upstream->GetFormat());
        const Corrector corrector(correction_);
        context.ForRows(upstream->Height(), [&](int first, int last) {
            for (int y = first; y < last; ++y)
                corrector.Apply(upstream->Row(y), result->Row(y), upstream->Width());
        });
        return context.IsCancelled() ? Ref<Image>() : result;
    }

    std::string CacheKey() const override
    {
        std::string key = KeyOf({correction_.mix});
        for (const RangeCorrection& range : correction_.ranges) {
            key += KeyOf({range.hue, range.saturation, range.tintAngle, range.tintLength});
            for (const double amount : range.kept)
                key += KeyOf({amount});
        }
        for (const double coordinate : correction_.curves->Components())
            key += KeyOf({coordinate});
        return key;
    }

private:
    Correction correction_;
};

} // namespace

ColorCorrector::ColorCorrector(const Registry* record) : Operator(record)
{
    AddImageInput(*this);
    addWheels(*this);
    AddNest(*this, "Suppression", "Suppression", int(ranges.size() * sectors.size()), true,
            "How much stays of the saturation of six hues");
    addSectors(*this);
    AddInput(curvesId,
             {{IAS_Name, "Ranges"},
              {IAS_Help, "What counts as shadows, midtones and highlights, by brightness"},
              {IAS_Control, CLSID_InputControl_ColorRanges},
              {IAS_DataType, CLSID_DataType_ColorCurves}});
    AddSlider(*this,
              {"Mix", "Mix", 0.0, 1.0, 1.0,
               "How much there is of the correction; 0 leaves the picture as it is"},
              {{IAD_Minimum, 0.0}, {IAD_Maximum, 1.0}});
    AddMaskInput(*this);
}

std::unique_ptr<ToolProcess> ColorCorrector::Prepare(double time) const
{
    const auto numberAt = [&](std::size_t range, const char* id, double otherwise) {
        const double value = NumberAt(*this, idOf(range, id).c_str(), time);
        return std::isfinite(value) ? value : otherwise;
    };
    Correction correction;
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        RangeCorrection& range = correction.ranges[i];
        for (const Wheel& wheel : wheels)
            range.*wheel.value = numberAt(i, wheel.id, wheel.normal);
        for (std::size_t k = 0; k < sectors.size(); ++k)
            range.kept[k] = std::clamp(numberAt(i, sectors[k].id, 1.0), 0.0, 1.0);
        range.saturation = std::max(range.saturation, 0.0);
        range.tintLength = std::clamp(range.tintLength, 0.0, 1.0);
    }
    if (const Input* input = FindInput(curvesId)) {
        const Ref<Parameter> value = input->GetValue(time);
        if (const auto* curves = dynamic_cast<const ColorCurves*>(value.Get()))
            correction.curves = MakeRef<ColorCurves>(curves->Components());
    }
    const double mix = NumberAt(*this, "Mix", time);
    correction.mix = std::isfinite(mix) ? std::clamp(mix, 0.0, 1.0) : 1.0;
    return std::make_unique<CorrectionProcess>(correction);
}

} // namespace Marlox
