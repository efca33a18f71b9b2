#pragma once

#include "system/base/Types.h"

#include <functional>

#include <QLineEdit>

namespace Marlox {

/// A number or time field. Typing: numbers with decimal point or comma, arithmetic ("1920/2"), and
/// arithmetic on the value it shows ("+10%", "*2", "-=3"); evaluated when committed. Text it cannot
/// read stays, marked, with the reason in the tooltip; Escape restores the value. Up and Down step
/// the digit at the cursor. Dragging sideways with the middle button, or with the left one from
/// outside the text's selection (4 pixels before it starts), drags the value: without a linked
/// widget by its own step, else through `SetDragTarget`.
class MARLOXSYSTEM_EXPORT TimeCodeEdit : public QLineEdit {
    Q_OBJECT
    Q_PROPERTY(double value READ GetValue WRITE SetValueProperty USER true)
    Q_PROPERTY(bool unreadable READ IsUnreadable)
public:
    explicit TimeCodeEdit(QWidget* parent = nullptr);
    ~TimeCodeEdit() override;

    double GetValue() const;
    /// Shows a value with at most `precision` decimals (-1: as many as it has, up to 10); sends no
    /// signal. While the user is typing the text stays as it is.
    void SetValue(double value, int precision = -1);
    void SetInteger(bool integer);
    /// Times are shown as frames, or as "hh:mm:ss:ff" when preferences say so; both can be typed.
    void SetTimeMode(bool time, double framesPerSecond = 24.0);
    void SetRange(double minimum, double maximum); // what typing is clamped to
    void SetEditDisabled(bool disabled);

    /// Whether the present text is an expression on time or other inputs instead of a number.
    bool IsExpressionText() const;
    QString ExpressionText() const;
    bool IsUnreadable() const;
    /// Marks the text as wrong for `reason` (shown in the tooltip and to screen readers).
    void MarkUnreadable(const QString& reason);

    /// The widget that turns a drag in the field into values: called with the movement in units
    /// since the drag began, accumulated in `state`; the units are pixels, ten with Shift, a tenth
    /// with Ctrl, for each pixel. See CustomSlider::DragBy.
    using DragTarget = std::function<void(double movement, double& state)>;
    void SetDragTarget(DragTarget target);
    void CancelDrag(); // ends a running drag where it is

signals:
    // "editingFinished()" comes from the base: a readable value or an expression was committed.
    void StartDrag(TimeCodeEdit* edit);
    void EndDrag(TimeCodeEdit* edit);

private:
    void SetValueProperty(double value) { SetValue(value); }
    class Private;
    Private* d_;
};

} // namespace Marlox
