#include "controls/color/ColorWheelControl.h"

#include "framework/ControlClass.h"
#include "widgets/CustomColorWheel.h"

namespace Marlox {

namespace {

constexpr char wheelLayout[] = "Controls.ColorWheel.Layout";

} // namespace

ColorWheelControl::ColorWheelControl(const Registry* record, const ScriptVal& creator,
                                     const TagList& attributes)
    : RangedControl(record, creator, attributes, Places(),
                    {CWCCS_LowName, CWCCS_MidName, CWCCS_HighName}),
      wheel_(new CustomColorWheel(this))
{
    SetWheel(*wheel_);
    connect(wheel_, &CustomColorWheel::dragWheel, this, &ColorWheelControl::OnWheel);
    connect(wheel_, &CustomColorWheel::resetPart, this, &ColorWheelControl::OnResetPart);
    ReadTags(CreationTags());
}

std::span<const RangedControl::Place> ColorWheelControl::Places()
{
    static constexpr std::array<Place, channels> places{{
        {"Hue", "huelabel", "edithue", "expressionhue"},
        {"Saturation", "saturationlabel", "editsaturation", "expressionsaturation"},
        {"Tint Angle", "tintanglelabel", "edittintangle", "expressiontintangle"},
        {"Strength", "tintlengthlabel", "edittintlength", "expressiontintlength", true},
    }};
    return places;
}

std::size_t ColorWheelControl::SizeOf() const
{
    return sizeof(*this);
}

const char* ColorWheelControl::LayoutName() const
{
    return wheelLayout;
}

void ColorWheelControl::SetMode(int range)
{
    wheel_->SetMode(range);
}

void ColorWheelControl::ShowWheel(int range)
{
    WheelRecord record;
    const auto read = [this, range](Channel channel, double& value) {
        const int slot = SlotFor(range, channel);
        if (InputOf(slot))
            value = ValueOf(slot);
    };
    read(Hue, record.hue);
    read(Saturation, record.saturation);
    read(TintAngle, record.tintAngle);
    read(TintLength, record.tintLength);
    wheel_->SetRecord(range, record);
}

void ColorWheelControl::OnWheel()
{
    const auto alive = Ref<ColorWheelControl>::Share(this); // what follows may close the page
    const WheelRecord record = wheel_->Shown();
    const std::array<double, channels> values{record.hue, record.saturation, record.tintAngle,
                                              record.tintLength};
    {
        const Writing writing(*this);
        for (int channel = 0; channel < channels; ++channel) {
            if (const int slot = SlotFor(wheel_->Mode(), channel); IsEditable(slot))
                Write(slot, values[std::size_t(channel)]);
        }
    }
    UpdateDisplay(nullptr, nullptr);
}

void ColorWheelControl::OnResetPart(int part)
{
    static constexpr std::array<int, 2> tint{TintAngle, TintLength};
    static constexpr std::array<int, 2> ring{Hue, Saturation};
    if (CustomColorWheel::Part(part) == CustomColorWheel::Part::Tint)
        ResetChannels(tint, tr("Reset Tint"));
    else
        ResetChannels(ring, tr("Reset Hue/Saturation"));
}

// Registration -----------------------------------------------------------------------------------

namespace {

struct ColorWheelFacts : InspectorFacts {
    using Class = ColorWheelControl;
    static constexpr char name[] = "ColorWheelControl";
    static constexpr RecordFacts records[] = {{"ColorWheelControl", "ColorWheelControl"}};
    static constexpr TagMapEntry tagNames[] = {{"CWCCS_LowName", CWCCS_LowName},
                                               {"CWCCS_MidName", CWCCS_MidName},
                                               {"CWCCS_HighName", CWCCS_HighName},
                                               {}};
    struct Resources {
        ResDIB knobs[5]{{"Controls.ColorWheel.Knob.1", 0},
                        {"Controls.ColorWheel.Knob.2", 0},
                        {"Controls.ColorWheel.Knob.3", 0},
                        {"Controls.ColorWheel.Knob.4", 0},
                        {"Controls.ColorWheel.Knob.5", 0}};
        ResDIB wheels[2]{{"Controls.ColorWheel.Wheel.1", 0}, {"Controls.ColorWheel.Wheel.2", 0}};
        ResColor textColour{"Controls.ColorWheel.TextColour", {208, 208, 208}};
        ResData layout{wheelLayout};
    };
};

} // namespace

template <>
ControlClass<ColorWheelFacts> controlClass<ColorWheelFacts>{};
MARLOX_SCRIPT_CASTS(ColorWheelControl)

} // namespace Marlox
