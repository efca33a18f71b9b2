#include "framework/NamedPlaces.h"

#include "system/controls/Layout.h"

#include <QWidget>

namespace Marlox {

void PlaceNamedChild(void*, LayoutObj& object, const ScriptVal&, void* context)
{
    const QString name = object.Name().ToString();
    if (name.isEmpty() || object.IsContainer())
        return;
    auto* child =
        static_cast<QWidget*>(context)->findChild<QWidget*>(name, Qt::FindDirectChildrenOnly);
    if (!child)
        return;
    object.SetWidget(child);
    child->show();
}

} // namespace Marlox
