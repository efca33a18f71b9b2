#include "workbench/ui/ViewerPane.h"

#include "workbench/ui/OverlayToolbar.h"
#include "workbench/ui/ReadOut.h"
#include "workbench/ui/Session.h"
#include "workbench/ui/ViewerBar.h"
#include "workbench/viewer/ViewerWidget.h"

#include <QVBoxLayout>

namespace Marlox {

ViewerPane::ViewerPane(Session& session, QWidget* parent)
    : QWidget(parent), viewer_(new ViewerWidget(session.Document()))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(new ViewerBar(*viewer_));
    layout->addWidget(new OverlayToolbar(viewer_->Overlays()));
    layout->addWidget(viewer_, 1);
    layout->addWidget(new ReadOut(*viewer_));
    setFocusProxy(viewer_);
    const auto showTool = [this](Operator* tool) { viewer_->Overlays().SetOperator(tool); };
    connect(&session, &Session::SelectedToolChanged, this, showTool);
    showTool(session.SelectedTool());
    connect(viewer_, &ViewerWidget::SpaceTapped, &session,
            [&session] { session.Play(!session.IsPlaying()); });
}

} // namespace Marlox
