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

/// One input of a tool: an animatable parameter slot. Its value at a time comes, in this order, from
/// an upstream connection, an expression, the keys, or the plain value. It belongs to its tool and
/// knows the controls that show it. User-interface thread, except for the list of controls, which is
/// read under the read lock.
class MARLOXSYSTEM_EXPORT Input final : public Object, public LockableObject {
public:
    /// Everything about an input that undo restores and documents store.
    struct State {
        Ref<Parameter> value;
        Animation animation;
        std::string expression; // empty: none
        std::string source;     // name of the upstream tool; empty: not connected

        friend bool operator==(const State&, const State&);
    };

    /// Flags of SetValue.
    enum SetFlag : unsigned {
        KeepKeys = 0,   // with keys, set one at the time
        ReplaceAll = 1, // drop keys and expression: a plain number from now on
    };

    /// Made by Operator::AddInput. The attribute IAS_DataType picks the parameter kind (Number unless
    /// given), the defaults its first value. Strings of `attributes` are copied.
    Input(Operator& owner, const MxID& id, const TagList& attributes);
    ~Input() override;

    Operator& Owner() const { return owner_; }
    const MxID& GetID() const { return id_; }
    QString GetName() const; // IAS_Name, or the id
    MxID GetDataType() const { return dataType_; }

    /// The value at `time` in frames; null only for a connected image input. A failing expression
    /// yields the last good value, and ExpressionError tells what is wrong.
    Ref<Parameter> GetValue(double time) const;
    double GetNumber(double time, double otherwise = 0.0) const;
    /// Clamped to IAD_Minimum and IAD_Maximum and made whole by IA_Integer.
    Ref<Parameter> Accepted(const Parameter& value) const;

    /// Writes a value: an undo step of the document if it differs, then listeners are told. With
    /// keys, a key at `time` is set or changed. False: wrong kind, read-only, or the tool is locked.
    bool SetValue(const Parameter& value, double time, unsigned flags = KeepKeys);
    bool SetDefault(); // back to the default: keys and expression go

    bool IsAnimated() const { return !state_.animation.IsEmpty(); }
    const Animation& GetAnimation() const { return state_.animation; }
    bool SetAnimation(Animation animation);
    bool IsKeyAt(double time) const { return state_.animation.HasKeyAt(time); }
    /// Sets a key with the present value; the first one makes the input animated.
    bool AddKey(double time, std::optional<Interpolation> interpolation = {});
    /// Removing the last key leaves its value as the plain value.
    bool RemoveKey(double time);

    const std::string& GetExpression() const { return state_.expression; }
    bool HasExpression() const { return !state_.expression.empty(); }
    bool SetExpression(const std::string& expression); // empty removes it
    /// What is wrong with the expression at the time it was last evaluated; empty when it is fine.
    const QString& ExpressionError() const { return expressionError_; }

    /// The tool whose output feeds this input, or null.
    Operator* GetSource() const;
    bool Connect(Operator* source); // null disconnects; false would make a loop

    const State& GetState() const { return state_; }
    /// For undo and loading: replaces everything and tells listeners; records nothing.
    void RestoreInputState(const State& state);

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
    bool Change(const State& next);

    Operator& owner_;
    MxID id_;
    MxID dataType_;
    TagList attributes_;
    State state_;
    mutable Ref<Parameter> lastGood_;
    mutable QString expressionError_;
    std::vector<Object*> controls_;
};

} // namespace Marlox
