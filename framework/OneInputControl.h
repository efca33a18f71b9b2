#pragma once

#include "system/controls/InputControl.h"

namespace Marlox {

/// Base of the inspector controls that stand for one input, most of them showing and editing its
/// value. Further inputs that join the control are kept, yet the first is what it shows.
///
/// A subclass makes its widgets as children named after their places in the layout, reads its tags
/// in ReadTags (and calls that in its constructor, with CreationTags), shows what it is told in
/// Show, and hands what the user chose to Write.
class OneInputControl : public InputControl {
public:
    OneInputControl(const Registry* record, const ScriptVal& creator, const TagList& attributes);

    /// Null without an input.
    Input* ShownInput() const { return Inputs().empty() ? nullptr : Inputs().front(); }
    const Ref<Parameter>& ShownValue() const { return value_; }

    bool SetAttrsTagList(const TagList& tags) override;
    bool SetAttrsTagList(Input* input, const TagList& tags) override;
    bool Open(ControlWnd* window, MxRect& rect, TagList* tags) override;
    bool AddInput(Input* input, TagList* tags) override;
    bool RemoveInput(Input* input, TagList* tags) override;
    void NotifyChanged(Input* input, Parameter* value, TagList* tags) override;
    void UpdateDisplay(Input* input, TagList* tags) override;
    using InputControl::OnDisconnect;
    void OnDisconnect(Input* input, TagList* tags) override;

protected:
    /// Whether the value of this input is of a kind that the control edits; others are refused.
    virtual bool Takes(const Input&) const { return true; }
    virtual const char* LayoutName() const = 0;
    /// Reads the creation tags, which the input's attributes replace where they give the same.
    virtual void ReadTags(const TagList& tags) = 0;
    /// Shows the name, the value and the state of the input in the widgets. Not called where the
    /// layout has a fault: there are no places for them.
    virtual void Show() = 0;

    /// Tags that the control was made with, and those set since while it had no input.
    const TagList& CreationTags() const { return creation_; }
    QString InputName() const;
    /// Writes a value that the user chose at the current time, as an undo entry of its own, or
    /// within `gesture` as part of that; then shows what came of it.
    void Write(const Ref<Parameter>& value, bool gesture);

    /// What moves the value, at the current time, as the rows of the inspector tell it.
    enum class Motion { None, Animated, Keyed, Expression };
    Motion InputMotion() const;
    /// Of a line or frame that tells the motion; invalid for none.
    QColor ColorOf(Motion motion) const;
    /// IA_ControlIndex of the input shown; 0 without one.
    unsigned int Index() const;

private:
    TagList creation_;
    Ref<Parameter> value_;
};

} // namespace Marlox
