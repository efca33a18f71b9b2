#pragma once

#include "system/base/HostTags.h"
#include "system/base/LockableObject.h"
#include "system/values/Animation.h"
#include "system/values/Parameter.h"

#include <memory>
#include <string>
#include <vector>

#include <QString>

namespace Marlox {

class InputControl;
class Operator;

/// The time at which a value is set that is not keyed: Input::SetValue with it replaces all keys.
inline constexpr double TimeNone = -2000000000.0;

/// One input of a tool: an animatable parameter slot. Its value at a time comes, in this order,
/// from an upstream connection, an expression, the keys, or the plain value. It belongs to its
/// tool, must not outlive it, and knows the controls that show it. User-interface thread, except
/// for the list of controls, which is read under the read lock.
///
/// Every operation that changes the state is one undo step of the document, named after the input
/// ("Change Gain") when it stands outside a group; steps of one input within a group are merged. An
/// input with IA_Passive, or of a tool that stands in no document, simply changes. Operations
/// refuse (false) while IsChangeable says no, and are no step, yet true, when they change nothing.
///
/// Events to listeners: "ValueChanged" after every change of the state, "ConnectionChanged" before
/// it when the connection changed too, "AttrsChanged".
class MARLOXSYSTEM_EXPORT Input final : public Object, public LockableObject {
public:
    /// Everything about an input that undo restores and documents store.
    struct State {
        Ref<Parameter> value;
        Animation animation;
        std::string expression; // empty: none
        std::string source;     // name of the upstream tool; empty: not connected

        friend MARLOXSYSTEM_EXPORT bool operator==(const State&, const State&);
    };

    /// Flags of SetValue.
    enum SetFlag : unsigned {
        KeepKeys = 0,   // with keys, set one at the time
        ReplaceAll = 1, // drop keys and expression: a plain number from now on
    };

    /// Made by Operator::AddInput. The attribute IAS_DataType picks the parameter kind (Number
    /// unless given), the defaults its first value. Strings of `attributes` are copied.
    Input(Operator& owner, const MxID& id, const TagList& attributes);
    ~Input() override;

    Operator& Owner() const { return owner_; }
    const MxID& GetID() const { return id_; }
    QString GetName() const; // IAS_Name, or the id
    /// With IA_Computed: its tool works it out whenever it is asked for (Operator::Compute), from
    /// the other inputs. It takes no value, no keys, no expression, and documents don't keep it.
    bool IsComputed() const { return computed_; }
    /// Whether its value may change with other inputs: by an expression, because it is computed, or
    /// because points of its shape are linked.
    bool DependsOnOthers() const;
    /// Whether its value may be another one at another time.
    bool Moves() const { return IsAnimated() || DependsOnOthers(); }
    MxID GetDataType() const { return dataType_; }
    /// Not with IA_ReadOnly, nor while the tool is locked; a lock keeps what the tool gives, so it
    /// leaves inputs with IA_Passive alone.
    bool IsChangeable() const;

    /// The value at `time` in frames; null only for a connected image input. A failing expression
    /// yields the last good value, and ExpressionError tells what is wrong. Inputs whose
    /// expressions refer to each other in a circle all fail.
    Ref<Parameter> GetValue(double time) const;
    /// The value from the keys or the plain value, as if there were no expression.
    Ref<Parameter> GetPlainValue(double time) const;
    double GetNumber(double time, double otherwise = 0.0) const;
    /// Clamped to IAD_Minimum and IAD_Maximum and made whole by IA_Integer.
    Ref<Parameter> Accepted(const Parameter& value) const;

    /// Writes a value (as Accepted). With keys, a key at `time` is set or changed (a new one of an
    /// input with IA_Stepped holds its value until the next); TimeNone or ReplaceAll drop keys and
    /// expression. Otherwise an expression stays and keeps ruling: what is written lies underneath
    /// and shows once the expression is removed. False also for another kind of value.
    bool SetValue(const Parameter& value, double time, unsigned flags = KeepKeys);
    Ref<Parameter> DefaultValue() const; // by IAD_Default and its kin
    bool SetDefault();                   // back to the default: keys and expression go

    bool IsAnimated() const { return !state_.animation.IsEmpty(); }
    const Animation& GetAnimation() const { return state_.animation; }
    bool SetAnimation(Animation animation);
    bool IsKeyAt(double time) const { return state_.animation.HasKeyAt(time); }
    /// Sets a key with the value at `time` (that of the expression, if there is one); the first one
    /// makes the input animated. False also without IA_Animatable and for images.
    bool AddKey(double time, std::optional<Interpolation> interpolation = {});
    /// Removing the last key leaves its value as the plain value.
    bool RemoveKey(double time);

    const std::string& GetExpression() const { return state_.expression; }
    bool HasExpression() const { return !state_.expression.empty(); }
    bool SetExpression(const std::string& expression); // empty removes it
    /// What is wrong with the expression at the time it was last evaluated; empty when it is fine.
    const QString& ExpressionError() const { return expressionError_; }

    bool IsImage() const; // an image or a mask: can be connected
    /// The tool whose output was connected to this input, or null. MarloxDoc::FeedOf also knows the
    /// tool that feeds an unconnected main input.
    Operator* GetSource() const;
    /// Null disconnects. False also for inputs that carry no image, a tool of another document, and
    /// where it would make a loop.
    bool Connect(Operator* source);

    const State& GetState() const { return state_; }
    enum Force { Ask, EvenIfLocked };
    /// Replaces everything, as one undo step. The caller has checked the values (Accepted).
    bool ChangeTo(State next, Force force = Ask);
    /// For undo and loading: replaces everything and tells listeners; records nothing.
    void RestoreInputState(const State& state);
    /// The tool of that name has another one now: a connection to it and points of shapes that
    /// follow its points keep with it. Records nothing.
    void RenameSource(const std::string& from, const std::string& to);

    // Controls showing this input; not owned. The list is changed under the write lock.
    void AddControl(Object* control);
    void RemoveControl(Object* control);
    const std::vector<Object*>& Controls() const { return controls_; } // under the read lock

    /// Tells listeners (event "ValueChanged") that the value at the current time may have changed.
    void NotifyValueChanged();

    // Object
    std::size_t SizeOf() const override { return sizeof(*this); }
    bool SetAttrsTagList(const TagList& tags) override; // event "AttrsChanged"
    bool CopyAttr(u64 tag, void* out) override;
    MarloxDoc* GetDoc() const override;

    const TagList& Attributes() const { return attributes_; }

private:
    class Step;

    bool Change(State next, const QString& text, Force force = Ask);
    void Assign(const State& state);
    bool Holds(const Parameter& value) const;
    void Announce(bool reconnected);
    std::optional<Interpolation> InterpolationOfKeySet(double time) const;
    Ref<Parameter> EvaluateExpression(double time) const;

    Operator& owner_;
    MxID id_;
    MxID dataType_;
    TagList attributes_;
    bool computed_ = false;
    State state_;
    mutable Ref<Parameter> lastGood_; // what the expression gave last; null: nothing yet
    mutable QString expressionError_;
    mutable bool looped_ = false; // the evaluation under way was asked for its own result
    std::vector<Object*> controls_;
};

} // namespace Marlox
