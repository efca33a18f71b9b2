#include "controls/polyline/PolyRules.h"

#include "controls/polyline/PolyCommands.h"
#include "system/shapes/PathAnimation.h"

namespace Marlox::PolyRules {

using C = PolyLineControl;

bool HasShape(const C& c)
{
    return c.Editor().Active();
}

bool IsUnlocked(const C& c)
{
    const Input* input = c.ShapeInput(c.Editor().ActivePolygon());
    return !input || !input->Owner().IsLocked();
}

bool IsFree(const C& c)
{
    return c.IsShapeFree(c.Editor().ActivePolygon());
}

bool IsShown(const C& c)
{
    return c.Editor().IsShown(c.Editor().ActivePolygon()) || !IsDrawn(c);
}

bool IsDrawn(const C& c)
{
    return c.Editor().HasPoints(c.Editor().ActivePolygon());
}

bool IsSelected(const C& c)
{
    return c.Editor().IsAnySelected();
}

bool IsSelectionFree(const C& c)
{
    return !c.Settings().lockSelection;
}

bool IsNotDone(const C& c)
{
    return c.Mode() != PolyDrawMode::Done;
}

bool CanTurnClosed(const C& c)
{
    const PolyLine& shape = *c.Editor().Active();
    return shape.IsClosed() || shape.GetCount() >= 2;
}

bool TakesOuter(const C& c)
{
    return c.ShapeInput(OuterPolygon);
}

bool IsOuterFree(const C& c)
{
    return c.IsShapeFree(OuterPolygon);
}

bool IsOuterDrawn(const C& c)
{
    return c.Editor().HasPoints(OuterPolygon);
}

bool IsOuterEmpty(const C& c)
{
    return !IsOuterDrawn(c);
}

bool IsInnerDrawn(const C& c)
{
    return c.Editor().HasPoints(InnerPolygon);
}

bool CanTurnInner(const C& c)
{
    const PolyLine* inner = c.Editor().Shape(InnerPolygon);
    return (IsOuterDrawn(c) && IsOuterFree(c)) || (inner && !inner->IsEnabled());
}

bool IsMatched(const C& c)
{
    return c.Editor().IsMatched();
}

bool IsDouble(const C& c)
{
    return c.Editor().IsDouble();
}

bool HasLastSelected(const C& c)
{
    return c.Editor().ActiveSelection().Last() >= 0;
}

bool Publishes(const C& c)
{
    return c.Settings().canPublishPoints;
}

bool IsPublished(const C& c)
{
    return c.Editor().Active()->GetSelectedPublishedPoint(c.Editor().ActiveSelection()) >= 0;
}

bool Follows(const C& c)
{
    return c.Settings().followExternMatchPoint || AllFollow(c);
}

bool AllFollow(const C& c)
{
    bool any = false;
    for (int polygon = 0; polygon < PolygonCount; ++polygon) {
        const PolyLine* const shape = c.Editor().Shape(polygon);
        for (const int index : shape ? c.Editor().Selection(polygon).Items() : std::vector<int>()) {
            const PointLink* const link = shape->LinkAt(index);
            if (!link)
                return false;
            any = any || link->Follows(); // published ones can't
        }
    }
    return any;
}

bool IsMovedByPath(const C& c)
{
    const Operator* const path = PathOf(c);
    return path && MovesPoints(*path);
}

bool IsPathUnlocked(const C& c)
{
    return !PathOf(c)->IsLocked();
}

bool KeepsKeys(const C& c)
{
    return c.Settings().animated && c.ShapeInput(c.Editor().ActivePolygon());
}

bool HasPickedColor(const C& c)
{
    return c.Settings().prevSkinColor != 0;
}

bool Never(const C&)
{
    return false;
}

} // namespace Marlox::PolyRules
