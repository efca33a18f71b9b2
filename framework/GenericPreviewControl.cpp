#include "framework/GenericPreviewControl.h"

#include "framework/GenericOperations.h"

namespace Marlox {

namespace {

template <class Control>
bool GetValuesOf(Object& self, ScriptVal& result)
{
    const auto* control = dynamic_cast<Control*>(&self);
    if (!control)
        return false;
    result = ScriptVal::MakeTable();
    for (const Input* input : control->Inputs()) {
        const Ref<Parameter> value = control->HeldValue(IndexOf(*input, IA_OverlayIndex));
        result.Set(input->GetID().View(), value ? value->ToScriptVal() : ScriptVal());
    }
    return true;
}

bool GetValues(Object& self, const ScriptVal&, ScriptVal& result)
{
    return GetValuesOf<GenericPreviewControl>(self, result) ||
           GetValuesOf<GenericOverlay<OverlayControl>>(self, result);
}

} // namespace

const ScriptOperation GenericOverlayFacts::operations[] = {
    {"IsGeneric", AnswerGeneric}, {"GetValues", GetValues}, {nullptr, nullptr}};

template <class Base>
GenericOverlay<Base>::GenericOverlay(const Registry* record, const ScriptVal& creator,
                                     const TagList& attributes)
    : Base(record, creator, attributes)
{
}

template <class Base>
Ref<Parameter> GenericOverlay<Base>::HeldValue(unsigned int index) const
{
    for (const Held& held : held_) {
        if (IndexOf(*held.input, IA_OverlayIndex) == index)
            return held.value;
    }
    return {};
}

template <class Base>
bool GenericOverlay<Base>::AddInput(Input* input, TagList* tags)
{
    if (!Base::AddInput(input, tags))
        return false;
    const bool known = std::any_of(held_.begin(), held_.end(),
                                   [input](const Held& held) { return held.input == input; });
    if (!known)
        held_.push_back({input, input->GetValue(this->CurrentTime())});
    return true;
}

template <class Base>
bool GenericOverlay<Base>::RemoveInput(Input* input, TagList* tags)
{
    std::erase_if(held_, [input](const Held& held) { return held.input == input; });
    return Base::RemoveInput(input, tags);
}

template <class Base>
void GenericOverlay<Base>::NotifyChanged(Input* input, Parameter* value, TagList* tags)
{
    for (Held& held : held_) {
        if (held.input == input && value && !(held.value && held.value->IsEqual(*value)))
            held.value = Ref<Parameter>::Share(value);
    }
    Base::NotifyChanged(input, value, tags);
}

template class GenericOverlay<PreviewControl>;
template class GenericOverlay<OverlayControl>;

} // namespace Marlox
