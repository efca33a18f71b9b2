#include "workbench/viewer/ControlColors.h"

#include "system/color/DisplayColors.h"
#include "workbench/viewer/ViewerWidget.h"

namespace Marlox {

ControlColors::ControlColors(ViewerWidget& viewer) : QObject(&viewer)
{
    connect(&viewer, &ViewerWidget::SettingsChanged, this, [this, &viewer] { Follow(viewer); });
    Follow(viewer);
}

ControlColors::~ControlColors()
{
    DisplayColors::Global().SetDisplay(nullptr);
}

void ControlColors::Follow(const ViewerWidget& viewer)
{
    DisplaySettings settings = viewer.Settings();
    settings.channels = ChannelView::Color;
    if (followed_ == settings)
        return;
    followed_ = settings;
    DisplayColors::Global().SetDisplay(viewer.Transform().Colors(settings));
}

} // namespace Marlox
