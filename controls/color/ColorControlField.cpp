// The field of a colour control and the numbers of its axes: from the colour and back to it.

#include "controls/color/ColorControl.h"
#include "system/widgets/TimeCodeEdit.h"
#include "widgets/CustomColorField.h"
#include "widgets/PointerDrag.h"

#include <cmath>

namespace Marlox {

namespace {

constexpr int axisPrecision = 9; // decimals of the field's numbers
constexpr double axisSteps = 1e9;

} // namespace

/// Whether it is the shown colour: then its hue and saturation, which a grey has none of, stay.
bool ColorControl::Describes(const ColorRecord& record) const
{
    const RgbColor rgb = ColorAxes::Of(parts_.colorSpace).ToRgb(record);
    const RgbColor shown = Color();
    for (int i = 0; i < 3; ++i) {
        const auto at = std::size_t(i);
        if (HasValueChanged(false, rgb[at], shown[at], SettingsOf(i).Tolerance()))
            return false;
    }
    return true;
}

void ColorControl::ShowRecord()
{
    const ColorAxes& axes = ColorAxes::Of(parts_.colorSpace);
    if (!Describes(record_))
        record_ = axes.FromRgb(Color(), record_);
    if (parts_.colorSpace == yuvSpace)
        hueRecord_ = ColorAxes::Of(0).FromRgb(Color(), hueRecord_);
    if (!field_)
        return;
    // The record holds what the numbers can tell.
    const auto show = [](TimeCodeEdit& edit, const ColorAxes::Axis& axis, double value) {
        edit.SetValue(OnSteps(value - axis.zero, axisSteps), axisPrecision);
        return edit.GetValue() + axis.zero;
    };
    record_.hue = show(*hue_.edit, axes.HueAxis(), record_.hue);
    record_.saturation = show(*saturation_.edit, axes.SaturationAxis(), record_.saturation);
    record_.value = show(*value_.edit, axes.ValueAxis(), record_.value);
    if (!field_->InGesture())
        settled_ = {record_, Color()};
    field_->SetRecord(record_);
    field_->SetShowsAlpha(Alpha().has_value());
    field_->SetAlpha(Alpha().value_or(1.0));
}

void ColorControl::OnField()
{
    record_ = field_->Record();
    // Brought back to where it was: without the rounding of the way to the axes and back.
    WriteColor(record_ == settled_.record ? settled_.color
                                          : ColorAxes::Of(parts_.colorSpace).ToRgb(record_));
}

void ColorControl::OnFieldAlpha()
{
    const auto alive = Ref<ColorControl>::Share(this);
    {
        const Writing writing(*this);
        if (IsEditable(ColorChannels::alpha))
            Write(ColorChannels::alpha, field_->Alpha());
    }
    UpdateDisplay(nullptr, nullptr);
}

void ColorControl::TakeRecordEdits()
{
    const auto alive = Ref<ColorControl>::Share(this);
    const ColorAxes& axes = ColorAxes::Of(parts_.colorSpace);
    const bool gesture = UndoDepth() > 0;
    record_.hue = hue_.edit->GetValue() + axes.HueAxis().zero;
    if (parts_.colorSpace != yuvSpace && (record_.hue < 0.0 || record_.hue > 1.0))
        record_.hue -= std::floor(record_.hue);
    record_.saturation = saturation_.edit->GetValue() + axes.SaturationAxis().zero;
    record_.value = value_.edit->GetValue() + axes.ValueAxis().zero;
    if (!gesture)
        StartTypedUndo(ColorChannels::red);
    WriteColor(axes.ToRgb(record_));
    if (!gesture)
        ResetUndo(nullptr);
}

} // namespace Marlox
