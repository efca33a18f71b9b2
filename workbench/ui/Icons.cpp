#include "workbench/ui/Icons.h"

#include "system/resources/Resources.h"

#include <string>

namespace Marlox {

QIcon WorkbenchIcon(const char* name)
{
    const std::string full = std::string("Icons.Workbench.") + name;
    QIcon icon;
    for (const double ratio : {1.0, 2.0})
        icon.addPixmap(ResDIB::PixmapOf(full.c_str(), ratio));
    return icon;
}

} // namespace Marlox
