#pragma once

#include "workbench/ui/TimeScale.h"

#include <optional>

#include <QWidget>

namespace Marlox {

class Session;

/// The drawn part of the time line: numbered frames, the keys of the selected tool and the current
/// time. Dragging scrubs; dragging a key moves it and every key of the tool at that frame, as one
/// undo entry. Left and Right step one frame, Home and End go to the ends.
class TimeRuler : public QWidget {
    Q_OBJECT
    Q_PROPERTY(double time READ Time)
public:
    explicit TimeRuler(Session& session, QWidget* parent = nullptr);

    double Time() const;
    TimeScale Scale() const;
    QSize sizeHint() const override { return {400, 40}; }
    QSize minimumSizeHint() const override { return {120, 40}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    std::optional<double> KeyAt(const QPoint& at) const;
    void MoveKeys(double from, double to);
    void EndGesture();

    Session& session_;
    bool scrubbing_ = false;
    std::optional<double> draggedKey_; // where the key stands now
};

} // namespace Marlox
