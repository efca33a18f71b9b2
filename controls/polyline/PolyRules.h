#pragma once

#include "controls/polyline/PolyLineControl.h"
#include "system/shapes/BSplinePolyLine.h"

#include <algorithm>
#include <array>
#include <span>

namespace Marlox {

/// What must hold for an action to be used, and what the user is told where it does not.
struct PolyRule {
    bool (*holds)(const PolyLineControl& control);
    const char* otherwise;
};

/// The rules of the actions, from the most general on: the first that does not hold is told. What
/// writes the shape, or what is stored with its tool, needs a tool that is not locked; what shows
/// of the shape in this view does not.
namespace PolyRules {

template <std::size_t... counts>
consteval auto Join(const std::array<PolyRule, counts>&... parts)
{
    std::array<PolyRule, (counts + ...)> all{};
    auto end = all.begin();
    ((end = std::copy(parts.begin(), parts.end(), end)), ...);
    return all;
}

template <std::size_t count>
consteval auto Also(const std::array<PolyRule, count>& before,
                    bool (*holds)(const PolyLineControl&), const char* otherwise)
{
    return Join(before, std::array{PolyRule{holds, otherwise}});
}

bool HasShape(const PolyLineControl& c);
bool IsUnlocked(const PolyLineControl& c);
bool IsFree(const PolyLineControl& c);
bool IsShown(const PolyLineControl& c);
bool IsDrawn(const PolyLineControl& c);
bool IsSelected(const PolyLineControl& c);
bool IsSelectionFree(const PolyLineControl& c);
bool IsNotDone(const PolyLineControl& c);
bool CanTurnClosed(const PolyLineControl& c);
bool TakesOuter(const PolyLineControl& c);
bool IsOuterFree(const PolyLineControl& c);
bool IsOuterDrawn(const PolyLineControl& c);
bool IsOuterEmpty(const PolyLineControl& c);
bool IsInnerDrawn(const PolyLineControl& c);
bool CanTurnInner(const PolyLineControl& c);
bool IsMatched(const PolyLineControl& c);
bool IsDouble(const PolyLineControl& c);
bool HasLastSelected(const PolyLineControl& c);
bool Publishes(const PolyLineControl& c);
bool IsPublished(const PolyLineControl& c);
bool Follows(const PolyLineControl& c);
/// Whether all selected points that can follow others do.
bool AllFollow(const PolyLineControl& c);
bool IsMovedByPath(const PolyLineControl& c);
bool IsPathUnlocked(const PolyLineControl& c);
bool KeepsKeys(const PolyLineControl& c);
bool HasPickedColor(const PolyLineControl& c);
bool Never(const PolyLineControl& c);
template <const char* dataType>
bool IsKind(const PolyLineControl& c)
{
    return c.Editor().Active()->GetDataType() == MxID(dataType);
}
template <std::size_t keys>
bool IsKeyed(const PolyLineControl& c)
{
    const Input* input = c.ShapeInput(c.Editor().ActivePolygon());
    return input && input->GetAnimation().Keys().size() >= keys;
}
/// An editor that is open can be closed.
template <bool (*holds)(const PolyLineControl& c)>
bool OrIsEditorOpen(const PolyLineControl& c)
{
    return c.IsPointEditorOpen() || holds(c);
}

inline constexpr char pointsFirst[] = "Select points first.";
inline constexpr char noOuter[] = "The shape has no outer polygon.";
inline constexpr char noPoints[] = "The shape has no points.";
inline constexpr char locked[] = "The tool is locked.";
inline constexpr char driven[] = "An expression or another tool drives the shape.";
inline constexpr char inDone[] = "Choose another draw mode than Done first.";

inline constexpr std::array<PolyRule, 0> always{};
inline constexpr std::array unlocked{PolyRule{IsUnlocked, locked}};
inline constexpr std::array edits{PolyRule{HasShape, "There is no shape."},
                                  PolyRule{IsUnlocked, locked}, PolyRule{IsFree, driven}};
inline constexpr std::array drawn{PolyRule{IsShown, "The polygon is disabled."},
                                  PolyRule{IsDrawn, noPoints}};
inline constexpr auto hasPoints = Join(edits, drawn);
inline constexpr auto hasSelection = Also(edits, IsSelected, pointsFirst);
inline constexpr auto changesSelection = Also(hasSelection, IsNotDone, inDone);
inline constexpr std::array editsPoint{
    PolyRule{OrIsEditorOpen<IsUnlocked>, locked}, PolyRule{OrIsEditorOpen<IsFree>, driven},
    PolyRule{OrIsEditorOpen<IsSelected>, pointsFirst}, PolyRule{IsNotDone, inDone}};
inline constexpr auto canSelect =
    Also(drawn, IsSelectionFree, "The selection is locked (Lock Point Selection).");
inline constexpr auto copiesValue = Also(drawn, IsSelected, pointsFirst);
inline constexpr auto canClose =
    Also(edits, CanTurnClosed, "A shape needs two points to be closed.");
inline constexpr auto takesOuter =
    Also(Also(edits, TakesOuter, "This tool takes no outer polygon."), IsOuterFree, driven);
inline constexpr auto hasOuter = Also(Also(edits, IsOuterDrawn, noOuter), IsOuterFree, driven);
inline constexpr auto makesOuter = Also(Also(takesOuter, IsInnerDrawn, noPoints), IsOuterEmpty,
                                        "The shape has an outer polygon already.");
inline constexpr auto turnsInner = Also(edits, CanTurnInner, noOuter);
inline constexpr auto matched =
    Also(hasOuter, IsMatched, "The inner and the outer polygon have different numbers of points.");
inline constexpr auto selectsMatch = Also(Join(matched, canSelect), HasLastSelected, pointsFirst);
template <const char* dataType>
inline constexpr auto isKind = Also(hasPoints, IsKind<dataType>, "The shape is of another kind.");
template <std::size_t keys>
inline constexpr auto isKeyed = Also(hasPoints, IsKeyed<keys>,
                                     keys > 2 ? "The shape has fewer than three keys."
                                              : "The shape has fewer than two keys.");
inline constexpr auto publishes =
    Also(hasSelection, Publishes, "Publishing is turned off (Publishing Path Points Enabled).");
inline constexpr auto unpublishes =
    Also(hasSelection, IsPublished, "None of the selected points is published.");
inline constexpr auto follows =
    Also(hasSelection, Follows, "Following published points is turned off for this shape.");
inline constexpr auto hasPath =
    Also(Also(edits, IsMovedByPath, "No point is moved by a path here."), IsPathUnlocked,
         "The path is locked.");
inline constexpr std::array listed{PolyRule{KeepsKeys, "The shape is not animated."}};
inline constexpr std::array picked{PolyRule{HasPickedColor, "No color was chosen."}};
inline constexpr std::array never{
    PolyRule{Never, "Following edges by itself is not part of this version of the controls."}};

} // namespace PolyRules
} // namespace Marlox
