#pragma once

#include <QWidget>

class QComboBox;
class QLabel;

namespace Marlox {

class TimeCodeEdit;
class ViewerWidget;
struct Probe;

/// The strip below the viewer: channels, exposure and gamma of the view, zoom, and the colour under
/// the cursor.
class ViewerBar : public QWidget {
    Q_OBJECT
public:
    explicit ViewerBar(ViewerWidget& viewer, QWidget* parent = nullptr);

private:
    void ShowSettings();
    void ShowProbe(const Probe& probe);

    ViewerWidget& viewer_;
    QComboBox* channels_;
    TimeCodeEdit* exposure_;
    TimeCodeEdit* gamma_;
    QLabel* zoom_;
    QLabel* readout_;
};

} // namespace Marlox
