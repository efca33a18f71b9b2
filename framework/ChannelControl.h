#pragma once

#include "system/controls/InputControl.h"
#include "system/document/BulkChange.h"
#include "widgets/SliderSettings.h"

#include <optional>
#include <span>
#include <vector>

namespace Marlox {

class ElideLabel;

/// Base of the inspector controls that edit several Number inputs together, such as the components
/// of a colour. Each input has a slot, which the subclass tells from its channel; inputs without a
/// slot are kept but neither shown nor written.
///
/// A subclass makes its widgets as children named after their places in the layout, attaches an
/// edit to each slot that has one (an edit may be given to another slot later), shows what it is
/// told in Show, and hands what the user did to Write. Typing, expressions typed, drags of edits,
/// expression lines, lost connections and locks are dealt with here.
class ChannelControl : public InputControl {
    Q_OBJECT
public:
    ~ChannelControl() override;

    int SlotCount() const { return int(slots_.size()); }
    Input* InputOf(int slot) const; // null: none is attached
    double ValueOf(int slot) const; // as last told; 0 without an input
    const SliderSettings& SettingsOf(int slot) const { return slots_[std::size_t(slot)].settings; }
    /// Whether the user can set it: attached, of a usable control, changeable, not excepted from
    /// editing (IC_EditDisabled), and neither connected nor following an expression.
    bool IsEditable(int slot) const;

    bool SetAttrsTagList(const TagList& tags) override;
    bool SetAttrsTagList(Input* input, const TagList& tags) override;
    bool Open(ControlWnd* window, MxRect& rect, TagList* tags) override;
    void Close(TagList* tags) override;
    bool AddInput(Input* input, TagList* tags) override;
    bool RemoveInput(Input* input, TagList* tags) override;
    void NotifyChanged(Input* input, Parameter* value, TagList* tags) override;
    void UpdateDisplay(Input* input, TagList* tags) override;
    using InputControl::OnDisconnect;
    void OnDisconnect(Input* input, TagList* tags) override;
    /// The input that is edited there, or all of them where none is by itself.
    void GetInputsAt(InputList& out, int x, int y, TagList* tags) override;
    Input* GetInputFrom(QWidget* widget, TagList* tags) override;
    /// The input with a slot whose IA_ControlIndex this is; null: none.
    Input* GetInputFrom(u64 identifier) const;

public slots:
    /// Takes what stands in all edits, as one undo entry, then what the base takes.
    void OnOK() override;
    /// An edit has another number: takes those that stand in the edits.
    virtual void ValueChanged();

protected:
    /// `count`: of slots.
    ChannelControl(const Registry* record, const ScriptVal& creator, const TagList& attributes,
                   int count);

    virtual int SlotOf(const Input& input) const = 0; // outside the slots: it has none
    virtual const char* LayoutName() const = 0;
    /// Reads the control's own tags; the attributes of its first input win over those it was made
    /// with.
    virtual void ReadTags(const TagList&) {}
    /// The layout stands: puts in what it has no widgets for.
    virtual void Populate() {}
    /// The layout goes: takes out what Populate put in, which its containers would delete.
    virtual void Depopulate() {}
    /// Shows values and states. Not called where the layout has a fault, nor while Writing.
    virtual void Show() = 0;
    /// The same where only this slot's value or state is another one.
    virtual void ShowSlot(int) { Show(); }
    /// Name of the layout object where a slot's expression line goes; null: it has none.
    virtual const char* ExpressionPlace(int) const { return nullptr; }
    /// The limits that a slot has besides those of its input.
    virtual SliderSettings::Range LimitsOf(int) const
    {
        return {-SliderSettings::unbounded, SliderSettings::unbounded};
    }
    /// What an edit shows for each 1 of the slot's value.
    virtual double ShownScale(int) const { return 1.0; }
    /// Opens the undo entry of typed values, the first of them for this slot.
    virtual void StartTypedUndo(int slot);
    /// The slot that a widget of the control edits, besides the edits; negative: none.
    virtual int SlotAt(const QWidget*) const { return -1; }
    /// A direct child that chooses what is shown: it works while the tool is locked.
    virtual bool IsViewPart(const QWidget*) const { return false; }

    const TagList& CreationTags() const { return creation_; }
    /// What the names of these inputs begin with alike, in whole words; empty: nothing.
    static QString CommonName(const InputList& inputs);
    /// Builds the layout anew, from LayoutName as it is now.
    void Rebuild();
    unsigned int IndexOf(int slot) const; // IA_ControlIndex of its input; 0 without one
    /// Has `edit` edit a slot (negative: none), from the slot's settings.
    void AttachEdit(TimeCodeEdit& edit, int slot);
    void DetachEdit(TimeCodeEdit& edit);
    /// The edits are to show something else: takes what is typed in any, as Enter does, and ends
    /// their drags. Whoever listens may close the page.
    void CommitEdits();
    /// Shows the values in the attached edits, in the expression colour where one rules.
    void ShowEdits();
    void ShowEditsOf(int slot);
    /// Writes a value at the current time if it differs from the present one by more than half of
    /// the slot's comparison step. Within an open undo group it becomes part of that.
    bool Write(int slot, double value);
    /// Writes the defaults of those that can be set, as one undo entry.
    void WriteDefaults(std::span<const int> which, const QString& undoText);
    /// While one lives, UpdateDisplay does nothing: several values are being written. Other
    /// controls of several numbers see them all at once.
    class Writing {
    public:
        explicit Writing(ChannelControl& control);
        ~Writing();
        Writing(const Writing&) = delete;
        Writing& operator=(const Writing&) = delete;

    private:
        Ref<ChannelControl> control_; // a write may close the page
        std::optional<BulkChange> together_;
    };
    bool IsWriting() const { return writing_ > 0; }

    void EnableEditing(bool usable) override;
    void childEvent(QChildEvent* event) override;

private:
    struct Slot {
        Input* input = nullptr;
        double value = 0.0;
        SliderSettings settings;
    };
    struct Edit {
        TimeCodeEdit* edit;
        int slot;
        double shown = 0.0; // as it was last told; another number is the user's
    };
    bool HasSlot(int slot) const { return slot >= 0 && slot < SlotCount(); }
    int SlotHolding(const Input* input) const;
    int SlotUnder(const QWidget* widget) const;
    bool Build();
    void ApplySettings(const Edit& edit);
    void ShowEdit(Edit& edit);
    void RestoreFocus(const QString& name);
    bool TakeExpression(const Edit& edit);
    void TakeUp(int slot);
    void TakeNumbers();

    TagList creation_; // what the control was made from; its inputs' attributes win over it
    std::vector<Slot> slots_;
    std::vector<Edit> edits_;
    int writing_ = 0;
    bool onlyViewed_ = false; // the tool is locked: all but view parts and windows is disabled
};

} // namespace Marlox
