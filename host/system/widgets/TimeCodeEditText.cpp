// The field's text: showing and committing it, and the line edit it is typed in.
#include "system/base/ScriptServices.h"
#include "system/widgets/TimeCodeEdit_p.h"
#include "system/widgets/WidgetLook_p.h"

#include <QAccessible>
#include <QFocusEvent>

namespace Marlox {

void TimeCodeEdit::Private::ShowText(const QString& shown)
{
    expression.clear();
    SetProblem({});
    if (editor && editor->text() != shown) {
        const bool all = editor->selectedText() == editor->text();
        const int cursor = editor->cursorPosition();
        editor->setText(shown);
        if (all)
            SelectAll();
        else
            editor->setCursorPosition(cursor);
    }
    if (shown == text)
        return;
    text = shown;
    if (!editor)
        field.update();
    if (QAccessible::isActive()) {
        QAccessibleValueChangeEvent changed(&field, entry.value);
        QAccessible::updateAccessibility(&changed);
    }
    emit field.textChanged(text);
}

void TimeCodeEdit::Private::ShowValue()
{
    typed = false;
    ShowText(entry.Text());
}

bool TimeCodeEdit::Private::Commit()
{
    if (!typed)
        return true;
    const auto isExpression = [](const QString& typedText) {
        ScriptServices* services = ScriptServices::Installed();
        return services && services->IsExpression(typedText);
    };
    using Kind = NumberEntry::Reading::Kind;
    const NumberEntry::Reading reading = entry.Read(text, isExpression);
    if (reading.kind == Kind::Unreadable) {
        SetProblem(reading.text);
        if (editor)
            editor->setCursorPosition(reading.errorAt);
        return false;
    }
    const bool differs = reading.kind == Kind::Number && !entry.Holds(reading.value);
    if (reading.kind == Kind::Number)
        entry.value = reading.value;
    if (reading.kind != Kind::Expression) {
        ShowValue();
    } else {
        typed = false;
        SetProblem({});
        expression = reading.text;
    }
    const QPointer<TimeCodeEdit> alive(&field);
    if (differs)
        emit alive->valueChanged();
    if (alive && reading.kind != Kind::Nothing)
        emit alive->editingFinished();
    return true;
}

void TimeCodeEdit::Private::SetProblem(const QString& reason)
{
    if (reason == problem)
        return;
    if (problem.isEmpty())
        plainToolTip = field.toolTip();
    problem = reason;
    field.setToolTip(reason.isEmpty() ? plainToolTip : reason);
    field.setAccessibleDescription(reason);
    ColorEditor();
    field.update();
}

bool TimeCodeEdit::Private::SetAndSend(double value)
{
    if (entry.Holds(value))
        return true;
    const QPointer<TimeCodeEdit> alive(&field);
    entry.value = value;
    ShowValue();
    emit alive->valueChanged();
    if (alive)
        emit alive->editingFinished();
    return alive;
}

// The line edit.

QLineEdit& TimeCodeEdit::Private::OpenEditor()
{
    if (editor)
        return *editor;
    editor = new QLineEdit(text, &field);
    editor->setFocusProxy(&field);
    editor->setAttribute(Qt::WA_TransparentForMouseEvents);
    editor->setReadOnly(readOnly);
    editor->setAlignment(alignment);
    cursorPlaced = false;
    digit.reset();
    ColorEditor();
    PlaceEditor();
    connect(editor, &QLineEdit::textEdited, &field, [this](const QString& now) {
        text = now;
        typed = true;
        expression.clear();
        SetProblem({});
        emit field.textChanged(now);
    });
    connect(editor, &QLineEdit::cursorPositionChanged, &field, &TimeCodeEdit::updateMicroFocus);
    editor->show();
    if (field.hasFocus()) {
        // It has the focus through the field and would not learn of it: no blinking cursor.
        QFocusEvent focusIn(QEvent::FocusIn, Qt::OtherFocusReason);
        editor->event(&focusIn);
    }
    if (field.underMouse())
        field.setCursor(Qt::IBeamCursor);
    field.update();
    return *editor;
}

void TimeCodeEdit::Private::SelectAll()
{
    editor->selectAll();
    const QStyleOptionFrame frame = Frame();
    if (frame.fontMetrics.horizontalAdvance(editor->text()) <= TextRect(frame).width())
        return;
    editor->end(false); // too long to be seen at once: let it be the first digits
    editor->home(true);
}

void TimeCodeEdit::Private::CloseEditor()
{
    if (!editor)
        return;
    editor->setFocusProxy(nullptr); // else its end takes the field's focus away
    editor->hide();
    editor->deleteLater();
    editor.clear();
    cursorPlaced = false;
    digit.reset();
    field.update();
}

void TimeCodeEdit::Private::PlaceEditor()
{
    if (editor)
        editor->setGeometry(field.rect());
}

void TimeCodeEdit::Private::ColorEditor()
{
    if (!editor)
        return;
    QPalette colors;
    if (!problem.isEmpty())
        colors.setColor(QPalette::Text, WidgetLook::ErrorText());
    editor->setPalette(colors);
}

} // namespace Marlox
