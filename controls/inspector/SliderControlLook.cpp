// How a slider control hands its settings and the state of its input to its widgets.

#include "controls/inspector/SliderControl.h"

#include "system/document/MarloxDoc.h"
#include "system/resources/Resources.h"
#include "system/widgets/ElideLabel.h"
#include "system/widgets/TimeCodeEdit.h"
#include "widgets/CustomSlider.h"

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

void SliderControl::ApplyToSlider()
{
    slider_->SetInteger(settings_.integer);
    slider_->SetGamma(settings_.gamma);
    slider_->SetRange(settings_.range.low, settings_.range.high, false);
    slider_->SetSteps(settings_.fineStep, settings_.plainStep);
    slider_->SetCentred(false);
    slider_->SetTickFreq(settings_.tickFreq); // may centre by itself
    if (settings_.centred && !slider_->SetCentre(settings_.centre))
        slider_->SetTickFreq(settings_.tickFreq);
    slider_->SetDefaultValue(settings_.defaultValue);
    slider_->SetSnapValue(settings_.snapValue);
}

void SliderControl::ApplyToEdit()
{
    edit_->SetEditDisabled(settings_.editDisabled);
    edit_->SetInteger(settings_.integer);
    const MarloxDoc* document = GetDoc();
    edit_->SetTimeMode(settings_.time, document ? document->FrameRate() : 24.0);
    edit_->SetRange(settings_.allowed.low, settings_.allowed.high);
    edit_->SetStep(settings_.plainStep);
    edit_->SetShownDecimals(settings_.shownDecimals);
}

void SliderControl::ApplyKnobStyle()
{
    const auto* style =
        std::find_if(std::begin(knobStyles), std::end(knobStyles),
                     [this](const KnobStyle& row) { return row.number == settings_.knobStyle; });
    const KnobStyle& chosen = style != std::end(knobStyles) ? *style : plainKnob;
    slider_->SetKnobImages(chosen.normal, chosen.highlighted);
    knobStyleDirty_ = false;
}

void SliderControl::ApplyLabels()
{
    const Input* input = Inputs().empty() ? nullptr : Inputs().front();
    const QString name = input ? input->GetName() : QString();
    label_->SetText(name);
    label_->setVisible(!settings_.nameHidden);
    slider_->setAccessibleName(name);
    edit_->setAccessibleName(name);
    slider_->SetHelp(QString::fromStdString(settings_.help));
    const auto show = [](ElideLabel& label, const std::string& text) {
        label.SetText(QString::fromStdString(text));
        label.setVisible(!text.empty());
    };
    show(*lowLabel_, settings_.lowName);
    show(*midLabel_, settings_.midName);
    show(*highLabel_, settings_.highName);
    // Names may lie behind the slider: let them show through.
    slider_->setAttribute(Qt::WA_OpaquePaintEvent, !settings_.HasRangeNames());
    labelsDirty_ = false;
}

void SliderControl::ShowInputState()
{
    const Input* input = FindInputByIndex(inputId_);
    QColor color;
    if (input && input->HasExpression())
        color = LookPack::Global().Color("Controls.ExpressionColour", {230, 215, 135}).ToQColor();
    else if (input && input->IsAnimated())
        color = LookPack::Global().Color("System.KeyColour", {124, 192, 148}).ToQColor();
    slider_->SetStateColor(color);
}

} // namespace Marlox
