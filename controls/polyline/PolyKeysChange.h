#pragma once

#include "controls/polyline/PolyEditor.h"
#include "system/shapes/ShapeOps.h"

#include <functional>
#include <vector>

namespace Marlox {

// What commands on points share.

/// Changes the points that a command works on, in both polygons, as one undo entry. False: nothing
/// was changed.
bool ChangePoints(PolyLineControl& control, PolyEditor::Scope scope, const char* text,
                  const std::function<void(PolyLine& shape, const SelMask& mask)>& change);

/// A point's flags hold in all keys, also where an edit made other ones of each: a corner is one in
/// all of them, any other flag holds where one has it. The curves stay.
void UniteFlags(Input::State& state);

/// A polygon's shapes over time, for operations that look at all of them.
struct PolygonKeys {
    int polygon = InnerPolygon;
    Input::State state; // that the shapes come from
    std::vector<double>
        times;        // of the keys, ascending; one, the current time, where there are none
    ShapeList shapes; // copies, one for each; linked points are where they are
    SelMask mask;     // the points that the command works on

    bool IsAnimated() const { return !state.animation.IsEmpty(); }
};

enum class TakePoints {
    Selected, // or all of the active polygon; where both match, the same ones in both
    All,
};
/// The polygons that have such points and can be changed, the inner one first.
std::vector<PolygonKeys> TakeKeys(const PolyLineControl& control, TakePoints which);
/// Further keys where there are none, with the shapes that the animation gives there; they go on as
/// the keys before them do.
void AddKeys(PolygonKeys& keys, const std::vector<double>& times);

using KeysOperation =
    std::function<ShapeList(std::span<const Ref<PolyLine>> shapes, const SelMask& mask)>;
/// New shapes for each polygon; none where there is nothing to do. Polygons that match are worked
/// on as one, so that they still match.
std::vector<ShapeList> OperateOn(const std::vector<PolygonKeys>& all,
                                 const KeysOperation& operation);

/// Shows shapes made for the polygons, as they are at the current time, until it goes.
class PolyPreview {
public:
    explicit PolyPreview(PolyLineControl& control);
    ~PolyPreview();
    PolyPreview(const PolyPreview&) = delete;
    PolyPreview& operator=(const PolyPreview&) = delete;

    void Show(const std::vector<PolygonKeys>& all, const std::vector<ShapeList>& made);
    void Show(int polygon, const Ref<PolyLine>& shape);

private:
    Ref<PolyLineControl> control_;
};

/// Writes them, as one undo entry. False: there is nothing to write, or it can't be.
bool WriteKeys(PolyLineControl& control, const char* text, const std::vector<PolygonKeys>& all,
               const std::vector<ShapeList>& made);

/// Pixels of the image for one unit of a shape's coordinates.
ShapePlace ShapePixels(const PolyLineControl& control);
/// The image's height over its width, as seen.
double HeightsPerWidth(const PolyLineControl& control);

} // namespace Marlox
