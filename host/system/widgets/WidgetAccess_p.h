#pragma once

/// What the drawn widgets of this folder tell screen readers: role, name, state and value. Internal
/// to the library.
namespace Marlox::WidgetAccess {

/// Makes the interfaces known to Qt, once; every drawn widget calls it when it is made.
void Install();

} // namespace Marlox::WidgetAccess
