// How a slider control hands its settings and the state of its input to its widgets.

#include "controls/inspector/SliderControl.h"

#include "framework/SliderParts.h"
#include "system/document/MarloxDoc.h"
#include "system/widgets/ElideLabel.h"
#include "system/widgets/TimeCodeEdit.h"
#include "widgets/CustomSlider.h"

namespace Marlox {

void SliderControl::ApplyToSlider()
{
    SliderParts::Apply(settings_, *slider_);
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
    SliderParts::ApplyKnobStyle(settings_.knobStyle, *slider_);
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
    slider_->SetStateColor(SliderParts::StateColor(FindInputByIndex(inputId_)));
}

} // namespace Marlox
