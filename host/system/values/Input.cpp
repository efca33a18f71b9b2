#include "system/values/Input.h"

#include "system/shapes/PolyLine.h"

#include "system/base/ScriptServices.h"
#include "system/document/MarloxDoc.h"
#include "system/document/Operator.h"
#include "system/shapes/ShapeLinks.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <typeinfo>

#include <QCoreApplication>

namespace Marlox {

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("Marlox::Input", text);
}

/// Inputs whose expressions are being evaluated, outermost first.
std::vector<const Input*>& evaluations()
{
    static std::vector<const Input*> stack;
    return stack;
}

class Evaluation {
public:
    explicit Evaluation(const Input* input) { evaluations().push_back(input); }
    ~Evaluation() { evaluations().pop_back(); }
    Evaluation(const Evaluation&) = delete;
    Evaluation& operator=(const Evaluation&) = delete;
};

bool isEqual(const Ref<Parameter>& a, const Ref<Parameter>& b)
{
    return a == b || (a && b && a->IsEqual(*b));
}

} // namespace

bool operator==(const Input::State& a, const Input::State& b)
{
    return isEqual(a.value, b.value) && a.animation == b.animation &&
           a.expression == b.expression && a.source == b.source;
}

/// The state before and after; it keeps the tool alive while the history may bring it back.
class Input::Step final : public UndoStep {
public:
    Step(Input& input, State before, State after)
        : tool_(Ref<Operator>::Share(&input.owner_)), input_(Ref<Input>::Share(&input)),
          before_(std::move(before)), after_(std::move(after))
    {
    }
    void Undo() override { input_->RestoreInputState(before_); }
    void Redo() override { input_->RestoreInputState(after_); }
    bool Absorb(UndoStep& later) override
    {
        if (typeid(later) != typeid(Step)) // asked very often in large groups
            return false;
        auto* step = static_cast<Step*>(&later);
        if (!(step->input_ == input_))
            return false;
        after_ = std::move(step->after_);
        return true;
    }
    bool IsNothing() const override { return before_ == after_; }

private:
    Ref<Operator> tool_;
    Ref<Input> input_; // a published one may have left its tool
    State before_;
    State after_;
};

Input::Input(Operator& owner, const MxID& id, const TagList& attributes)
    : owner_(owner), id_(id), dataType_(attributes.GetID(IAS_DataType, CLSID_DataType_Number))
{
    attributes_.Merge(attributes);
    if (!Parameter::CreateDefault(dataType_)) {
        dataType_ = CLSID_DataType_Number;
        attributes_.Set(IAS_DataType, CLSID_DataType_Number);
    }
    computed_ = attributes_.GetBool(IA_Computed);
    if (computed_) {
        attributes_.Set(IA_ReadOnly, true);
        attributes_.Set(IA_Passive, true);
        attributes_.Set(IA_Animatable, false);
    }
    state_.value = DefaultValue();
}

Input::~Input() = default;

Ref<Parameter> Input::DefaultValue() const
{
    Ref<Parameter> value = Parameter::CreateDefault(dataType_);
    if (dynamic_cast<Number*>(value.Get()))
        value = MakeRef<Number>(attributes_.GetDouble(IAD_Default));
    else if (const auto* point = dynamic_cast<Point*>(value.Get()))
        value = MakeRef<Point>(attributes_.GetDouble(IAD_DefaultX, point->X()),
                               attributes_.GetDouble(IAD_DefaultY, point->Y()));
    else if (dynamic_cast<Text*>(value.Get()))
        value = MakeRef<Text>(attributes_.GetString(IAS_Default, ""));
    return Accepted(*value);
}

QString Input::GetName() const
{
    const char* name = attributes_.GetString(IAS_Name);
    return name && *name ? QString::fromUtf8(name) : id_.ToString();
}

/// Whether a value is of the kind that it carries; of shapes, any kind.
bool Input::Holds(const Parameter& value) const
{
    const MxID type = value.GetDataType();
    return type == dataType_ || (IsShapeType(type) && IsShapeType(dataType_));
}

bool Input::IsImage() const
{
    return dataType_ == MxID(CLSID_DataType_Image) || dataType_ == MxID(CLSID_DataType_Mask);
}

Ref<Parameter> Input::Accepted(const Parameter& value) const
{
    const auto* number = dynamic_cast<const Number*>(&value);
    if (!number)
        return value.Copy();
    double accepted = number->GetValue();
    if (attributes_.GetBool(IA_Integer))
        accepted = std::round(accepted);
    // Written so that a NaN passes and that bounds in the wrong order do no harm.
    if (accepted > attributes_.GetDouble(IAD_Maximum, HUGE_VAL))
        accepted = attributes_.GetDouble(IAD_Maximum);
    if (accepted < attributes_.GetDouble(IAD_Minimum, -HUGE_VAL))
        accepted = attributes_.GetDouble(IAD_Minimum);
    return MakeRef<Number>(accepted);
}

Ref<Parameter> Input::GetPlainValue(double time) const
{
    if (!IsAnimated())
        return state_.value;
    Ref<Parameter> value = state_.animation.Evaluate(time);
    return attributes_.GetBool(IA_Integer) ? Accepted(*value) : value;
}

Ref<Parameter> Input::GetValue(double time) const
{
    if (IsImage() && !state_.source.empty())
        return nullptr;
    if (computed_) {
        const Ref<Parameter> value = owner_.Compute(*this, time);
        return value && Holds(*value) ? value : state_.value;
    }
    return HasExpression() ? EvaluateExpression(time) : GetPlainValue(time);
}

bool Input::DependsOnOthers() const
{
    return HasExpression() || computed_ || HasLinks(state_);
}

Ref<Parameter> Input::EvaluateExpression(double time) const
{
    auto& running = evaluations();
    const auto self = std::find(running.begin(), running.end(), this);
    if (self != running.end()) {
        std::for_each(self, running.end(), [](const Input* input) { input->looped_ = true; });
        return lastGood_ ? lastGood_ : GetPlainValue(time);
    }
    QString error;
    Ref<Parameter> value;
    looped_ = false;
    if (ScriptServices* services = ScriptServices::Installed()) {
        const Evaluation evaluation(this);
        value = services->Evaluate(*this, state_.expression, time, &error);
    } else {
        error = tr("Expressions need the script library, which is not loaded.");
    }

    if (looped_)
        error = tr("The expression refers to itself.");
    else if (value && !Holds(*value))
        error = tr("The expression gives a %1 where a %2 is wanted.")
                    .arg(value->GetDataType().ToString(), dataType_.ToString());
    else if (!value && error.isEmpty())
        error = tr("The expression gives no value.");
    expressionError_ = error;
    if (error.isEmpty())
        lastGood_ = Accepted(*value);
    return lastGood_ ? lastGood_ : GetPlainValue(time);
}

double Input::GetNumber(double time, double otherwise) const
{
    return NumberOf(GetValue(time).Get(), otherwise);
}

bool Input::IsChangeable() const
{
    const bool locked = owner_.IsLocked() && !attributes_.GetBool(IA_Passive);
    return !locked && !attributes_.GetBool(IA_ReadOnly);
}

bool Input::ChangeTo(State next, Force force)
{
    return Change(std::move(next), tr("Change %1"), force);
}

bool Input::Change(State next, const QString& text, Force force)
{
    if (computed_ || (force == Ask && !IsChangeable()))
        return false;
    if (next == state_)
        return true;
    const State before = state_;
    Assign(next);
    MarloxDoc* document = GetDoc();
    // Recorded before listeners are told: one that answers with a change of its own comes behind.
    if (document && !attributes_.GetBool(IA_Passive))
        document->Undo().Push(std::make_unique<Step>(*this, before, next), text.arg(GetName()));
    Announce(before.source != next.source);
    return true;
}

bool Input::SetValue(const Parameter& value, double time, unsigned flags)
{
    if (!Holds(value))
        return false;
    State next = state_;
    const bool replaceAll = (flags & ReplaceAll) != 0 || time == TimeNone;
    if (replaceAll) {
        next.animation = {};
        next.expression.clear();
    }
    if (next.animation.IsEmpty())
        next.value = Accepted(value);
    else if (std::isfinite(time))
        next.animation.SetKey(time, Accepted(value), InterpolationOfKeySet(time));
    else
        return false;
    return Change(std::move(next), tr("Change %1"));
}

bool Input::SetDefault()
{
    State next = state_;
    next.value = DefaultValue();
    next.animation = {};
    next.expression.clear();
    return Change(std::move(next), tr("Reset %1"));
}

bool Input::SetAnimation(Animation animation)
{
    State next = state_;
    next.animation = {};
    for (const auto& [time, key] : animation.Keys()) {
        if (!Holds(*key.value))
            return false;
        next.animation.SetKey(time, Accepted(*key.value), key.interpolation);
    }
    if (!next.animation.IsEmpty() && (IsImage() || !attributes_.GetBool(IA_Animatable, true)))
        return false;
    return Change(std::move(next), tr("Change Animation of %1"));
}

bool Input::AddKey(double time, std::optional<Interpolation> interpolation)
{
    if (IsImage() || !attributes_.GetBool(IA_Animatable, true) || !std::isfinite(time) ||
        time == TimeNone)
        return false;
    State next = state_;
    next.animation.SetKey(time, GetValue(time),
                          interpolation ? interpolation : InterpolationOfKeySet(time));
    return Change(std::move(next), tr("Set Key of %1"));
}

/// Nothing: the usual one, or the one that the key has which is there.
std::optional<Interpolation> Input::InterpolationOfKeySet(double time) const
{
    if (attributes_.GetBool(IA_Stepped) && !IsKeyAt(time))
        return Interpolation::Step;
    return {};
}

bool Input::RemoveKey(double time)
{
    State next = state_;
    const Ref<Parameter> value = state_.animation.Evaluate(time);
    if (!next.animation.RemoveKey(time))
        return false;
    if (next.animation.IsEmpty())
        next.value = value;
    return Change(std::move(next), tr("Remove Key of %1"));
}

bool Input::SetExpression(const std::string& expression)
{
    if (IsImage() && !expression.empty())
        return false;
    State next = state_;
    next.expression = expression;
    return Change(std::move(next), expression.empty() ? tr("Remove Expression of %1")
                                                      : tr("Change Expression of %1"));
}

Operator* Input::GetSource() const
{
    const MarloxDoc* document = GetDoc();
    if (!document || state_.source.empty())
        return nullptr;
    return document->FindTool(QString::fromStdString(state_.source));
}

bool Input::Connect(Operator* source)
{
    const MarloxDoc* document = GetDoc();
    if (source && (!IsImage() || !document || source->GetDoc() != document ||
                   source->IsModifier() || document->IsFedBy(*source, owner_)))
        return false;
    State next = state_;
    next.source = source ? source->GetName().toStdString() : std::string();
    return Change(std::move(next), source ? tr("Connect %1") : tr("Disconnect %1"));
}

void Input::RestoreInputState(const State& state)
{
    const bool reconnected = state.source != state_.source;
    Assign(state);
    Announce(reconnected);
}

void Input::Assign(const State& state)
{
    if (state.expression != state_.expression) {
        expressionError_.clear();
        if (state.expression.empty())
            lastGood_ = nullptr;
    }
    state_ = state;
}

void Input::Announce(bool reconnected)
{
    const auto self = Ref<Operator>::Share(&owner_); // a listener may remove the tool
    if (reconnected) {
        TagList tags;
        Notify("ConnectionChanged", tags);
    }
    NotifyValueChanged();
    if (MarloxDoc* document = GetDoc())
        document->TellInputChanged(*this);
}

void Input::RenameSource(const std::string& from, const std::string& to)
{
    if (from.empty())
        return;
    if (state_.source == from)
        state_.source = to;
    RenameToolInLinks(state_, from, to);
}

void Input::AddControl(Object* control)
{
    WriteLock lock(*this);
    if (std::find(controls_.begin(), controls_.end(), control) == controls_.end())
        controls_.push_back(control);
}

void Input::RemoveControl(Object* control)
{
    WriteLock lock(*this);
    std::erase(controls_, control);
}

void Input::NotifyValueChanged()
{
    static const MxID event("ValueChanged");
    TagList tags;
    Notify(event, tags);
}

bool Input::SetAttrsTagList(const TagList& tags)
{
    attributes_.Merge(tags);
    static const MxID event("AttrsChanged");
    TagList none;
    Notify(event, none);
    return true;
}

bool Input::CopyAttr(u64 tag, void* out)
{
    const TagPair* pair = attributes_.Find(u32(tag));
    u64 bits = 0;
    if (pair)
        bits = pair->Bits();
    else if (tag == IAS_Name)
        bits = TagPair{tag, TagValue(id_.c_str())}.Bits();
    else if (tag == IAS_DataType)
        bits = TagPair{tag, TagValue(dataType_.c_str())}.Bits();
    else
        return Object::CopyAttr(tag, out);
    std::memcpy(out, &bits, sizeof bits);
    return true;
}

MarloxDoc* Input::GetDoc() const
{
    return owner_.GetDoc();
}

} // namespace Marlox
