#pragma once

#include "system/base/Types.h"

#include <functional>
#include <memory>

#include <QWidget>

namespace Marlox {

/// A number or time field. Typing: numbers with decimal point or comma, arithmetic ("1920/2"), and
/// arithmetic on the value it shows ("+10%", "*2", "-=3", see EvaluateArithmetic); evaluated when
/// committed by Enter, Tab or leaving the field. Text it cannot read stays, marked, with the reason
/// in the tooltip; Escape restores the value. Up and Down step the digit at the cursor, as the
/// wheel does while the field has keyboard focus.
///
/// Dragging sideways with the middle button, or with the left one unless a cursor was put into the
/// text before, drags the value (4 pixels before it starts): without a linked widget by its own
/// step, else through SetDragTarget. Shift makes it ten times coarser, Ctrl ten times finer; Escape
/// brings the value at the start back.
///
/// The field paints itself and has a QLineEdit only while it is typed into, so that inspectors with
/// hundreds of fields open fast. The keyboard focus is always the field's own.
class MARLOXSYSTEM_EXPORT TimeCodeEdit : public QWidget {
    Q_OBJECT
    Q_PROPERTY(double value READ GetValue WRITE SetValueProperty USER true)
    Q_PROPERTY(double minimum READ Minimum)
    Q_PROPERTY(double maximum READ Maximum)
    Q_PROPERTY(bool unreadable READ IsUnreadable)
    Q_PROPERTY(QString problem READ Problem)
    Q_PROPERTY(QString text READ text WRITE setText)
    Q_PROPERTY(QString selectedText READ selectedText)
    Q_PROPERTY(bool readOnly READ isReadOnly WRITE setReadOnly)
public:
    /// The preference (a boolean) that shows times as "hh:mm:ss:ff" instead of frames.
    static constexpr const char* PreferenceName = "Interface.TimeCode";

    explicit TimeCodeEdit(QWidget* parent = nullptr);
    /// A drag that is running ends with EndDrag, unless a widget around the field is being
    /// destroyed with it.
    ~TimeCodeEdit() override;

    double GetValue() const;
    /// Shows a value with at most `precision` decimals (-1: as many as it has, up to 10); sends no
    /// signal. While the user is typing the text stays as it is, and so does text marked as
    /// unreadable until another value comes.
    void SetValue(double value, int precision = -1);
    /// Most decimals that are drawn while nobody types (-1, at first: all of the text's). Rounding
    /// on the screen only: text(), the line edit and the tooltip have the others. A small value
    /// keeps two digits that count, a long one loses decimals before it is cut.
    void SetShownDecimals(int decimals);
    void SetInteger(bool integer);
    /// Times are shown as frames, or as "hh:mm:ss:ff" when preferences say so; both can be typed.
    void SetTimeMode(bool time, double framesPerSecond = 24.0);
    void SetRange(double minimum, double maximum); // what typing and own steps are clamped to
    /// The step of arrow keys and wheel where no digit is chosen, and ten units of an own drag. 0
    /// (at first): a hundredth of the range's power of ten.
    void SetStep(double step);
    double Minimum() const;
    double Maximum() const;
    void SetEditDisabled(bool disabled) { setReadOnly(disabled); }

    /// Whether the present text is an expression on time or other inputs instead of a number.
    bool IsExpressionText() const;
    QString ExpressionText() const;
    bool IsUnreadable() const { return !Problem().isEmpty(); }
    QString Problem() const; // why; empty: nothing is wrong
    /// Marks the text as wrong for `reason` (shown in the tooltip and to screen readers).
    void MarkUnreadable(const QString& reason);
    /// Takes the typed text, as Enter does. True unless it is unreadable.
    bool Commit();
    /// Drops what was typed and shows the value again.
    void Restore();
    /// `steps` of the digit at the cursor, or of a step that suits the range.
    void StepBy(int steps, Qt::KeyboardModifiers modifiers = Qt::NoModifier);

    /// The widget that turns a drag in the field into values: called with the movement in units
    /// since the drag began, accumulated in `state`; the units are pixels, ten with Shift, a tenth
    /// with Ctrl, for each pixel. A target that meets its end writes the movement it took into
    /// `state`. See CustomSlider::DragBy.
    using DragTarget = std::function<void(double movement, double& state)>;
    void SetDragTarget(DragTarget target);
    bool IsDragging() const;
    void CancelDrag(); // ends a running drag where it is

    // The operations of a line edit, by their usual names. Setting the text is like typing it.
    QString text() const;
    void setText(const QString& text);
    bool isReadOnly() const;
    void setReadOnly(bool readOnly);
    Qt::Alignment alignment() const;
    void setAlignment(Qt::Alignment alignment);
    void selectAll();
    void deselect();
    bool hasSelectedText() const { return !selectedText().isEmpty(); }
    QString selectedText() const;
    int cursorPosition() const;
    void setCursorPosition(int position);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

signals:
    /// The user gave the field another number, by typing, a drag or a step. Sent before
    /// editingFinished.
    void valueChanged();
    /// A readable value or an expression was committed, or a drag or step without a target changed
    /// the value.
    void editingFinished();
    void textChanged(const QString& text);
    void StartDrag(TimeCodeEdit* edit);
    void EndDrag(TimeCodeEdit* edit);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void enterEvent(QEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    void SetValueProperty(double value) { SetValue(value); }
    class Private;
    std::unique_ptr<Private> d_;
};

} // namespace Marlox
