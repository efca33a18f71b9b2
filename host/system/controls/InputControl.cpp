#include "system/controls/InputControl.h"

#include "system/controls/ControlWnd.h"
#include "system/controls/InputControl_p.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Marlox {

const MxID InputControl::ClassID = "InputControl";

namespace {

const MxID& ValueChangedEvent()
{
    static const MxID id = "ValueChanged";
    return id;
}

const MxID& AttrsChangedEvent()
{
    static const MxID id = "AttrsChanged";
    return id;
}

bool CopyTagValue(const TagPair& pair, void* out)
{
    const u64 bits = pair.Bits();
    std::memcpy(out, &bits, sizeof bits);
    return true;
}

} // namespace

InputControl::InputControl(const Registry* record, const ScriptVal&, const TagList& attributes)
    : record_(record), d_(std::make_unique<Private>())
{
    d_->attributes.Merge(attributes);
}

InputControl::~InputControl()
{
    EndGesture();
    for (Input* input : inputs_.list) {
        input->RemoveNotify(this);
        input->RemoveControl(this);
    }
}

std::size_t InputControl::SizeOf() const
{
    return sizeof(*this) + sizeof(Private);
}

MarloxDoc* InputControl::GetDoc() const
{
    return owner_ ? owner_->GetDoc() : nullptr;
}

// Attributes -------------------------------------------------------------------------------------

bool InputControl::SetAttrsTagList(const TagList& tags)
{
    d_->laterChanges.Merge(tags);
    bool accepted = true;
    for (Input* input : InputList(inputs_.list)) {
        // Controls read all their tags anew, so they get what is unchanged too.
        TagList all(input->Attributes());
        all.Merge(d_->laterChanges);
        accepted = SetAttrsTagList(input, all) && accepted;
    }
    if (IsOpen()) {
        UpdateDisplay(nullptr, nullptr);
        RecalcControlSize();
    }
    return accepted;
}

bool InputControl::CopyAttr(u64 tag, void* out)
{
    const auto flag = [out](bool value) {
        *static_cast<int64*>(out) = value ? 1 : 0;
        return true;
    };
    if (tag == IC_Disabled)
        return flag(disabled_);
    if (tag == IC_TabStop)
        return flag(tabStop_);
    if (tag == IC_Hidden)
        return flag(d_->hidden);
    for (const TagList* list : {&d_->laterChanges, &d_->attributes}) {
        if (const TagPair* pair = list->Find(u32(tag)))
            return CopyTagValue(*pair, out);
    }
    return Object::CopyAttr(tag, out);
}

bool InputControl::SetAttrsTagList(Input* input, const TagList& tags)
{
    if (!input)
        return false;
    const bool isMain = inputs_.list.empty() || inputs_.list.front() == input;
    if (isMain) {
        tabStop_ = tags.GetBool(IC_TabStop, true);
        d_->hidden = tags.GetBool(IC_Hidden);
        GetDisabledTags(tags, true);
    }
    return true;
}

bool InputControl::GetDisabledTags(const TagList& tags, bool ofInput)
{
    disabled_ = tags.GetBool(IC_Disabled) || (ofInput && tags.GetBool(IA_ReadOnly));
    ApplyEnabled();
    return disabled_;
}

void InputControl::ApplyEnabled()
{
    // What is passive is not the tool's result, which a lock keeps: a locked tool can be looked at.
    const bool locked = owner_ && owner_->IsLocked() && !IsAllPassive(nullptr);
    usable_ = !disabled_ && !locked;
    EnableEditing(usable_);
}

void InputControl::EnableEditing(bool usable)
{
    if (usable == testAttribute(Qt::WA_ForceDisabled))
        setEnabled(usable);
}

void InputControl::ChooseView(u32 tag, TagValue value)
{
    d_->laterChanges.Remove(tag); // what was set last counts
    const TagList chosen{{tag, value}};
    if (inputs_.list.empty())
        SetAttrsTagList(chosen);
    else
        inputs_.list.front()->SetAttrsTagList(chosen);
}

bool InputControl::IsRowHidden() const
{
    return d_->hidden;
}

// Inputs -----------------------------------------------------------------------------------------

bool InputControl::AttachInput(Operator* owner, const TagList& tags, Input*& input, u64, u64)
{
    if (!owner || (owner_ && owner_ != owner))
        return false;
    if (!input) {
        const MxID name(tags.GetString(IAS_Name));
        input = owner->FindInput(name);
        for (const Ref<Input>& candidate : owner->Inputs()) {
            if (!input && candidate->GetName() == name.ToString())
                input = candidate.Get();
        }
    }
    if (!input || &input->Owner() != owner)
        return false;
    owner_ = owner;
    d_->owner = Ref<Operator>::Share(owner);
    return true;
}

bool InputControl::DetachInput(Input*& input)
{
    const bool ours = input && &input->Owner() == owner_;
    if (ours) {
        RemoveInput(input, nullptr);
        if (inputs_.list.empty()) {
            EndGesture();
            owner_ = nullptr;
            d_->owner = nullptr;
        }
    }
    input = nullptr;
    return ours;
}

bool InputControl::AddInput(Input* input, TagList*)
{
    if (!input || (owner_ && &input->Owner() != owner_))
        return false;
    const InputList& list = inputs_.list;
    if (std::find(list.begin(), list.end(), input) != list.end())
        return true;
    owner_ = &input->Owner();
    d_->owner = Ref<Operator>::Share(owner_);
    {
        const WriteLock lock(inputs_);
        inputs_.list.push_back(input);
    }
    d_->seen.push_back({input->GetExpression(), input->GetState().source});
    input->AddControl(this);
    input->AddNotify(this, MxID());
    if (list.size() == 1)
        Describe(*input);
    ApplyEnabled();
    return true;
}

void InputControl::Describe(const Input& main)
{
    setObjectName(main.GetID().ToString());
    setAccessibleName(main.GetName());
    setToolTip(QString::fromUtf8(main.GetAttrS(IAS_Help)));
}

bool InputControl::RemoveInput(Input* input, TagList*)
{
    const auto found = std::find(inputs_.list.begin(), inputs_.list.end(), input);
    if (found == inputs_.list.end())
        return false;
    d_->seen.erase(d_->seen.begin() + (found - inputs_.list.begin()));
    std::erase(shown_, input);
    {
        const WriteLock lock(inputs_);
        inputs_.list.erase(found);
    }
    input->RemoveNotify(this);
    input->RemoveControl(this);
    return true;
}

Input* InputControl::FindInputByIndex(unsigned int index) const
{
    for (Input* input : inputs_.list) {
        if (input->GetAttr(IA_ControlIndex, -1) == int64(index))
            return input;
    }
    return nullptr;
}

void InputControl::SetShownInputs(InputList inputs)
{
    shown_ = std::move(inputs);
    if (window_)
        window_->UpdateState(*this);
}

double InputControl::CurrentTime() const
{
    return owner_ ? owner_->CurrentTime() : 0.0;
}

bool InputControl::IsAllPassive(TagList*) const
{
    return !inputs_.list.empty() &&
           std::all_of(inputs_.list.begin(), inputs_.list.end(),
                       [](const Input* input) { return input->GetAttrB(IA_Passive); });
}

Input* InputControl::GetInputFrom(QWidget* widget, TagList*)
{
    const bool ours = widget && (widget == this || isAncestorOf(widget));
    return ours && !inputs_.list.empty() ? inputs_.list.front() : nullptr;
}

void InputControl::GetInputsAt(InputList& out, int x, int y, TagList* tags)
{
    QWidget* child = childAt(x, y);
    if (Input* input = GetInputFrom(child ? child : this, tags))
        out.push_back(input);
}

// Values -----------------------------------------------------------------------------------------

bool InputControl::HandleEvent(Object* sender, const MxID& event, TagList& tags)
{
    const auto found =
        std::find_if(inputs_.list.begin(), inputs_.list.end(),
                     [sender](Input* input) { return static_cast<Object*>(input) == sender; });
    if (found == inputs_.list.end())
        return Object::HandleEvent(sender, event, tags);
    const auto alive = Ref<InputControl>::Share(this); // what follows may close the page
    Input& input = **found;
    if (event == ValueChangedEvent()) {
        Refresh(input);
        return true;
    }
    if (event == AttrsChangedEvent()) {
        TagList all(input.Attributes());
        all.Merge(d_->laterChanges);
        SetAttrsTagList(&input, all);
        if (&input == inputs_.list.front())
            Describe(input);
        Refresh(input);
        RecalcControlSize();
        return true;
    }
    return Object::HandleEvent(sender, event, tags);
}

void InputControl::Refresh(Input& input)
{
    const auto found = std::find(inputs_.list.begin(), inputs_.list.end(), &input);
    if (found == inputs_.list.end())
        return;
    const Input::State& state = input.GetState();
    Private::Seen& seen = d_->seen[found - inputs_.list.begin()];
    const bool connection = state.source.empty() != seen.source.empty();
    const bool expression = state.expression != seen.expression;
    if (connection || expression)
        seen = {state.expression, state.source};
    // A lost connection comes before the new value: the control still shows what came through it.
    if (connection && !state.source.empty())
        OnConnect(&input, nullptr);
    else if (connection)
        OnDisconnect(&input, nullptr);

    const Ref<Parameter> value = input.GetValue(CurrentTime());
    NotifyChanged(&input, value.Get(), nullptr);
    if (expression || input.HasExpression())
        ExpressionChanged(&input, nullptr);
    if (IsOpen())
        UpdateDisplay(&input, nullptr);
}

void InputControl::NotifyChanged(Input*, Parameter*, TagList*) {}

void InputControl::UpdateDisplay(Input*, TagList*)
{
    if (window_)
        window_->UpdateState(*this);
}

void InputControl::OnConnect(Input*, TagList*) {}
void InputControl::OnDisconnect(Input*, TagList*) {}

bool InputControl::HasValueChanged(bool integer, double value, double shown, double tolerance)
{
    if (std::isnan(value) || std::isnan(shown))
        return std::isnan(value) != std::isnan(shown);
    if (std::isinf(value) || std::isinf(shown))
        return value != shown;
    if (integer)
        return std::round(value) != std::round(shown);
    return std::abs(value - shown) > tolerance;
}

} // namespace Marlox
