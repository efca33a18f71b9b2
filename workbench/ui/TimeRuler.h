#pragma once

#include "workbench/ui/TimeScale.h"

#include <optional>

#include <QWidget>

class QPainter;

namespace Marlox {

class Session;

/// The drawn part of the time line: numbered frames, the keys of the selected tool and the current
/// time. Dragging scrubs; dragging a key moves it and every key of the tool at that frame, as one
/// undo entry, and Escape brings it back. Delete removes the keys at the current time. The window's
/// keys for the time (Left, Right, Home, End) work here as everywhere.
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
    bool event(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void PaintMarks(QPainter& painter, const TimeScale& scale) const;
    QRect CurrentTimePlate(const QPainter& painter, const TimeScale& scale) const;
    void PaintCurrentTime(QPainter& painter, const TimeScale& scale) const;
    void PaintKeys(QPainter& painter, const TimeScale& scale) const;
    std::optional<double> KeyAt(const QPoint& at) const;
    void MoveKeys(double from, double to);
    void EndGesture(bool keep = true);

    Session& session_;
    bool scrubbing_ = false;
    std::optional<double> draggedKey_; // where the key stands now
};

} // namespace Marlox
