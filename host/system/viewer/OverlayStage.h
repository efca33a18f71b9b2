#pragma once

#include "system/controls/ProxyGesture.h"
#include "system/viewer/PreviewControl.h"

#include <array>
#include <memory>
#include <optional>
#include <unordered_set>
#include <vector>

#include <QObject>
#include <QString>

class QUndoCommand;

namespace Marlox {

class MarloxDoc;
class Menu;
class Operator;
class OverlayPainter;

/// The overlays of one view: makes them from the inputs' attributes (IAS_Overlay, IAS_OverlayWith),
/// shows those of the tool in question and those that ask to stay (IA_OverlayStays), and passes on
/// what the user does. It knows no widget: a viewer translates its events, keeps View() up to date
/// and lets it draw. Positions are view pixels, y upwards: the viewer turns them over once.
///
/// Picking asks the overlays: the one with the keyboard focus first, then in the order of the
/// inputs, the tool's own before those that stay. They are drawn in the reverse order. One overlay
/// takes a press; others may let themselves be driven by it. A second click at the same place gives
/// the focus to the next overlay there, so that a mark below another can be dragged. A drag renders
/// at proxy resolution from the first move on and asks for a render at full resolution when it is
/// over. Overlays that can't be changed show so, and take a press without doing anything. The one
/// that has the focus is asked first, so an overlay that draws takes presses anywhere by answering
/// CCMD_HitTest or ControlDown so.
///
/// Whatever ends a drag without its release (the tool goes, the view is hidden, the library is
/// unloaded) must call EndDrag, or happens through this class, which does: no undo group stays
/// open.
class MARLOXSYSTEM_EXPORT OverlayStage : public QObject {
    Q_OBJECT
public:
    explicit OverlayStage(MarloxDoc& document, QObject* parent = nullptr);
    ~OverlayStage() override;

    /// The tool whose overlays show; null: none. Its overlays are the active ones.
    void SetOperator(Operator* tool);
    Operator* GetOperator() const;
    /// In picking order, without regard to the focus.
    std::vector<PreviewControl*> Overlays() const;
    PreviewControl* OverlayOf(const Input& input) const;

    /// The context of the view. The viewer writes the placement and the sizes.
    PreviewInfo& View() { return view_; }
    const PreviewInfo& View() const { return view_; }
    /// Hidden overlays are neither drawn nor picked; a drag ends.
    void SetShown(bool shown);
    bool IsShown() const { return view_.drawMode != DrawHidden; }

    // The pointer; `modifiers` of KeyModifier, `more`: PV_DoubleClick and what a pen tells.
    /// True: an overlay took the press (the release must follow).
    bool Press(const MxPoint& at, u32 modifiers, const TagList& more = TagList());
    void Move(const MxPoint& at, u32 modifiers, const TagList& more = TagList());
    void Release(const MxPoint& at, u32 modifiers, const TagList& more = TagList());
    void Leave(); // the pointer left the view
    /// The image lies elsewhere below the pointer.
    void PlacementChanged();
    bool IsPressed() const; // between a press that was taken and its release
    bool IsDragging() const { return dragged_.Get() != nullptr; }
    /// Ends a drag where it is, as a release would.
    void EndDrag();
    /// Gives up a drag: values are as they were, without an undo entry.
    void CancelDrag();

    // Keys, with the code of Qt::Key.
    bool KeyDown(int key, u32 modifiers); // false: not used
    /// Whether an overlay uses this key, also where it is a shortcut elsewhere: the one with the
    /// focus, or else the one whose toolbar shows, which gets the focus with the key.
    bool WantsKey(int key, u32 modifiers);
    void KeyUpAll();
    /// The overlay that keys go to: the one pressed last, or chosen by FocusNext; null: none.
    PreviewControl* Focus() const { return focus_; }
    void SetFocus(PreviewControl* overlay);
    /// Whether arrow keys move what has the focus: a point that can be changed.
    bool NudgesFocus() const;
    /// To the next overlay, or the one before; false: there is no further one. Not in a drag.
    bool FocusNext(bool forward);

    // Buttons (ToolbarEvents.h) and menus. Each ends a drag first.
    /// The overlay whose toolbar shows: the one with the focus, or else the first of the tool's,
    /// that has buttons; null: none.
    PreviewControl* ToolbarOwner() const;
    /// False: its toolbar has no such button, or not now.
    bool ClickButton(u32 event);
    /// The context menu of the overlay under the pointer or else of ToolbarOwner(); with an event,
    /// what that button opens. False: nothing.
    bool FillMenu(Menu& menu, u32 event = 0);
    /// Runs an entry of the menu that was filled last. False: its overlay is gone, or refuses.
    bool RunMenu(unsigned int id);

    /// What the overlay under the pointer says of itself, and what others are there; empty:
    /// nothing.
    QString Tip();
    void Draw(OverlayPainter& painter);

    /// Before a library with control classes is unloaded: every stage lets go of its overlays at
    /// once, and makes them anew, from what is registered then, when ReopenAll is called.
    static void ReleaseAll();
    static void ReopenAll();

signals:
    void Changed();       // to be drawn again
    void CursorChanged(); // View().cursorShape
    void OverlaysChanged();
    void ToolbarChanged(); // another owner, or a button that is pressed now
    void KeyboardWanted(); // an overlay takes the keys: the view is to have the keyboard focus
    /// As ControlWnd::ValueWritten, for what overlays write.
    void ValueWritten(Marlox::Input* input, Marlox::Parameter* value, double time, bool final);

private:
    class Listener;
    class Services;
    /// What the attributes of the inputs ask for.
    struct Request {
        std::vector<Input*> inputs; // the main one, and those that join it
        Input* offset;              // by IAS_OverlayOffset; null: none

        friend bool operator==(const Request&, const Request&) = default;
    };
    struct Entry {
        Ref<PreviewControl> overlay;
        Input* main; // whose IAS_Overlay asked for it
        Request request;
    };
    void RebuildSoon();
    void Rebuild();
    void Hear(const Operator& tool);
    static Request RequestOf(Input& main);
    std::vector<Input*> WantedInputs() const;
    Ref<PreviewControl> MakeOverlay(const Request& request);
    void Discard(const Entry& entry);
    void KeepState(const Entry& entry);
    void BringStateBack(PreviewControl& overlay);
    void LetGo(Operator& tool);
    void LetGo(Input& input);
    std::vector<PreviewControl*> PickOrder() const;
    std::vector<PreviewControl*> UnderPointer();
    bool IsNear(const MxPoint& at, const MxPoint& other) const;
    void EndClick(const MxPoint& at);
    void TestHover();
    TagList PointerTags(const TagList& more) const;
    bool IsShownHere(const PreviewControl& overlay) const;
    PreviewControl* KeyTarget(int key) const;
    const QUndoCommand* LastEntry() const;
    Input* InputAt(PreviewControl& overlay);
    PreviewControl* Grab(TagList& tags);
    void OfferTo(PreviewControl& other, TagList& tags);
    void StartProxy();
    void FinishDrag(bool keep);
    void PlaceCursor(const MxPoint& at);
    std::array<double, 4> Placement() const;
    void ReadColors();
    MxColor NormalColor(const PreviewControl& overlay) const;
    void SetCursor(ViewCursor shape);
    void StepFade();

    MarloxDoc& document_;
    Ref<Operator> tool_;
    std::vector<Entry> entries_;
    /// What overlays had set when they went out of sight, for when their tool is selected again.
    struct Kept {
        Ref<Operator> owner; // keeps the input
        Input* main;
        MxID overlay; // class id
        ScriptVal state;
    };
    std::vector<Kept> kept_;
    Ref<Listener> listener_;
    std::unordered_set<const Input*> heard_; // have it as their listener
    std::unique_ptr<Services> services_;
    PreviewInfo view_;
    std::array<MxColor, 6> normalColors_; // by OverlayCondition; then that of the focus
    PreviewControl* focus_ = nullptr;
    bool focusShows_ = false; // it was moved by keys
    Ref<PreviewControl> dragged_;
    bool pressed_ = false;
    bool pointerInside_ = false;
    bool released_ = false; // by ReleaseAll
    ProxyGesture proxy_;
    MxPoint at_; // of the pointer
    MxPoint pressedAt_;
    bool moved_ = false;                  // since the press
    TagList pointer_;                     // what came with the last move or release
    const QUndoCommand* entry_ = nullptr; // the last in the history when the press came
    std::array<double, 4> placement_{};   // of the image in the view, when it was looked at last
    bool replaced_ = false;               // the image moved below a drag
    bool rebuilds_ = false;               // at the next turn of the event loop
    std::optional<MxPoint> clickedAt_;    // the last press and release, until the pointer goes away
    u32 modifiers_ = 0;
    ViewCursor cursor_ = ViewCursor::Arrow; // as told last
    bool fades_ = false;                    // a step of fading is on its way
    Ref<PreviewControl> menuOwner_;         // of the menu that was filled last
    u32 menuEvent_ = 0;                     // the button that opened it; 0: none
};

} // namespace Marlox
