#pragma once

#include "system/base/MxGeometry.h"
#include "system/base/MxID.h"
#include "system/base/ScriptVal.h"

#include <vector>

class QWidget;

namespace Marlox {

/// One object of a layout that was built from a description: a group (horizontal or vertical) of
/// others, a spacer, a container that others fill later, or a place for one widget. The scripting
/// library's layout manager makes them; controls find them by name and put widgets in. Geometry in
/// pixels of the widget that the layout was built in.
class MARLOXSYSTEM_EXPORT LayoutObj {
public:
    virtual ~LayoutObj();

    virtual const MxID& Name() const = 0;
    virtual MxID TypeName() const = 0; // "HGroup", "VGroup", "Container", "Item", "Spacer", ...
    virtual LayoutObj* Parent() const = 0;
    virtual const std::vector<LayoutObj*>& Children() const = 0;
    /// A place that can take further widgets, one below the other (an expression line).
    virtual bool IsContainer() const = 0;

    /// Puts a widget in this place: it becomes a child of the layout's widget and follows the
    /// geometry. A hidden widget takes no room. Not owned.
    virtual void SetWidget(QWidget* widget) = 0;
    virtual QWidget* Widget() const = 0;
    /// For containers.
    virtual void AddWidget(QWidget* widget) = 0;

    virtual void MinimumSize(int& width, int& height) const = 0;
    /// Largest sensible size; a large number for "any".
    virtual void MaximumSize(int& width, int& height) const = 0;
    virtual void SetGeometry(const MxRect& rect) = 0;
    virtual MxRect Geometry() const = 0;
    /// Minimum sizes or visibility of widgets changed: forget what was computed.
    virtual void Invalidate() = 0;

    /// The object with this name in the tree from here, or null.
    LayoutObj* Find(const MxID& name);
};

} // namespace Marlox
