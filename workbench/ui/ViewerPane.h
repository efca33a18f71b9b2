#pragma once

#include <QWidget>

namespace Marlox {

class Session;
class ViewerWidget;

/// A viewer with the strips above it and the read-out below. It shows the overlays of the selected
/// tool. A window may have several over one document; each has its own overlays, zoom and settings.
class ViewerPane : public QWidget {
    Q_OBJECT
public:
    explicit ViewerPane(Session& session, QWidget* parent = nullptr);
    ViewerWidget& Viewer() { return *viewer_; }

private:
    ViewerWidget* viewer_;
};

} // namespace Marlox
