#pragma once

#include "system/widgets/NumberEntry.h"
#include "system/widgets/ScrubDrag.h"
#include "system/widgets/TimeCodeEdit.h"

#include <optional>
#include <utility>
#include <vector>

#include <QBasicTimer>
#include <QLineEdit>
#include <QPointer>
#include <QStyleOption>

namespace Marlox {

/// The state of a field: what it holds, the text it shows, and the gesture under way. Operations
/// that send signals return false if a listener deleted the field.
class TimeCodeEdit::Private {
public:
    explicit Private(TimeCodeEdit& field) : field(field) {}

    // The text.
    void ShowText(const QString& text);
    void ShowValue();
    bool Commit();
    void SetProblem(const QString& reason);
    bool SetAndSend(double value); // shows a value and sends editingFinished if it is another

    // The line edit, there only while the user types.
    QLineEdit& OpenEditor();
    void CloseEditor();
    void PlaceEditor();
    void ColorEditor();
    void Forward(QMouseEvent& event); // to the line edit, in its coordinates
    QStyleOptionFrame Frame() const;
    QRect TextRect(const QStyleOptionFrame& frame) const;
    QString ShownText(const QStyleOptionFrame& frame) const; // shortened where it does not fit
    QString HiddenText() const; // all of the value or text, if less of it is seen
    QString ToolTip() const;    // that, and how the field is used
    void SelectAll();           // in the line edit

    // The drag.
    void DragTo(double screenX, Qt::KeyboardModifiers modifiers);
    bool BeginDrag();
    void ApplyMovement();
    void RevertDrag(); // back to the value at its start, and ends it
    void FinishDrag();

    // Steps of a held key or a turning wheel: one gesture, sent as one drag.
    bool BeginSteps();
    void EndSteps();
    double StepAtCursor(bool& found);
    void PutCursorBehindStep();

    // Listeners are mostly the widgets around the field: none may be called in its destructor.
    void RememberParents();
    bool OutlivedByParents() const;

    TimeCodeEdit& field;
    NumberEntry entry;
    QString text = QStringLiteral("0");
    QString expression; // committed as such; empty: none
    QString problem;
    QString plainToolTip; // while a problem takes the tooltip's place
    Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter;
    bool typed = false; // the text is not (yet) the value's
    bool readOnly = false;

    QPointer<QLineEdit> editor;
    bool cursorPlaced = false; // by the user, in the text

    std::optional<ScrubDrag> drag; // from the press on
    Qt::MouseButton dragButton = Qt::NoButton;
    double dragStartValue = 0.0;
    std::vector<std::pair<QPointer<QWidget>, const QMetaObject*>> parents; // at a gesture's begin
    DragTarget target;

    bool stepping = false;
    QBasicTimer wheelEnd;
    int wheelRest = 0;            // eighths of a degree not yet worth a step
    bool pointerMoved = true;     // since it came in: else the panel scrolled below it
    std::optional<DigitAt> digit; // stepped last, while the cursor stands at
    int digitCursor = -1;
};

} // namespace Marlox
