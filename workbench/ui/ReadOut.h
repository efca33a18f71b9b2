#pragma once

#include <vector>

#include <QColor>
#include <QWidget>

class QLabel;

namespace Marlox {

class ViewerWidget;
struct Probe;

/// The strip below the viewer: what lies under the cursor (a swatch as it is on the screen,
/// position, the image's floats), and the format of the image.
class ReadOut : public QWidget {
    Q_OBJECT
    Q_PROPERTY(QColor swatch READ Swatch)
    Q_PROPERTY(QString text READ Text)
public:
    explicit ReadOut(ViewerWidget& viewer, QWidget* parent = nullptr);

    /// Position and values in one line; empty while the cursor is elsewhere.
    QString Text() const;

    QColor Swatch() const { return swatch_; } // invalid: no pixel under the cursor

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    struct Column {
        const char* name;
        int digits; // it has room for
        QString text;
    };
    void ShowProbe(const Probe& probe);
    void ShowFormat();

    ViewerWidget& viewer_;
    QLabel* format_;
    QColor swatch_;
    std::vector<Column> columns_;
};

} // namespace Marlox
