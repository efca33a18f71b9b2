#pragma once

#include "system/base/LockableObject.h"
#include "system/base/Registry.h"
#include "system/controls/UndoGesture.h"
#include "system/document/Operator.h"
#include "system/viewer/PreviewInfo.h"

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

/// Base of all viewer overlays: drawn with OpenGL over the image, dragged by the user. It is no
/// widget; a viewer calls it with its PreviewInfo. All calls on the user-interface thread.
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
    void AddToMenu(Menu* menu, TagList& tags) override;
    /// "DisplayChanged": what the overlay draws is another now; a viewer listens to it.
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
    virtual bool RemoveInput(Input* input, TagList* tags);
    /// Writes into the input whose attribute IA_OverlayIndex is `index`, in an undo group of its
    /// own unless one is open. False: no such input, refused, or driven by an expression or
    /// connection.
    virtual bool SetInputs(Parameter* value, double time, unsigned int index, TagList* tags);
    /// A new value (null: a connected image), to be stored; then UpdateDisplay, to show it. A null
    /// input means all of them.
    virtual void NotifyChanged(Input* input, Parameter* value, TagList* tags);
    virtual void UpdateDisplay(Input* input, TagList* tags);
    virtual void OnConnect(Input* input, TagList* tags);
    virtual void OnDisconnect(Input* input, TagList* tags);
    virtual void SetActive(int how, TagList* tags);
    virtual void SetInactive(TagList* tags);
    /// With the view's GL context current, one unit a view pixel.
    virtual void GLDrawControls(PreviewInfo* view, TagList* tags);
    // Presses, moves and releases at a position in view pixels. The press answers how it takes
    // hold.
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
    const std::vector<Input*>& Inputs() const { return inputs_; }
    Input* FindInputByIndex(unsigned int index) const;
    bool IsActive() const { return active_; }

protected:
    DragType dragState_ = DragType::None;
    PreviewInfo* view_ = nullptr; // the view it is shown in; not owned

private:
    const Registry* record_;
    Ref<Operator> owner_;
    void Refresh(Input& input);
    void TimeChanged();

    std::vector<Input*> inputs_;
    std::vector<bool> connected_; // for each input, as the overlay was last told
    TagList attributes_;
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
