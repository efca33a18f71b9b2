// How an InputControl writes: values, the undo group and proxy rendering of a gesture, keys,
// connections and expressions.

#include "system/controls/ControlWnd.h"
#include "system/controls/InputControl_p.h"

#include <QLocale>
#include <QVariant>

namespace Marlox {

namespace {

/// The text of an expression that says a value; empty if there is none.
std::string ExpressionFor(const Parameter* value)
{
    if (!value)
        return {};
    if (value->GetDataType() == CLSID_DataType_Number)
        return QString::number(NumberOf(value), 'g', QLocale::FloatingPointShortest).toStdString();
    ScriptServices* services = ScriptServices::Installed();
    const ScriptVal script = value->ToScriptVal();
    return services && !script.IsNil() ? services->FormatValue(script, false) : std::string();
}

} // namespace

// Values -----------------------------------------------------------------------------------------

bool InputControl::SetInputs(Parameter* value, double time, unsigned int index, bool final,
                             TagList* tags)
{
    Input* input = FindInputByIndex(index);
    if (!value || !input)
        return false;
    const auto alive = Ref<InputControl>::Share(this); // what follows may close the page
    if (input->HasExpression() || !input->GetState().source.empty()) {
        Report(input->HasExpression()
                   ? tr("%1 follows an expression: remove it to set a value").arg(input->GetName())
                   : tr("%1 is connected: disconnect it to set a value").arg(input->GetName()));
        return false;
    }
    const Ref<Parameter> accepted = input->Accepted(*value);
    if (!accepted)
        return false;
    const bool gesture = undo_.IsOpen();
    SetUndo(index, tags);
    const bool written = input->SetValue(*accepted, time);
    if (!gesture || final)
        ResetUndo(tags);
    if (written && window_)
        emit window_->ValueWritten(input, accepted.Get(), time, !gesture || final);
    return written;
}

void InputControl::SetUndo(unsigned int index, TagList*)
{
    const Input* input = FindInputByIndex(index);
    if (MarloxDoc* document = GetDoc())
        undo_.Begin(document,
                    QStringLiteral("Adjust %1").arg(input ? input->GetName() : owner_->GetName()));
}

void InputControl::ResetUndo(TagList*)
{
    undo_.End();
}

void InputControl::StartUndo(const char* text)
{
    undo_.Begin(GetDoc(), QString::fromUtf8(text));
}

void InputControl::EndUndo(bool keep)
{
    undo_.End(keep);
}

void InputControl::EndGesture()
{
    if (d_->editDragging)
        OnEditEndDrag();
    ResetUndo(nullptr);
}

void InputControl::OnEditStartDrag()
{
    if (d_->editDragging)
        return;
    d_->editDragging = true;
    d_->proxy.Begin(*this);
    const Input* input = GetInputFrom(qobject_cast<QWidget*>(sender()), nullptr);
    if (!input && !inputs_.list.empty())
        input = inputs_.list.front();
    SetUndo(input ? unsigned(input->GetAttr(IA_ControlIndex)) : 0, nullptr);
}

void InputControl::OnEditEndDrag()
{
    if (!d_->editDragging)
        return;
    d_->editDragging = false;
    ResetUndo(nullptr);
    d_->proxy.End();
}

// Modifiers --------------------------------------------------------------------------------------

bool InputControl::AddModifier(Input* input)
{
    if (!input || input->IsAnimated() || !input->GetAttrB(IA_Animatable, true))
        return false;
    const UndoGroup group(GetDoc(), QStringLiteral("Animate %1").arg(input->GetName()));
    return input->AddKey(CurrentTime());
}

bool InputControl::RemoveModifier(Input* input)
{
    if (!input || (!input->IsAnimated() && input->GetState().source.empty()))
        return false;
    const UndoGroup group(GetDoc(), QStringLiteral("Remove Animation of %1").arg(input->GetName()));
    // An expression stays, so the value to keep is what lies below it.
    const double time = CurrentTime();
    const Ref<Parameter> plain = input->HasExpression() && input->IsAnimated()
                                     ? input->GetAnimation().Evaluate(time)
                                     : input->GetValue(time);
    bool done = input->GetState().source.empty() || input->Connect(nullptr);
    if (done && input->IsAnimated())
        done = input->SetAnimation({}) && plain && input->SetValue(*plain, time);
    return done;
}

bool InputControl::AddModifierAt(const MxPointT<int>& at)
{
    InputList inputs;
    GetInputsAt(inputs, at.x, at.y, nullptr);
    return !inputs.empty() && AddModifier(inputs.front());
}

bool InputControl::RemoveModifierAt(const MxPointT<int>& at)
{
    InputList inputs;
    GetInputsAt(inputs, at.x, at.y, nullptr);
    return !inputs.empty() && RemoveModifier(inputs.front());
}

// Expressions ------------------------------------------------------------------------------------

bool InputControl::AddExpression(Input* input)
{
    if (!input || input->HasExpression())
        return false;
    const std::string text = ExpressionFor(input->GetValue(CurrentTime()).Get());
    if (text.empty())
        return false;
    const UndoGroup group(GetDoc(), QStringLiteral("Add Expression to %1").arg(input->GetName()));
    return input->SetExpression(text);
}

bool InputControl::RemoveExpression(Input* input)
{
    if (!input || !input->HasExpression())
        return false;
    const UndoGroup group(GetDoc(),
                          QStringLiteral("Remove Expression of %1").arg(input->GetName()));
    return input->SetExpression({});
}

void InputControl::SetExpressions(unsigned int index, char* expression)
{
    Input* input = FindInputByIndex(index);
    if (!input || !expression)
        return;
    if (!*expression) {
        RemoveExpression(input);
        return;
    }
    const UndoGroup group(GetDoc(), QStringLiteral("Set Expression of %1").arg(input->GetName()));
    input->SetExpression(expression);
}

QString InputControl::ExpressionProblem(unsigned int index, const QString& expression) const
{
    const Input* input = FindInputByIndex(index);
    ScriptServices* services = ScriptServices::Installed();
    if (!input || !services)
        return tr("Expressions can't be used here.");
    QString error;
    const Ref<Parameter> value =
        services->Evaluate(*input, expression.toStdString(), CurrentTime(), &error);
    if (value && value->GetDataType() == input->GetDataType())
        return {};
    return error.isEmpty() ? tr("The expression gives no %1.").arg(input->GetDataType().ToString())
                           : error;
}

bool InputControl::AddExpressionAt(const MxPointT<int>& at)
{
    InputList inputs;
    GetInputsAt(inputs, at.x, at.y, nullptr);
    return !inputs.empty() && AddExpression(inputs.front());
}

bool InputControl::RemoveExpressionAt(const MxPointT<int>& at)
{
    InputList inputs;
    GetInputsAt(inputs, at.x, at.y, nullptr);
    return !inputs.empty() && RemoveExpression(inputs.front());
}

} // namespace Marlox
