// How the edits of a control of several numbers show them and take what is typed, and how values
// are written.

#include "framework/ChannelControl.h"

#include "system/resources/Resources.h"
#include "system/widgets/TimeCodeEdit.h"

#include <algorithm>
#include <cmath>

#include <QPointer>

namespace Marlox {

// Edits ------------------------------------------------------------------------------------------

void ChannelControl::AttachEdit(TimeCodeEdit& edit, int slot)
{
    auto found = std::find_if(edits_.begin(), edits_.end(),
                              [&edit](const Edit& known) { return known.edit == &edit; });
    if (found == edits_.end()) {
        connect(&edit, SIGNAL(editingFinished()), this, SLOT(OnOK()));
        connect(&edit, SIGNAL(valueChanged()), this, SLOT(ValueChanged()));
        connect(&edit, &TimeCodeEdit::StartDrag, this, &ChannelControl::OnEditStartDrag);
        connect(&edit, &TimeCodeEdit::EndDrag, this, &ChannelControl::OnEditEndDrag);
        found = edits_.insert(found, {&edit, slot, edit.GetValue()});
    }
    found->slot = slot;
    ApplySettings(*found);
}

void ChannelControl::DetachEdit(TimeCodeEdit& edit)
{
    edit.disconnect(this);
    std::erase_if(edits_, [&edit](const Edit& known) { return known.edit == &edit; });
}

void ChannelControl::CommitEdits()
{
    const auto found = findChildren<TimeCodeEdit*>();
    for (const QPointer<TimeCodeEdit>& edit :
         std::vector<QPointer<TimeCodeEdit>>(found.begin(), found.end())) {
        if (edit)
            edit->CancelDrag();
        if (edit && !edit->Commit() && edit) // what can't be read is about what was shown
            edit->Restore();
    }
}

void ChannelControl::ApplySettings(const Edit& edit)
{
    const Input* input = InputOf(edit.slot);
    edit.edit->setEnabled(input && !onlyViewed_);
    if (!input)
        return;
    const SliderSettings& settings = SettingsOf(edit.slot);
    const double scale = ShownScale(edit.slot);
    const auto scaled = [scale](double bound) {
        return std::abs(bound) < SliderSettings::unbounded ? bound * scale : bound;
    };
    edit.edit->SetEditDisabled(settings.editDisabled || !input->IsChangeable());
    edit.edit->SetInteger(settings.integer && scale == 1.0);
    edit.edit->SetRange(scaled(settings.allowed.low), scaled(settings.allowed.high));
    edit.edit->SetStep(settings.plainStep * scale);
    edit.edit->SetShownDecimals(scale == 1.0 ? settings.shownDecimals : 2);
    edit.edit->setFocusPolicy(TabStop() ? Qt::StrongFocus : Qt::ClickFocus);
    if (edit.edit->accessibleName().isEmpty())
        edit.edit->setAccessibleName(input->GetName());
}

void ChannelControl::ShowEdits()
{
    for (Edit& edit : edits_)
        ShowEdit(edit);
}

void ChannelControl::ShowEditsOf(int slot)
{
    for (Edit& edit : edits_) {
        if (edit.slot == slot)
            ShowEdit(edit);
    }
}

void ChannelControl::ShowEdit(Edit& edit)
{
    const Input* input = InputOf(edit.slot);
    if (!input)
        return;
    edit.edit->SetValue(ValueOf(edit.slot) * ShownScale(edit.slot),
                        SettingsOf(edit.slot).precision);
    edit.shown = edit.edit->GetValue();
    QPalette colors = palette();
    if (input->HasExpression())
        for (const auto group : {QPalette::Active, QPalette::Inactive})
            colors.setColor(
                group, QPalette::Text,
                LookPack::Global().Color("Controls.ExpressionColour", {230, 215, 135}).ToQColor());
    if (edit.edit->palette().color(QPalette::Active, QPalette::Text) !=
        colors.color(QPalette::Active, QPalette::Text))
        edit.edit->setPalette(colors);
}

bool ChannelControl::TakeExpression(const Edit& edit)
{
    if (!InputOf(edit.slot) || !edit.edit->IsExpressionText())
        return false;
    const QString expression = edit.edit->ExpressionText();
    const QString problem = ExpressionProblem(IndexOf(edit.slot), expression);
    if (!problem.isEmpty())
        edit.edit->MarkUnreadable(problem); // more likely a slip than an expression
    else
        SetExpressions(IndexOf(edit.slot), expression.toUtf8().data());
    return true;
}

void ChannelControl::TakeNumbers()
{
    const auto alive = Ref<ChannelControl>::Share(this);
    const bool gesture = UndoDepth() > 0;
    const Writing writing(*this);
    for (const Edit& edit : std::vector<Edit>(edits_)) {
        const Input* input = InputOf(edit.slot);
        if (!input || edit.edit->IsUnreadable() || edit.edit->GetValue() == edit.shown)
            continue;
        const SliderSettings& settings = SettingsOf(edit.slot);
        const double typed = std::clamp(edit.edit->GetValue() / ShownScale(edit.slot),
                                        settings.allowed.low, settings.allowed.high);
        if (input->HasExpression())
            Write(edit.slot, typed); // is refused, and told why
        if (!IsEditable(edit.slot))
            continue;
        if (!HasValueChanged(settings.IsWhole(), typed, ValueOf(edit.slot), settings.Tolerance()))
            continue;
        StartTypedUndo(edit.slot);
        Write(edit.slot, typed);
    }
    if (!gesture)
        ResetUndo(nullptr);
}

void ChannelControl::StartTypedUndo(int slot)
{
    SetUndo(IndexOf(slot), nullptr);
}

void ChannelControl::OnOK()
{
    const auto alive = Ref<ChannelControl>::Share(this); // what follows may close the page
    bool expressions = false;
    for (const Edit& edit : std::vector<Edit>(edits_))
        expressions = TakeExpression(edit) || expressions;
    if (!expressions)
        TakeNumbers();
    if (IsOpen())
        UpdateDisplay(nullptr, nullptr);
    InputControl::OnOK();
}

void ChannelControl::ValueChanged()
{
    const auto alive = Ref<ChannelControl>::Share(this);
    TakeNumbers();
    if (IsOpen())
        UpdateDisplay(nullptr, nullptr);
}

// Values out -------------------------------------------------------------------------------------

bool ChannelControl::Write(int slot, double value)
{
    const SliderSettings& settings = SettingsOf(slot);
    if (!InputOf(slot) ||
        !HasValueChanged(settings.IsWhole(), value, ValueOf(slot), settings.Tolerance()))
        return false;
    return SetInputs(AutoNumber(new Number(value)).Get(), CurrentTime(), IndexOf(slot), false,
                     nullptr);
}

void ChannelControl::WriteDefaults(std::span<const int> which, const QString& undoText)
{
    const auto alive = Ref<ChannelControl>::Share(this); // what follows may close the page
    StartUndo(undoText.toUtf8().constData());
    {
        const Writing writing(*this);
        for (const int slot : which) {
            const double value = SettingsOf(slot).defaultValue;
            if (IsEditable(slot) && value != SliderModel::none)
                Write(slot, value);
        }
    }
    ResetUndo(nullptr);
    UpdateDisplay(nullptr, nullptr);
}

} // namespace Marlox
