// The inputs of overlays: which there are, what they say, and what rules them.

#include "system/viewer/PreviewControl.h"

#include "system/document/MarloxDoc.h"

#include <algorithm>

namespace Marlox {

Operator* PreviewControl::GetOperator(TagList*)
{
    return owner_.Get();
}

void PreviewControl::SetView(PreviewInfo* view, TagList*)
{
    view_ = view;
}

bool PreviewControl::SetAttrsTagList(Input* input, const TagList& tags)
{
    ReadBaseTags(tags);
    return input != nullptr;
}

void PreviewControl::ReadBaseTags(const TagList& tags)
{
    following_ = tags.GetBool(PC_Follow, following_);
    hidesInDrag_ = tags.GetBool(PC_HideWhileDragging, hidesInDrag_);
    if (!baseInput_) {
        baseOffset_ = {tags.GetDouble(PCD_BaseOffsetX, baseOffset_[0]),
                       tags.GetDouble(PCD_BaseOffsetY, baseOffset_[1])};
    }
}

bool PreviewControl::AddInput(Input* input, TagList*)
{
    if (!input || (owner_ && &input->Owner() != owner_.Get()))
        return false;
    if (IsOwn(input))
        return true;
    SetOperator(&input->Owner());
    if (!IsHeard(input))
        input->AddNotify(this, MxID());
    inputs_.push_back(input);
    told_.push_back({!input->GetState().source.empty(), ConditionOf(*input)});
    input->AddControl(this);
    if (inputs_.size() > 1)
        return true;
    if (MarloxDoc* document = GetDoc())
        timeChanges_ = QObject::connect(document, &MarloxDoc::CurrentTimeChanged, document,
                                        [this] { TimeChanged(); });
    AttachBaseInput(*input);
    return true;
}

void PreviewControl::AttachBaseInput(Input& main)
{
    const char* id = main.GetAttrS(IAS_OverlayOffset);
    Input* input = *id ? main.Owner().FindInput(id) : nullptr;
    if (!input || input == baseInput_)
        return;
    baseInput_ = input;
    Listen(input);
}

bool PreviewControl::RemoveInput(Input* input, TagList*)
{
    if (input && input == baseInput_) {
        baseInput_ = nullptr;
        StopListening(input);
    }
    const auto found = std::find(inputs_.begin(), inputs_.end(), input);
    if (found == inputs_.end())
        return false;
    told_.erase(told_.begin() + (found - inputs_.begin()));
    inputs_.erase(found);
    if (!IsHeard(input))
        input->RemoveNotify(this);
    input->RemoveControl(this);
    if (inputs_.empty()) {
        QObject::disconnect(timeChanges_);
        ResetUndo(nullptr);
    }
    return true;
}

bool PreviewControl::IsOwn(const Input* input) const
{
    return std::find(inputs_.begin(), inputs_.end(), input) != inputs_.end();
}

bool PreviewControl::IsHeard(const Input* input) const
{
    return IsOwn(input) ||
           std::any_of(listened_.begin(), listened_.end(),
                       [input](const Listened& each) { return each.input == input; });
}

void PreviewControl::Listen(Input* input)
{
    if (!IsHeard(input))
        input->AddNotify(this, MxID());
    listened_.push_back({Ref<Operator>::Share(&input->Owner()), input});
    Refresh(*input);
}

void PreviewControl::StopListening(Input* input)
{
    const auto found = std::find_if(listened_.begin(), listened_.end(),
                                    [input](const Listened& each) { return each.input == input; });
    if (found == listened_.end())
        return;
    const Ref<Operator> alive = found->owner;
    listened_.erase(found);
    if (!IsHeard(input))
        input->RemoveNotify(this);
}

Input* PreviewControl::FindInputByIndex(unsigned int index) const
{
    for (Input* input : inputs_) {
        if (input->GetAttr(IA_OverlayIndex) == int64(index))
            return input;
    }
    return nullptr;
}

void PreviewControl::SetOperator(Operator* owner)
{
    owner_ = Ref<Operator>::Share(owner);
}

double PreviewControl::CurrentTime() const
{
    return owner_ ? owner_->CurrentTime() : 0.0;
}

// What they say --------------------------------------------------------------------------------

bool PreviewControl::HandleEvent(Object* sender, const MxID& event, TagList& tags)
{
    auto* input = dynamic_cast<Input*>(sender);
    if (!input || !IsHeard(input))
        return Object::HandleEvent(sender, event, tags);
    const auto alive = Ref<PreviewControl>::Share(this); // what follows may remove the overlay
    if (event == MxID("AttrsChanged")) {
        if (IsOwn(input)) {
            TagList all(input->Attributes());
            all.Merge(laterChanges_);
            if (input == inputs_.front())
                attributes_.Merge(all);
            SetAttrsTagList(input, all);
            changed_ = true;
        }
    } else if (event != MxID("ValueChanged")) {
        return Object::HandleEvent(sender, event, tags);
    }
    Refresh(*input);
    return true;
}

void PreviewControl::Refresh(Input& input)
{
    const auto found = std::find(inputs_.begin(), inputs_.end(), &input);
    if (found != inputs_.end()) {
        Told& told = told_[found - inputs_.begin()];
        const OverlayCondition condition = ConditionOf(input);
        const bool connected = !input.GetState().source.empty();
        changed_ = changed_ || condition != told.condition;
        const bool reconnected = connected != told.connected;
        told = {connected, condition};
        if (reconnected && connected)
            OnConnect(&input, nullptr);
        else if (reconnected)
            OnDisconnect(&input, nullptr);
    } else if (!IsHeard(&input)) {
        return;
    }
    const Ref<Parameter> value = input.GetValue(CurrentTime());
    NotifyChanged(&input, value.Get(), nullptr);
    UpdateDisplay(&input, nullptr);
}

void PreviewControl::ReadInputs()
{
    const auto alive = Ref<PreviewControl>::Share(this);
    for (Input* input : std::vector(inputs_))
        Refresh(*input);
    for (const Listened& each : std::vector(listened_))
        Refresh(*each.input);
}

void PreviewControl::TimeChanged()
{
    const auto alive = Ref<PreviewControl>::Share(this); // what follows may remove the overlay
    for (Input* input : GetDoc() ? std::vector(inputs_) : std::vector<Input*>()) {
        if (input->Moves())
            Refresh(*input);
    }
    for (const Listened& each : std::vector(listened_)) {
        if (each.input->Moves())
            Refresh(*each.input);
    }
}

void PreviewControl::NotifyChanged(Input* input, Parameter* value, TagList*)
{
    if (const auto* point = input && input == baseInput_ ? dynamic_cast<Point*>(value) : nullptr)
        baseOffset_ = {point->X() - 0.5, point->Y() - 0.5};
    changed_ = true;
}

void PreviewControl::OnConnect(Input*, TagList*) {}
void PreviewControl::OnDisconnect(Input*, TagList*) {}

OverlayCondition PreviewControl::ConditionOf(const Input& input) const
{
    if (input.GetAttrB(IA_ReadOnly))
        return OverlayCondition::Locked;
    if (input.HasExpression() || !input.GetState().source.empty())
        return OverlayCondition::Expression;
    if (!input.IsAnimated())
        return OverlayCondition::Plain;
    return input.IsKeyAt(CurrentTime()) ? OverlayCondition::Keyed : OverlayCondition::Animated;
}

OverlayCondition PreviewControl::Condition() const
{
    auto most = OverlayCondition::Plain;
    for (const Input* input : inputs_)
        most = std::max(most, ConditionOf(*input));
    return owner_ && owner_->IsLocked() ? OverlayCondition::Locked : most;
}

bool PreviewControl::IsEditable() const
{
    return !(owner_ && owner_->IsLocked()) &&
           std::any_of(inputs_.begin(), inputs_.end(),
                       [this](const Input* input) { return IsFree(input); });
}

bool PreviewControl::IsFree(const Input* input) const
{
    return input && ConditionOf(*input) < OverlayCondition::Expression;
}

} // namespace Marlox
