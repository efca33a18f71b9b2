#pragma once

#include <QIcon>

namespace Marlox {

/// An icon of the workbench from the look pack, "Icons.Workbench.<name>", at 1x and 2x.
QIcon WorkbenchIcon(const char* name);

} // namespace Marlox
