#pragma once

#include "system/base/LockableObject.h"
#include "system/base/MxColor.h"
#include "system/base/Registry.h"
#include "system/base/ScriptServices.h"
#include "system/controls/Layout.h"
#include "system/controls/Menu.h"
#include "system/controls/UndoGesture.h"
#include "system/document/Operator.h"

#include <memory>
#include <vector>

#include <QWidget>

class QLabel;

namespace Marlox {

class Container;
class ControlWnd;
class KeyFrameIndicator;
class MxLineEdit;
class TimeCodeEdit;

using InputList = std::vector<Input*>;

/// A host object and a Qt widget at once. (Qt's meta-object compiler wants the QObject first among
/// the bases of a class with slots, and the script casts want the host object there; this class has
/// no slots, so that those below it can.)
class MARLOXSYSTEM_EXPORT _InputControl : public Object, public QWidget {
public:
    using Reuser::operator new;
    using Reuser::operator delete;

protected:
    _InputControl() : QWidget(nullptr) {}
};

/// Base of all inspector controls: a widget that shows and edits one or more inputs of a tool.
///
/// Life cycle, driven by the host (ControlWnd): create through the class registry; AttachInput for
/// the main input; SetAttrsTagList(Input*, tags) and AddInput for each input; Open; GetMinSize,
/// GetMaxSize, SetSize; then NotifyChanged and UpdateDisplay for each new value, SetInputs from the
/// control for each edit; Close; RemoveInput and DetachInput; DecRef. The control is a child widget
/// of the window it was opened in from Open to Close, yet is deleted only by its last reference.
/// All calls on the user-interface thread.
class MARLOXSYSTEM_EXPORT InputControl : public _InputControl {
public:
    static const MxID ClassID;

    InputControl(const Registry* record, const ScriptVal& creator, const TagList& attributes);
    ~InputControl() override;

    const Registry* GetRegistry() const { return record_; }

    // Object
    std::size_t SizeOf() const override;
    bool SetAttrsTagList(const TagList& tags) override;
    bool CopyAttr(u64 tag, void* out) override;
    MarloxDoc* GetDoc() const override;
    /// Opens the control's undo group, as SetUndo does, with a text of its own.
    void StartUndo(const char* text) override;
    void EndUndo(bool keep) override; // as ResetUndo; false: what the group did is undone
    void AddToMenu(Menu* menu, TagList& tags) override;
    using _InputControl::HandleMenu;
    bool HandleMenu(unsigned int id, u64* data, TagList& tags) override;
    bool HandleEvent(Object* sender, const MxID& event, TagList& tags) override;
    using _InputControl::OnConnect;
    using _InputControl::OnDisconnect;

    // The operations of inspector controls, in slot order.
    /// A window message of the host's; 0: not handled.
    virtual u64 DefWindowProc(unsigned int message, u64 first, u64 second);
    /// Appends the inputs edited at a position (pixels, this widget).
    virtual void GetInputsAt(InputList& out, int x, int y, TagList* tags);
    /// Reads the creation tags for one input. False refuses the input.
    virtual bool SetAttrsTagList(Input* input, const TagList& tags);
    /// Builds the widgets inside `window` at `rect`. False: could not; the host closes the control.
    virtual bool Open(ControlWnd* window, MxRect& rect, TagList* tags);
    virtual void Close(TagList* tags);
    virtual bool GetMinSize(int& width, int& height, TagList* tags);
    virtual bool GetMaxSize(int& width, int& height, TagList* tags);
    virtual bool SetSize(int& width, int& height, TagList* tags);
    /// Binds an input of `owner` to the control: the one that `input` points to, or, when that is
    /// null, the one named by IAS_Name in `tags`, which `input` then receives. The last two
    /// arguments are reserved and 0.
    virtual bool AttachInput(Operator* owner, const TagList& tags, Input*& input, u64, u64);
    virtual bool DetachInput(Input*& input);
    virtual bool AddInput(Input* input, TagList* tags);
    virtual bool RemoveInput(Input* input, TagList* tags);
    /// Writes a value into the control's input whose attribute IA_ControlIndex is `index`, at
    /// `time`; then every control showing that input is notified and redisplayed, this one too.
    /// `final` tells that no further value of the same gesture follows. False: refused.
    virtual bool SetInputs(Parameter* value, double time, unsigned int index, bool final,
                           TagList* tags);
    /// Ends the undo group of a drag or of held keys; none open: does nothing.
    virtual void ResetUndo(TagList* tags);
    virtual void NotifyChanged(Input* input, Parameter* value, TagList* tags);
    virtual void UpdateDisplay(Input* input, TagList* tags);
    virtual void OnConnect(Input* input, TagList* tags);
    virtual void OnDisconnect(Input* input, TagList* tags);
    virtual bool HasFocus(TagList* tags);
    virtual Input* GetInputFrom(QWidget* widget, TagList* tags);
    /// Opens an undo group before a value change, named after the input with this index
    /// ("Adjust Gain"); already open: does nothing.
    virtual void SetUndo(unsigned int index, TagList* tags);
    virtual void AddExpressionEdit(Input* input, TagList* tags);
    virtual bool CreateExpressionEdit(int index, MxRect& rect, TagList* tags);
    virtual bool CreateExpressionEdit(int index, Container* container, TagList* tags);
    virtual void* GetExpressionData(int index, TagList* tags);
    virtual MxRect GetExpressionRect(int index, TagList* tags);
    virtual void ExpressionChanged(Input* input, TagList* tags);
    virtual bool AddModifierAt(const MxPointT<int>& at);
    virtual bool RemoveModifierAt(const MxPointT<int>& at);
    virtual bool AddExpressionAt(const MxPointT<int>& at);
    virtual bool RemoveExpressionAt(const MxPointT<int>& at);
public slots:
    virtual void OnOK();     // takes what is being typed in an expression line
    virtual void OnCancel(); // gives it up
    /// Bracket the drag of a TimeCodeEdit: proxy rendering on, one undo group; the end closes both
    /// and asks for a render at full resolution.
    virtual void OnEditStartDrag();
    virtual void OnEditEndDrag();

public:
    // Services that controls call.
    /// Builds this control's layout from a description; `stretch` lets the root take the control's
    /// whole rectangle (else it takes its minimum height). Null, with a message, if it is broken.
    LayoutObj* CreateLayout(const ScriptVal& layout, bool stretch, LayoutCallback callback,
                            void* context);
    /// The same from a ResData.
    LayoutObj* LoadLayout(const char* resourceName, bool stretch, LayoutCallback callback,
                          void* context);
    /// Takes the layout away again, with its expression lines, so that another one can be built.
    /// Widgets that stood in it stay, where they are.
    void RemoveLayout();
    /// The layout of a part that arranges its widgets by itself: FindLayoutObj looks there too, in
    /// the order of the calls, until RemoveLayout. Not owned; the part outlives that.
    void AddPartLayout(LayoutObj* layout);
    /// The same as the CreateExpressionEdit above for a place in the layout, which then costs
    /// nothing until the input has an expression. Controls that name no place get it in the layout
    /// object "expression" if that is a container, else below themselves.
    bool CreateExpressionEdit(int index, LayoutObj* place, TagList* tags);
    LayoutObj* FindLayoutObj(const MxID& name) const;
    static LayoutObj* FindLayoutObj(LayoutObj* root, const MxID& name);
    LayoutObj* GetLayout() const { return layout_; }
    void RecalcControlSize();
    /// Whether a new value differs from the shown one: whole numbers when they differ after
    /// rounding, others when by more than `tolerance`. NaN differs from every number.
    static bool HasValueChanged(bool integer, double value, double shown, double tolerance);
    /// Gives the input an expression that says its present value, to be edited in its line.
    bool AddExpression(Input* input);
    bool RemoveExpression(Input* input);
    /// A modifier is whatever else moves the value: keys or an upstream connection. Adding one sets
    /// the first key at the current time; removing leaves the present value as the plain value.
    bool AddModifier(Input* input);
    bool RemoveModifier(Input* input);
    /// Sets the expression of the input with this control index; an empty text removes it.
    void SetExpressions(unsigned int index, char* expression);
    /// Why an expression would give that input no value at the current time; empty: it would.
    QString ExpressionProblem(unsigned int index, const QString& expression) const;
    /// Reads IC_Disabled (and IA_ReadOnly when `ofInput`), applies them, and returns whether the
    /// control is disabled. Those of a locked tool are disabled besides, unless all inputs are
    /// passive.
    bool GetDisabledTags(const TagList& tags, bool ofInput);
    bool IsAllPassive(TagList* tags) const;
    /// The user chose how the control shows its inputs: sets that attribute of its main input,
    /// where controls made for the input later find it. Those that show it on other pages are told,
    /// and follow unless they keep what is on show, as one range of several. Documents do not keep
    /// it, and it works while the tool is locked. Without inputs the control has it alone.
    void ChooseView(u32 tag, TagValue value);
    MxColor GetBackgroundColor() const;

    /// Ids of a control's own menu entries start here; those below are the base's.
    static constexpr unsigned int FirstOwnMenuId = 0x4000;
    /// Fills the context menu: the base's entries for the inputs `only` (none: all of them; in
    /// submenus if there are several), then those of AddToMenu. HandleMenu runs an entry by its id.
    void BuildMenu(Menu& menu, const InputList& only = {});
    /// Closes the undo group and the proxy rendering of a gesture whose end got lost.
    void EndGesture();
    /// Tells the user something through the window's status line.
    void Report(const QString& text) const;
    /// Why the control could not be built as it should be; it then shows this line instead of its
    /// widgets. Empty: nothing wrong.
    const QString& Fault() const;

    // State that controls read.
    Operator* Owner() const { return owner_; }
    double CurrentTime() const;
    const InputList& Inputs() const { return inputs_.list; } // under InputsLock()'s read lock
    const LockableObject& InputsLock() const { return inputs_; }
    Input* FindInputByIndex(unsigned int index) const;
    /// Those that are on show, and that the keyframe button beside the control sets keys of: all,
    /// unless a control that shows some of its inputs at a time says which.
    const InputList& ShownInputs() const { return shown_.empty() ? inputs_.list : shown_; }
    void SetShownInputs(InputList inputs);
    bool IsOpen() const { return window_ != nullptr; }
    ControlWnd* Window() const { return window_; }
    bool TabStop() const { return tabStop_; }
    bool ControlDisabled() const { return disabled_; }
    /// Neither disabled nor of a locked tool, except with passive inputs alone.
    bool IsUsable() const { return usable_; }
    bool IsRowHidden() const; // IC_Hidden: takes no room (folded rows: ControlWnd::IsFolded)
    int UndoDepth() const { return undo_.IsOpen() ? 1 : 0; }

protected:
    /// Follows IsUsable. By default the widget is enabled or not; a control with parts that only
    /// choose what is shown can leave those be while its tool is locked.
    virtual void EnableEditing(bool usable);

    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void childEvent(QChildEvent* event) override;
    void customEvent(QEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void enterEvent(QEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    friend class ControlWnd;
    struct AttachedInputs : LockableObject {
        InputList list;
    };
    class Private;
    void Refresh(Input& input); // reads the value anew and passes it on
    void Describe(const Input& main);
    MxLineEdit* MakeExpressionLine(const Input& input);
    void ApplyEnabled();

    const Registry* record_;
    Operator* owner_ = nullptr;
    AttachedInputs inputs_;
    InputList shown_; // empty: all
    ControlWnd* window_ = nullptr;
    LayoutObj* layout_ = nullptr;
    bool tabStop_ = true;
    bool disabled_ = false;
    bool usable_ = true;
    UndoGesture undo_;
    std::unique_ptr<Private> d_;

    Q_OBJECT // last, for what it overrides must not come between the operations' slots
};

} // namespace Marlox
