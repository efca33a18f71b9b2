#include "controls/color/ColorSuppressionControl.h"

#include "framework/ControlClass.h"
#include "framework/SliderParts.h"
#include "widgets/CustomColorSuppression.h"

#include <algorithm>

namespace Marlox {

namespace {

constexpr char suppressionLayout[] = "Controls.ColorSuppression.Layout";

constexpr std::array<u32, ColorSuppressionControl::ranges> angleTags{
    CSCCD_AngleMaster, CSCCD_AngleLow, CSCCD_AngleMid, CSCCD_AngleHigh};

} // namespace

ColorSuppressionControl::ColorSuppressionControl(const Registry* record, const ScriptVal& creator,
                                                 const TagList& attributes)
    : RangedControl(record, creator, attributes, Places(),
                    {CSCCS_LowName, CSCCS_MidName, CSCCS_HighName}),
      wheel_(new CustomColorSuppression(this))
{
    SetWheel(*wheel_);
    connect(wheel_, SIGNAL(dragWheel(int)), this, SLOT(OnWheel(int)));
    connect(wheel_, &CustomColorSuppression::resetKnob, this,
            &ColorSuppressionControl::OnResetKnob);
    ReadTags(CreationTags());
}

std::span<const RangedControl::Place> ColorSuppressionControl::Places()
{
    static constexpr std::array<Place, channels> places{{
        {"Red", "editredlabel", "editred", "expressionred", true},
        {"Yellow", "edityellowlabel", "edityellow", "expressionyellow", true},
        {"Green", "editgreenlabel", "editgreen", "expressiongreen", true},
        {"Cyan", "editcyanlabel", "editcyan", "expressioncyan", true},
        {"Blue", "editbluelabel", "editblue", "expressionblue", true},
        {"Magenta", "editmagentalabel", "editmagenta", "expressionmagenta", true},
    }};
    return places;
}

const char* ColorSuppressionControl::LayoutName() const
{
    return suppressionLayout;
}

bool ColorSuppressionControl::CopyAttr(u64 tag, void* out)
{
    const auto found = std::find(angleTags.begin(), angleTags.end(), u32(tag));
    if (found == angleTags.end())
        return RangedControl::CopyAttr(tag, out);
    *static_cast<double*>(out) = angles_[std::size_t(found - angleTags.begin())];
    return true;
}

void ColorSuppressionControl::ReadTags(const TagList& tags)
{
    RangedControl::ReadTags(tags);
    for (std::size_t i = 0; i < ranges; ++i) {
        angles_[i] = tags.GetDouble(angleTags[i], 0.0);
        wheel_->SetRotation(int(i), angles_[i]);
    }
}

int ColorSuppressionControl::SlotAt(const QWidget* widget) const
{
    // The knob under the pointer, which is where a menu opens.
    return widget == wheel_ && wheel_->HoveredKnob() != CustomColorSuppression::none
               ? SlotFor(ShownRange(), wheel_->HoveredKnob())
               : RangedControl::SlotAt(widget);
}

void ColorSuppressionControl::SetMode(int range)
{
    wheel_->SetMode(range);
}

void ColorSuppressionControl::ShowWheel(int range)
{
    CustomColorSuppression::Record record;
    for (int channel = 0; channel < channels; ++channel)
        record.amounts[std::size_t(channel)] = ValueOf(SlotFor(range, channel));
    wheel_->SetRecord(range, record);
    if (range != ShownRange())
        return;
    for (int channel = 0; channel < channels; ++channel) {
        const int slot = SlotFor(range, channel);
        wheel_->SetKnob(channel, {InputOf(slot) != nullptr, IsEditable(slot),
                                  SliderParts::StateColor(InputOf(slot))});
    }
}

void ColorSuppressionControl::OnWheel(int knob)
{
    const auto alive = Ref<ColorSuppressionControl>::Share(this); // a write may close the page
    const int slot = SlotFor(wheel_->Mode(), knob);
    bool written = false;
    if (IsEditable(slot)) {
        const SliderSettings::Range& allowed = SettingsOf(slot).allowed;
        const double amount = std::clamp(wheel_->Amount(knob), allowed.low, allowed.high);
        if (wheel_->InGesture() && amount != ValueOf(slot))
            SetUndo(IndexOf(slot), nullptr);
        written = Write(slot, amount);
    }
    if (!written && IsOpen())
        ShowSlot(slot);
}

void ColorSuppressionControl::OnResetKnob(int knob)
{
    if (const Input* input = InputOf(SlotFor(ShownRange(), knob)))
        ResetChannels({&knob, 1}, tr("Reset %1").arg(input->GetName()));
}

// Registration -----------------------------------------------------------------------------------

namespace {

struct ColorSuppressionFacts : InspectorFacts {
    using Class = ColorSuppressionControl;
    static constexpr char name[] = "ColorSuppressionControl";
    static constexpr RecordFacts records[] = {
        {"ColorSuppressionControl", "ColorSuppressionControl"}};
    static constexpr TagMapEntry tagNames[] = {
        {"CSCCS_LowName", CSCCS_LowName},     {"CSCCS_MidName", CSCCS_MidName},
        {"CSCCS_HighName", CSCCS_HighName},   {"CSCCD_AngleMaster", CSCCD_AngleMaster},
        {"CSCCD_AngleLow", CSCCD_AngleLow},   {"CSCCD_AngleMid", CSCCD_AngleMid},
        {"CSCCD_AngleHigh", CSCCD_AngleHigh}, {}};
    struct Resources {
        ResDIB knob{"Controls.ColorSuppression.Knob", 0};
        ResDIB knobCenter{"Controls.ColorSuppression.KnobCenter", 0};
        ResDIB knobSelected{"Controls.ColorSuppression.KnobSelected", 0};
        ResDIB wheel{"Controls.ColorSuppression.Wheel", 0};
        ResColor textColour{"Controls.Other.TextColour", {220, 220, 220}};
        ResData layout{suppressionLayout};
    };
};

} // namespace

template <>
ControlClass<ColorSuppressionFacts> controlClass<ColorSuppressionFacts>{};
MARLOX_SCRIPT_CASTS(ColorSuppressionControl)

} // namespace Marlox
