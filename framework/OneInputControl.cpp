#include "framework/OneInputControl.h"

#include "framework/NamedPlaces.h"
#include "system/resources/Resources.h"
#include "widgets/CustomControl.h"

#include <QColor>

namespace Marlox {

OneInputControl::OneInputControl(const Registry* record, const ScriptVal& creator,
                                 const TagList& attributes)
    : InputControl(record, creator, attributes)
{
    creation_.Merge(attributes);
}

bool OneInputControl::SetAttrsTagList(const TagList& tags)
{
    if (Inputs().empty()) {
        creation_.Merge(tags);
        ReadTags(creation_);
    }
    return InputControl::SetAttrsTagList(tags);
}

bool OneInputControl::SetAttrsTagList(Input* input, const TagList& tags)
{
    if (!InputControl::SetAttrsTagList(input, tags))
        return false;
    if (ShownInput() && input != ShownInput())
        return true; // another one joins: what is shown stays the first's
    TagList all(creation_);
    all.Merge(tags);
    ReadTags(all);
    if (IsOpen())
        Show();
    return true;
}

bool OneInputControl::AddInput(Input* input, TagList* tags)
{
    const bool first = Inputs().empty();
    if ((first && input && !Takes(*input)) || !InputControl::AddInput(input, tags))
        return false;
    if (first)
        value_ = input->GetValue(CurrentTime());
    return true;
}

bool OneInputControl::RemoveInput(Input* input, TagList* tags)
{
    if (input && input == ShownInput()) {
        // Asked for as what Qt finds: findChildren takes a QObject's address for that of the type
        // it is asked for, and these widgets have the host's object first.
        for (QWidget* child : findChildren<QWidget*>()) {
            if (auto* part = qobject_cast<CustomControl*>(child))
                part->EndGesture();
        }
        EndGesture();
    }
    return InputControl::RemoveInput(input, tags);
}

bool OneInputControl::Open(ControlWnd* window, MxRect& rect, TagList* tags)
{
    if (!InputControl::Open(window, rect, tags))
        return false;
    if (const Input* input = ShownInput())
        value_ = input->GetValue(CurrentTime());
    for (QWidget* child : findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
        child->hide(); // unless the layout has a place for it
    if (!LoadLayout(LayoutName(), false, PlaceNamedChild, static_cast<QWidget*>(this)))
        return true; // the line that tells the fault has the place
    if (LayoutObj* place = FindLayoutObj("expression"))
        CreateExpressionEdit(int(Index()), place, nullptr);
    Show();
    return true;
}

void OneInputControl::NotifyChanged(Input* input, Parameter* value, TagList* tags)
{
    if (value && input && input == ShownInput() && !(value_ && value_->IsEqual(*value)))
        value_ = Ref<Parameter>::Share(value);
    InputControl::NotifyChanged(input, value, tags);
}

void OneInputControl::UpdateDisplay(Input* input, TagList* tags)
{
    if (!IsOpen())
        return;
    if (Fault().isEmpty())
        Show();
    InputControl::UpdateDisplay(input, tags);
}

void OneInputControl::OnDisconnect(Input* input, TagList* tags)
{
    // What came through the connection stays.
    if (input && input == ShownInput() && value_)
        input->SetValue(*Ref<Parameter>(value_), TimeNone, Input::ReplaceAll);
    InputControl::OnDisconnect(input, tags);
}

unsigned int OneInputControl::Index() const
{
    const Input* input = ShownInput();
    return input ? unsigned(input->GetAttr(IA_ControlIndex)) : 0;
}

QString OneInputControl::InputName() const
{
    const Input* input = ShownInput();
    return input ? input->GetName() : QString();
}

void OneInputControl::Write(const Ref<Parameter>& value, bool gesture)
{
    const auto alive = Ref<OneInputControl>::Share(this); // what follows may close the page
    // The group is closed by whoever ends the gesture.
    if (gesture)
        SetUndo(Index(), nullptr);
    SetInputs(value.Get(), CurrentTime(), Index(), false, nullptr);
    UpdateDisplay(nullptr, nullptr);
}

OneInputControl::Motion OneInputControl::InputMotion() const
{
    const Input* input = ShownInput();
    if (!input)
        return Motion::None;
    if (input->HasExpression())
        return Motion::Expression;
    if (!input->IsAnimated())
        return Motion::None;
    return input->IsKeyAt(CurrentTime()) ? Motion::Keyed : Motion::Animated;
}

QColor OneInputControl::ColorOf(Motion motion) const
{
    const auto color = [](const char* name, MxColor fallback) {
        return LookPack::Global().Color(name, fallback).ToQColor();
    };
    const QColor key = color("System.KeyColour", {124, 192, 148});
    const QColor ground = GetBackgroundColor().ToQColor();
    switch (motion) {
    case Motion::None:
        break;
    case Motion::Animated: // at a time without a key: half as strong
        return {(key.red() + ground.red()) / 2, (key.green() + ground.green()) / 2,
                (key.blue() + ground.blue()) / 2};
    case Motion::Keyed:
        return key;
    case Motion::Expression:
        return color("Controls.ExpressionColour", {230, 215, 135});
    }
    return {};
}

} // namespace Marlox
