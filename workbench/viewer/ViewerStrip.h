#pragma once

#include <QWidget>

class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QToolButton;

namespace Marlox {

class ViewerWidget;
struct Probe;

/// The strip below a viewer: how it shows (channels, exposure, gamma, display, checkerboard, zoom)
/// and the values of the image under the cursor.
class ViewerStrip : public QWidget {
    Q_OBJECT
public:
    explicit ViewerStrip(ViewerWidget& viewer, QWidget* parent = nullptr);

private:
    void BuildSettings();
    void BuildDisplays();
    void ShowSettings();
    void ShowZoom();
    void ShowProbe(const Probe& probe);

    ViewerWidget& viewer_;
    QComboBox* channels_;
    QDoubleSpinBox* exposure_;
    QDoubleSpinBox* gamma_;
    QComboBox* displays_;
    QToolButton* checker_;
    QToolButton* zoom_;
    QLabel* position_;
    QLabel* values_;
    QWidget* swatch_;
};

} // namespace Marlox
