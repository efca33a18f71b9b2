#pragma once

#include "controls/polyline/PolyEditor.h"
#include "controls/polyline/PolyGesture.h"
#include "controls/polyline/PolyNest.h"
#include "framework/SecondInput.h"

#include <array>
#include <memory>
#include <optional>

#include <Qt>

namespace Marlox {

class PolyKeyListDlg;
class PolyPointDlg;

/// The viewer overlay in which roto shapes and paths are drawn and edited: points are appended by
/// clicks or freehand, inserted, selected, moved, joined by handles; commands come from the context
/// menu, the toolbar and the keys (PolyActions). Registered as "PolylineControl", the spelling that
/// scenes and scripts know.
///
/// Its inputs hold polylines: IA_OverlayIndex 0 the main shape, which is the inner polygon of a
/// double one, 1 the outer polygon, which may also be the input that PLCID_InPolyLine2 names. A
/// point is hit when both its distances from the cursor, in pixels of the image, are smaller than
/// the view's pick radius divided by its zoom.
///
/// Further inputs are bound to it by a PLCID_ tag (id), a PLCP_ tag (pointer) or, of eight, a PLCD_
/// tag (place in the tool):
///   Center, Angle, Size    how the shape is moved, turned (degrees) and scaled for display and
///                          edits; Center is also the point that a path moves
///   CenterX, CenterY       numbers in place of Center's two
///   TrackerSize, TrackerSearchSize
///                          sides of patterns and search areas, image widths, read and written
///   InPolyLine2            the outer polygon
///   Displacement           how far along the shape its point is: marked there, and motion files
///                          go by it; CurrentTimePoint, another such number, is marked instead
///   AngleX, AngleY, AngleZ, CenterZ
///                          without effect: a placement in space, which a flat view has not
///
/// Positions are normalised image coordinates. Every edit is one undo entry with a fixed text. A
/// locked tool takes none, silently, and nothing that is stored with it; its actions tell why.
class PolyLineControl final : public PreviewControl {
public:
    PolyLineControl(const Registry* record, const ScriptVal& creator, const TagList& attributes);
    ~PolyLineControl() override;

    std::size_t SizeOf() const override;
    using PreviewControl::SetAttrsTagList;
    bool SetAttrsTagList(Input* input, const TagList& tags) override;
    u64 DoTagList(unsigned int command, TagList& tags) override;
    bool CopyAttr(u64 tag, void* out) override;
    bool DoInfo(unsigned int request, TagList& tags) override;
    void SetView(PreviewInfo* view, TagList* tags) override;
    void SetInactive(TagList* tags) override;
    bool AddInput(Input* input, TagList* tags) override;
    bool RemoveInput(Input* input, TagList* tags) override;
    void NotifyChanged(Input* input, Parameter* value, TagList* tags) override;
    void UpdateDisplay(Input* input, TagList* tags) override;
    /// What editing has set and no attribute tells: the active polygon, selections, display.
    bool SaveState(ScriptVal& state) const override;
    bool RestoreState(const ScriptVal& state) override;
    void CleanupState(ScriptVal& state) const override;
    void AddToMenu(Menu* menu, TagList& tags) override;
    using PreviewControl::HandleMenu;
    bool HandleMenu(unsigned int id, u64* data, TagList& tags) override;
    void GetAvailableEvents(std::vector<MxID>& out) const override;
    bool HandleEvent(Object* sender, const MxID& event, TagList& tags) override;
    bool ControlGetTip(PreviewInfo* view, char* tip, TagList* tags) override;
    void GLDrawControls(PreviewInfo* view, TagList* tags) override;
    DragType ControlDown(PreviewInfo* view, const MxPoint& at, TagList* tags) override;
    void ControlMove(PreviewInfo* view, const MxPoint& at, TagList* tags) override;
    void ControlUp(PreviewInfo* view, const MxPoint& at, TagList* tags) override;
    bool ControlCommand(PreviewInfo* view, const MxID& command, u64 data, TagList* tags) override;
    void EndUndo(bool keep) override;
    bool MarksHover() const override { return true; }

    // For the parts of this control.
    PolyEditor& Editor() { return editor_; }
    const PolyEditor& Editor() const { return editor_; }
    const PolySettings& Settings() const { return settings_; }
    /// Changes what is no attribute, and shows it.
    PolySettings& ChangeSettings();
    /// An undo entry of its own.
    void ChangeRoto(const char* text, const std::function<void(RotoAssistSettings& roto)>& change);
    /// Makes what has changed in the settings since `before` a step of the open undo entry.
    void KeepRotoChange(const char* text, const RotoAssistSettings& before);
    /// Sets an attribute through the overlay's and the input's tags. With the tool locked the
    /// input's stay: what shows changes in this view alone.
    void SetAttr(u32 tag, int64 value);
    PolyDrawMode Mode() const { return settings_.Mode(); }
    /// The other mode, if it is another: the toolbar and the input's attribute follow.
    void SetMode(PolyDrawMode mode);
    /// Insert and Modify, or Modify Only, as the preference PREF_PolyAfterCloseMode tells.
    static PolyDrawMode ModeAfterClose();
    /// The same as a part of an edit: undo brings the mode from before back.
    void ChangeModeUndoably(PolyDrawMode mode, const char* text);
    /// Whether the shape can be edited at all: not with the tool locked or the input driven.
    bool CanEdit() const { return IsShapeFree(InnerPolygon) || IsShapeFree(OuterPolygon); }
    ShapePlacement Placement() const { return PlacementAt(CurrentTime()); }
    ShapePlacement PlacementAt(double time) const;
    void TakeViewFocus(); // "Set Focus"
    const std::vector<PolyPoint>* PendingPoints() const { return pending_; }
    std::vector<PolyPoint>& ClickedPoints() { return clicked_; }
    ScriptVal SavedSelection() const; // and which polygon is active, as a part of SaveState
    void SelectionChanged();
    void ActivePolygonChanged();
    QWidget* Window() const;   // the view's, for dialogs that stay above it; null: none
    PolyKeyListDlg* KeyList(); // made when first needed; null without PLC_Animated
    QPointer<PolyPointDlg>& PointEditor() { return pointEditor_; }
    bool IsPointEditorOpen() const;
    Input* BoundInput(u32 idTag) const; // by a PLCID_ tag; null: none
    double HoveredTime() const { return hoveredTime_; }
    void SetHoveredTime(double time);
    /// Where the next click appends a point, the shape's coordinates; empty: nowhere.
    const std::optional<ShapePlace>& NextPlace() const { return nextPlace_; }
    double PressTime() const { return pressTime_; } // Platform::GetUpTime, seconds

    // Of patterns and search areas of track points, image widths: the bound inputs', or settings.
    double TrackerSize() const;
    double TrackerSearchSize() const;
    void SetTrackerSize(bool area, double size);

    // For the editor.
    Input* ShapeInput(int polygon) const;
    bool IsShapeFree(int polygon) const;
    bool WriteShape(int polygon, Input::State next);
    /// The active shape has other points now: its track points go with them.
    void CarryTrackPoints(const PolyLine& from, const PolyLine& to);
    const PolyGesture* Gesture() const { return gesture_.get(); } // under way; null: none
    /// Whether it has changed something already.
    bool IsPastFirstChange() const { return gesture_ && changed_; }
    // For gestures.
    void BeginGesture(const char* text);
    /// With PLC_StopRendering what the gesture changes is shown only and written by its release;
    /// whether it is so.
    bool HoldBack();

private:
    friend class SecondInput<PolyLineControl>;
    using Bound = SecondInput<PolyLineControl>;
    static constexpr std::size_t boundCount = 0x0f; // 0x0c is not used
    /// Turns to the other polygon's point where both coincide.
    static constexpr int switchKey = Qt::Key_Period;

    void ReadBoundInputs(const TagList& tags);
    void PressModeEvent() const;
    void ReadShapes();
    bool HitTest(PreviewInfo& view, const TagList* tags);
    void SetNextPlace(const std::optional<ShapePlace>& place);
    PolyPointer PointerOf(const PolyView& view, const TagList* tags) const;
    bool WantsKey(int key, u32 modifiers) const;
    bool HandleKey(int key, u32 modifiers);

    PolySettings settings_;
    PolyEditor editor_{*this};
    std::array<std::unique_ptr<Bound>, boundCount> bound_;
    std::shared_ptr<PolyGesture> gesture_; // shared with what it does: that may end it
    bool changed_ = false;                 // the gesture wrote
    double pressTime_ = 0.0;
    double penTime_ = 0.0; // of the press, as the view counts
    double hoveredTime_ = TimeNone;
    std::optional<ShapePlace> nextPlace_;
    std::vector<PolyPoint> clicked_;            // in this run of Click Append
    std::vector<PolyPoint>* pending_ = nullptr; // the points of the mode under way
    bool hasFocused_ = false;                   // took the view's focus for drawing
    bool hasMode_ = false;                      // a draw mode was told, or chosen by the shape
    QPointer<PolyKeyListDlg> keyList_;          // owned
    QPointer<PolyPointDlg> pointEditor_;        // owned
};

} // namespace Marlox
