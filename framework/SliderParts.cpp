#include "framework/SliderParts.h"

#include "system/resources/Resources.h"
#include "system/values/Input.h"
#include "system/widgets/TimeCodeEdit.h"
#include "widgets/CustomSlider.h"
#include "widgets/SliderSettings.h"

#include <algorithm>

namespace Marlox {

namespace {

struct KnobStyle {
    int number;
    const char* normal;
    const char* highlighted;
};
constexpr KnobStyle plainKnob{0, "Controls.Slider.Knob.1", "Controls.Slider.Knob.2"};
constexpr KnobStyle knobStyles[] = {
    {6, "Controls.Color.Knob.2.1", "Controls.Color.Knob.2.2"},
    {7, "Controls.Color.Knob.3.1", "Controls.Color.Knob.3.2"},
    {8, "Controls.Color.Knob.4.1", "Controls.Color.Knob.4.2"},
    {9, "Controls.Color.Knob.5.1", "Controls.Color.Knob.5.2"},
};

} // namespace

void SliderParts::Apply(const SliderSettings& settings, CustomSlider& slider)
{
    slider.SetInteger(settings.integer);
    slider.SetGamma(settings.gamma);
    slider.SetRange(settings.range.low, settings.range.high, false);
    slider.SetSteps(settings.fineStep, settings.plainStep);
    slider.SetCentred(false);
    slider.SetTickFreq(settings.tickFreq); // may centre by itself
    if (settings.centred && !slider.SetCentre(settings.centre))
        slider.SetTickFreq(settings.tickFreq);
    slider.SetDefaultValue(settings.defaultValue);
    slider.SetSnapValue(settings.snapValue);
}

void SliderParts::ApplyKnobStyle(int style, CustomSlider& slider)
{
    const auto* found = std::find_if(std::begin(knobStyles), std::end(knobStyles),
                                     [style](const KnobStyle& row) { return row.number == style; });
    const KnobStyle& chosen = found != std::end(knobStyles) ? *found : plainKnob;
    slider.SetKnobImages(chosen.normal, chosen.highlighted);
}

void SliderParts::DragThrough(TimeCodeEdit& edit, CustomSlider& slider)
{
    edit.SetDragTarget([&slider](double movement, double& accumulated) {
        CustomSlider::RelativeDrag state{accumulated, true};
        slider.DragBy(movement, state);
        accumulated = state.movement;
    });
}

QColor SliderParts::StateColor(const Input* input)
{
    if (input && input->HasExpression())
        return LookPack::Global().Color("Controls.ExpressionColour", {230, 215, 135}).ToQColor();
    if (input && input->IsAnimated())
        return LookPack::Global().Color("System.KeyColour", {124, 192, 148}).ToQColor();
    return {};
}

} // namespace Marlox
