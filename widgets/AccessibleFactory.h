#pragma once

#include <QAccessible>

namespace Marlox {

/// While it exists, the system's accessibility asks `make` for the interface of each widget that
/// has none yet; null: it is none of its kind. As a static object of a function it exists from the
/// first call until the library is unloaded.
template <QAccessible::InterfaceFactory make>
struct AccessibleFactory {
    AccessibleFactory() { QAccessible::installFactory(make); }
    ~AccessibleFactory() { QAccessible::removeFactory(make); }
    AccessibleFactory(const AccessibleFactory&) = delete;
    AccessibleFactory& operator=(const AccessibleFactory&) = delete;
};

/// Makes the interface for widgets of one class.
template <class Widget, class Interface>
QAccessibleInterface* MakeAccessible(const QString&, QObject* object)
{
    auto* widget = qobject_cast<Widget*>(object);
    return widget ? new Interface(widget) : nullptr;
}

} // namespace Marlox
