#pragma once

#include "controls/polyline/PolyHit.h"
#include "controls/polyline/PolySettings.h"
#include "controls/polyline/PolyView.h"
#include "system/shapes/PolyLine.h"
#include "system/shapes/ShapeDrawing.h"
#include "system/shapes/ShapeIndex.h"
#include "system/values/Input.h"

#include <array>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>

namespace Marlox {

class PolyLineControl;

/// What a polyline overlay edits: the shapes of its inputs as they are at the current time, which
/// polygon is the active one, which points are selected, and the ways to change them. Every change
/// goes through Change or Write, and stands within an undo group of the control.
class PolyEditor {
public:
    /// Which shapes a change is made to.
    enum class Scope {
        Frames, // the one at the current time, and the keys that multi-frame editing tells
        Keys,   // all of them: changes of which points there are
    };
    using ShapeChange = std::function<void(PolyLine& shape)>;
    using States = std::array<std::optional<Input::State>, PolygonCount>;
    using Masks = std::array<SelMask, PolygonCount>;

    explicit PolyEditor(PolyLineControl& control) : control_(control) {}

    // Polygons.
    Input* InputOf(int polygon) const; // null: none
    /// As it is shown at the current time; null: none.
    const PolyLine* Shape(int polygon) const;
    bool IsShown(int polygon) const; // it is there, and enabled
    bool IsDouble() const { return IsShown(InnerPolygon) && IsShown(OuterPolygon); }
    bool HasPoints(int polygon) const { return Shape(polygon) && Shape(polygon)->GetCount() > 0; }
    /// Whether the points of both match: there are some, and as many.
    bool IsMatched() const;
    int ActivePolygon() const { return active_; }
    void SetActivePolygon(int polygon);
    const PolyLine* Active() const { return Shape(active_); }
    bool IsAnimated(int polygon) const; // edits make or change keys
    bool IsClosed() const { return Active() && Active()->IsClosed(); }
    bool IsFull() const; // the active one has as many points as it may
    /// The input has another shape now. False: it shows nothing new.
    bool Notify(int polygon, const Ref<PolyLine>& shape);
    const ShapeIndex* Index(int polygon) const; // null: no shape
    /// At another time, for onion skins; kept until the input or the time changes.
    Ref<PolyLine> ShapeAt(int polygon, double time) const;
    /// The lines of its curve in a view; valid until the next call for this polygon.
    const ViewStrips& CurveOf(int polygon, const PolyView& view) const;

    // Selection: one mask for each polygon.
    const SelMask& Selection(int polygon) const { return masks_[std::size_t(polygon)]; }
    const SelMask& ActiveSelection() const { return Selection(active_); }
    const Masks& Selections() const { return masks_; }
    void SetSelections(const Masks& masks); // refused while the selection is locked
    void RestoreSelections(const Masks& masks);
    void Select(int polygon, int index, SelMask::Mode mode);
    void SelectOnly(int polygon, int index);
    void SelectAll();
    void ClearSelection();
    bool IsAnySelected() const;
    /// The selection of a polygon that an edit of the active one's selection concerns too: the
    /// active one's own, and on the other the matching points, where they go with it, and what is
    /// selected there with both edited.
    SelMask EditedMask(int polygon) const;
    Masks EditedMasks() const { return {EditedMask(InnerPolygon), EditedMask(OuterPolygon)}; }
    /// Without the points that stay where they are: locked ones, and those that follow others.
    Masks Movable(Masks masks) const;
    /// The points that a command works on: the selected ones, or all without a selection.
    SelMask CommandMask(int polygon) const;

    // What is where.
    PolyHit HitAt(const PolyView& view) const;
    bool ShowsHandles(int polygon, int index) const;
    const PolyHit& Hovered() const { return hovered_; }
    bool SetHovered(const PolyHit& hit); // whether it is another one
    /// Turns to the other one of two points that coincide; false: there is none.
    bool SwitchCoinciding(const PolyView& view);

    // Changes.
    States TakeStates() const;
    /// Changes shapes of a polygon, from what its input holds or from `from`. In Frames a time
    /// without a key gets one where the shape is animated. False: it can't be changed.
    bool Change(int polygon, Scope scope, const ShapeChange& change,
                const std::optional<Input::State>& from = {});
    /// The same for the points of both polygons that a mask tells.
    bool ChangeMasked(const Masks& masks,
                      const std::function<void(PolyLine& shape, const SelMask& mask)>& change,
                      const States& from = {});
    /// The same at the points of EditedMask.
    bool ChangeSelected(const std::function<void(PolyLine& shape, const SelMask& mask)>& change,
                        const States& from = {});
    bool Write(int polygon, Input::State next);
    /// From now on what is written is shown only: until WriteHeld, which writes it as an undo entry
    /// of this text, or ForgetHeld.
    void HoldBack() { holdsBack_ = true; }
    bool HoldsBack() const { return holdsBack_; }
    void NameHeld(const char* text) { heldText_ = text; }
    void WriteHeld();
    void ForgetHeld();
    /// Shows a shape that is not written yet; null: what the input holds.
    void Preview(int polygon, const Ref<PolyLine>& shape);

private:
    /// A shape turned and moved to where it is drawn, and its lines.
    struct PlacedCurve {
        Ref<PolyLine> source;
        ShapePlacement placement;
        Ref<PolyLine> shape;
        ThinCurve lines;
    };
    struct Remembered {
        Ref<PolyLine> shape;
        SelMask mask;
    };
    /// Written when the gesture is over.
    struct Held {
        Input::State state;
        std::vector<double> times; // at which points may have moved
    };
    // What is hit, of each kind.
    PolyHit PointAt(const PolyView& view) const;
    PolyHit HandleAt(const PolyView& view) const;
    PolyHit CurveAt(const PolyView& view) const;
    std::array<int, PolygonCount> PickOrder() const { return {active_, OtherPolygon(active_)}; }
    std::optional<Input::State> TakeState(int polygon) const;
    void Adopt(int polygon, const Ref<PolyLine>& shape);
    void Remember(int polygon);
    std::vector<double> OtherFrames(const Input::State& state) const;
    void Unhold();
    bool WriteAt(int polygon, Input::State next, const std::vector<double>& times);

    PolyLineControl& control_;
    std::array<Ref<PolyLine>, PolygonCount> shapes_;
    std::array<Ref<PolyLine>, PolygonCount> previews_;
    Masks masks_;
    /// Of the shape, while one with other points is previewed.
    std::array<std::optional<SelMask>, PolygonCount> keptMasks_;
    /// The selections that shapes were left with, newest last: undo brings the same shapes back.
    std::array<std::deque<Remembered>, PolygonCount> remembered_;
    mutable std::array<std::unique_ptr<ShapeIndex>, PolygonCount> indices_;
    mutable std::array<PlacedCurve, PolygonCount> curves_;
    mutable std::array<std::map<double, Ref<PolyLine>>, PolygonCount> skins_; // by their time
    bool holdsBack_ = false;
    const char* heldText_ = nullptr;
    std::array<std::optional<Held>, PolygonCount> held_;
    int active_ = InnerPolygon;
    PolyHit hovered_;
};

/// Whether the points of this kind of shape have handles.
bool HasHandles(const PolyLine& shape);
/// A shape whose coordinates are those of the image.
Ref<PolyLine> PlacedShape(const PolyLine& shape, const ShapePlacement& placement);

} // namespace Marlox
