#pragma once

#include <QWidget>

class QComboBox;
class QMenu;
class QToolButton;

namespace Marlox {

class TimeCodeEdit;
class ViewerWidget;

/// The strip above the viewer: how the picture is shown. Channels, view of the colour
/// configuration, exposure and gamma (their icons go back to normal), overlays, the chequerboard
/// and the zoom.
class ViewerBar : public QWidget {
    Q_OBJECT
public:
    explicit ViewerBar(ViewerWidget& viewer, QWidget* parent = nullptr);

private:
    void FillViews();
    void FillZoomMenu();
    void Connect();
    void ShowSettings();

    ViewerWidget& viewer_;
    QComboBox* channels_;
    QComboBox* views_;
    TimeCodeEdit* exposure_;
    TimeCodeEdit* gamma_;
    QToolButton* normalExposure_;
    QToolButton* normalGamma_;
    QToolButton* overlays_;
    QToolButton* checker_;
    QToolButton* zoom_;
};

} // namespace Marlox
