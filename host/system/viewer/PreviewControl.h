#pragma once

#include "system/base/LockableObject.h"
#include "system/base/Registry.h"
#include "system/controls/UndoGesture.h"
#include "system/document/Operator.h"
#include "system/viewer/OverlayCommands.h"
#include "system/viewer/PreviewInfo.h"

#include <array>
#include <vector>

namespace Marlox {

/// How a press takes hold of an overlay; also the drag state that the base keeps.
enum class DragType {
    None = 0,   // idle; as an answer: not hit
    Driven = 1, // driven by another control or by follow mode
    Dragged = 2,
};

// Arguments of PreviewControl::DoTagList, besides IA_OverlayIndex.
inline constexpr u32 PV_Value = 0x40040000; // a Parameter
inline constexpr u32 PVD_Time = 0x20040009; // in frames; the current time unless given
inline constexpr u32 PV_Final = 0x10048004; // no further value of the same gesture follows

/// What rules the values of an overlay, for its colour.
enum class OverlayCondition { Plain, Animated, Keyed, Expression, Locked };

/// Base of all viewer overlays: drawn with OpenGL over the image, dragged by the user. It is no
/// widget; a viewer calls it with its PreviewInfo. All calls on the user-interface thread.
///
/// What an overlay writes between a press and its release, or while keys are held, is one undo
/// entry, begun by the first change.
class MARLOXSYSTEM_EXPORT PreviewControl : public Object {
public:
    static const MxID ClassID;

    /// Commands of DoTagList.
    enum Command : unsigned int {
        Redisplay = 1,  // UpdateDisplay for all inputs
        WriteValue = 2, // SetInputs with PV_Value, IA_OverlayIndex, PVD_Time
        OpenUndo = 3,   // SetUndo with IA_OverlayIndex
        CloseUndo = 4,  // ResetUndo
    };

    /// Requests of DoInfo.
    enum Info : unsigned int {
        InfoToolbarEvent = 1, // describe the button of TB_Event; see ToolbarEvents.h
    };

    PreviewControl(const Registry* record, const ScriptVal& creator, const TagList& attributes);
    ~PreviewControl() override;

    const Registry* GetRegistry() const { return record_; }

    // Object
    std::size_t SizeOf() const override;
    bool SetAttrsTagList(const TagList& tags) override;
    bool CopyAttr(u64 tag, void* out) override;
    MarloxDoc* GetDoc() const override;
    /// Runs a command that every overlay understands (see Command); 0: unknown or refused.
    u64 DoTagList(unsigned int command, TagList& tags) override;
    /// Opens the undo group of the drag under this name instead of the input's; the drag's end, or
    /// EndUndo, closes it.
    void StartUndo(const char* text) override;
    void EndUndo(bool keep) override; // false: what the group did is undone
    /// The context menu for what is under the logical cursor or, with TB_Event in the tags, what
    /// that button of the toolbar opens.
    void AddToMenu(Menu* menu, TagList& tags) override;
    /// "DisplayChanged": what the overlay draws is another now; a viewer listens to it.
    /// "ValueWritten": SetInputs wrote; PV_Value, PVD_Time, IA_OverlayIndex and PV_Final tell what.
    void GetAvailableEvents(std::vector<MxID>& out) const override;
    bool HandleEvent(Object* sender, const MxID& event, TagList& tags) override;
    using Object::OnConnect;
    using Object::OnDisconnect;

    // The operations of overlays, in slot order.
    virtual void SetView(PreviewInfo* view, TagList* tags);
    virtual Operator* GetOperator(TagList* tags);
    virtual bool SetAttrsTagList(Input* input, const TagList& tags);
    /// Binds an input: from then on its changes, also those that come with the time, arrive as
    /// NotifyChanged and UpdateDisplay. False refuses it.
    virtual bool AddInput(Input* input, TagList* tags);
    /// Forgets an input, also one it only listens to. False: it was none.
    virtual bool RemoveInput(Input* input, TagList* tags);
    /// Writes into the input whose attribute IA_OverlayIndex is `index`, in an undo group of its
    /// own unless one is open. False: no such input, not free (IsFree), or a value it refuses.
    virtual bool SetInputs(Parameter* value, double time, unsigned int index, TagList* tags);
    /// A new value (null: a connected image), to be stored; then UpdateDisplay, to show it. The
    /// base is told only of values that change what is shown: without that, UpdateDisplay for an
    /// input asks for no redraw. UpdateDisplay for null always does.
    virtual void NotifyChanged(Input* input, Parameter* value, TagList* tags);
    virtual void UpdateDisplay(Input* input, TagList* tags);
    virtual void OnConnect(Input* input, TagList* tags);
    virtual void OnDisconnect(Input* input, TagList* tags);
    virtual void SetActive(int how, TagList* tags);
    virtual void SetInactive(TagList* tags);
    /// With the view's GL context current, one unit a view pixel, and its painter. The base draws
    /// the motion path of an animated point.
    virtual void GLDrawControls(PreviewInfo* view, TagList* tags);
    // Presses, moves and releases at a position in view pixels; the view's logical cursor is the
    // same in image coordinates. The press answers how it takes hold, which the base keeps. With
    // another overlay in the view's hit, that one has taken it, and this is for being driven.
    virtual DragType ControlDown(PreviewInfo* view, const MxPointT<int>& at, TagList* tags);
    virtual void ControlMove(PreviewInfo* view, const MxPointT<int>& at, TagList* tags);
    virtual void ControlUp(PreviewInfo* view, const MxPointT<int>& at, TagList* tags);
    virtual bool ControlCommand(PreviewInfo* view, const MxID& command, u64 data, TagList* tags);
    /// Writes a tip (at most 256 bytes with the final zero) for the position under the cursor.
    virtual bool ControlGetTip(PreviewInfo* view, char* tip, TagList* tags);
    virtual void ResetUndo(TagList* tags);
    /// Opens an undo group "Adjust <input name>"; already open: does nothing.
    virtual void SetUndo(unsigned int index, TagList* tags);
    /// Writes at most `size` bytes with the final zero, cut between characters: the name of the
    /// first input, resp. "<tool>.<input>" (a null input: the first). False: no input, or no room.
    virtual bool GetName(char* name, int size, TagList* tags);
    virtual bool GetFullName(char* name, int size, Input* input, TagList* tags);

    /// Binds the overlay to a tool, which it keeps alive, before its inputs are added.
    void SetOperator(Operator* owner);
    double CurrentTime() const;
    /// That it is shown in; not owned. Null: none.
    PreviewInfo* View() const { return view_; }
    const std::vector<Input*>& Inputs() const { return inputs_; }
    Input* FindInputByIndex(unsigned int index) const;
    bool IsActive() const { return active_; }
    DragType DragState() const { return dragState_; }
    /// Reads all inputs anew, as after a change of each.
    void ReadInputs();
    OverlayCondition Condition() const;
    /// Whether a drag could change anything: false with the tool locked, or all inputs read-only or
    /// driven by expressions and connections.
    bool IsEditable() const;
    /// Whether it shows by itself what the pointer is on. For one that does not, the view does: by
    /// its normal colour.
    virtual bool MarksHover() const { return true; }
    /// Whether the base offset displaces it, and with it its motion path.
    virtual bool IsDisplaced() const { return true; }
    // The base offset, image coordinates: by PCD_BaseOffsetX and Y, or the point of the input that
    // IAS_OverlayOffset of the first input names, less the image's centre.
    double BaseOffsetX() const { return baseOffset_[0]; }
    double BaseOffsetY() const { return baseOffset_[1]; }

protected:
    /// The input that the base offset comes from; null: none. Its changes are the base's.
    Input* BaseInput() const { return baseInput_; }
    /// From then on changes of the input, which is not the overlay's own, arrive as NotifyChanged,
    /// its present value at once. As often as Listen was called, StopListening must be.
    void Listen(Input* input);
    void StopListening(Input* input);
    /// Whether SetInputs can write it: neither read-only nor driven by an expression or a
    /// connection. Null: no.
    bool IsFree(const Input* input) const;
    /// What the overlay was told by itself of an attribute outranks the input's no more.
    void FollowInputAttr(u32 tag) { laterChanges_.Remove(tag); }
    bool IsFollowing() const { return following_; }          // PC_Follow
    bool HidesWhileDragging() const { return hidesInDrag_; } // PC_HideWhileDragging

    DragType dragState_ = DragType::None;
    bool axisX_ = false; // the drag moves along the axis
    bool axisY_ = false;
    PreviewInfo* view_ = nullptr; // the view it is shown in; not owned

private:
    /// What the overlay was last told of an input of its own.
    struct Told {
        bool connected = false;
        OverlayCondition condition = OverlayCondition::Plain;
    };
    struct Listened {
        Ref<Operator> owner; // kept alive with its inputs
        Input* input;
    };
    void Refresh(Input& input);
    void TimeChanged();
    bool IsOwn(const Input* input) const;
    bool IsHeard(const Input* input) const;
    bool HasGesture() const;
    void ReadBaseTags(const TagList& tags);
    void AttachBaseInput(Input& main);
    OverlayCondition ConditionOf(const Input& input) const;

    const Registry* record_;
    Ref<Operator> owner_;
    std::vector<Input*> inputs_;
    std::vector<Told> told_; // for each input
    std::vector<Listened> listened_;
    Input* baseInput_ = nullptr;
    std::array<double, 2> baseOffset_{};
    bool following_ = false;
    bool hidesInDrag_ = false;
    bool changed_ = false; // the base was told of something that is not redrawn yet
    TagList attributes_;
    TagList laterChanges_; // that were set after it was made: they outrank the inputs' attributes
    bool active_ = false;
    UndoGesture undo_;
    QMetaObject::Connection timeChanges_;
};

/// Overlay that shows a value at a fixed place of the view rather than of the image.
class MARLOXSYSTEM_EXPORT OverlayControl : public PreviewControl {
public:
    static const MxID ClassID;
    using PreviewControl::PreviewControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
