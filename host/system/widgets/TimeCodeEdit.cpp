#include "system/widgets/TimeCodeEdit.h"

#include "system/base/ScriptServices.h"
#include "system/document/Preferences.h"
#include "system/widgets/TimeCodeEdit_p.h"
#include "system/widgets/WidgetAccess.h"
#include "system/widgets/WidgetLook.h"

#include <algorithm>
#include <cmath>

#include <QAccessible>
#include <QFocusEvent>
#include <QPainter>

namespace Marlox {

namespace {

constexpr int textMargin = 4; // pixels beside the text, frame included
constexpr int usualDigits = 8;

bool IsSame(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

} // namespace

TimeCodeEdit::TimeCodeEdit(QWidget* parent) : QWidget(parent), d_(new Private(*this))
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_InputMethodEnabled);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    WidgetAccess::Install();
}

TimeCodeEdit::~TimeCodeEdit()
{
    if (d_->OutlivedByParents()) {
        d_->FinishDrag();
        d_->EndSteps();
    }
}

double TimeCodeEdit::GetValue() const
{
    return d_->entry.value;
}

void TimeCodeEdit::SetValue(double value, int precision)
{
    const bool same = IsSame(value, d_->entry.value);
    d_->entry.value = value;
    d_->entry.precision = precision;
    const bool typing = d_->editor && hasFocus();
    if (!d_->typed || !(typing || same))
        d_->ShowValue();
}

void TimeCodeEdit::SetInteger(bool integer)
{
    d_->entry.integer = integer;
    if (!d_->typed)
        d_->ShowValue();
}

void TimeCodeEdit::SetTimeMode(bool time, double framesPerSecond)
{
    d_->entry.framesPerSecond = framesPerSecond;
    const auto read = [this] {
        d_->entry.timeCode = Preferences::Global().Get(PreferenceName, false).toBool();
        if (!d_->typed)
            d_->ShowValue();
    };
    if (time && !d_->entry.time) {
        connect(&Preferences::Global(), &Preferences::Changed, this, [read](const QString& name) {
            if (name == QLatin1String(PreferenceName))
                read();
        });
    } else if (!time && d_->entry.time) {
        disconnect(&Preferences::Global(), nullptr, this, nullptr);
    }
    d_->entry.time = time;
    if (time)
        read();
    else if (!d_->typed)
        d_->ShowValue();
}

void TimeCodeEdit::SetRange(double minimum, double maximum)
{
    d_->entry.minimum = minimum;
    d_->entry.maximum = maximum;
}

double TimeCodeEdit::Minimum() const
{
    return d_->entry.minimum;
}

double TimeCodeEdit::Maximum() const
{
    return d_->entry.maximum;
}

bool TimeCodeEdit::IsExpressionText() const
{
    return !d_->expression.isEmpty();
}

QString TimeCodeEdit::ExpressionText() const
{
    return d_->expression;
}

QString TimeCodeEdit::Problem() const
{
    return d_->problem;
}

void TimeCodeEdit::MarkUnreadable(const QString& reason)
{
    d_->typed = d_->typed || !reason.isEmpty();
    d_->SetProblem(reason);
}

bool TimeCodeEdit::Commit()
{
    return d_->Commit();
}

void TimeCodeEdit::Restore()
{
    d_->ShowValue();
}

void TimeCodeEdit::SetDragTarget(DragTarget target)
{
    d_->target = std::move(target);
}

bool TimeCodeEdit::IsDragging() const
{
    return d_->drag && d_->drag->HasStarted();
}

void TimeCodeEdit::CancelDrag()
{
    d_->FinishDrag();
}

QString TimeCodeEdit::text() const
{
    return d_->text;
}

void TimeCodeEdit::setText(const QString& text)
{
    d_->ShowText(text);
    d_->typed = true;
}

bool TimeCodeEdit::isReadOnly() const
{
    return d_->readOnly;
}

void TimeCodeEdit::setReadOnly(bool readOnly)
{
    if (readOnly == d_->readOnly)
        return;
    d_->readOnly = readOnly;
    if (readOnly) {
        d_->FinishDrag();
        d_->EndSteps();
    }
    if (d_->editor)
        d_->editor->setReadOnly(readOnly);
    update();
}

Qt::Alignment TimeCodeEdit::alignment() const
{
    return d_->alignment;
}

void TimeCodeEdit::setAlignment(Qt::Alignment alignment)
{
    d_->alignment = alignment;
    if (d_->editor)
        d_->editor->setAlignment(alignment);
    update();
}

void TimeCodeEdit::selectAll()
{
    d_->OpenEditor().selectAll();
}

void TimeCodeEdit::deselect()
{
    if (d_->editor)
        d_->editor->deselect();
}

QString TimeCodeEdit::selectedText() const
{
    return d_->editor ? d_->editor->selectedText() : QString();
}

int TimeCodeEdit::cursorPosition() const
{
    return d_->editor ? d_->editor->cursorPosition() : d_->text.size();
}

void TimeCodeEdit::setCursorPosition(int position)
{
    d_->OpenEditor().setCursorPosition(position);
    d_->cursorPlaced = true;
}

QSize TimeCodeEdit::sizeHint() const
{
    const QFontMetrics metrics = fontMetrics();
    return {metrics.horizontalAdvance(u'0') * usualDigits + 2 * textMargin,
            std::max(22, metrics.height() + 6)};
}

QSize TimeCodeEdit::minimumSizeHint() const
{
    const QFontMetrics metrics = fontMetrics();
    return {metrics.horizontalAdvance(u'0') * usualDigits / 2 + 2 * textMargin,
            metrics.height() + 4};
}

void TimeCodeEdit::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QPalette colors = palette();
    const auto group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    const QColor ground = colors.color(group, QPalette::Base);
    const QColor ink = colors.color(group, QPalette::Text);
    const bool wrong = IsUnreadable();
    painter.fillRect(rect(), ground);
    if (!d_->editor) {
        const QRect area = d_->TextRect();
        const QString shown = fontMetrics().elidedText(d_->text, Qt::ElideRight, area.width());
        painter.setPen(wrong          ? WidgetLook::ErrorText()
                       : d_->readOnly ? WidgetLook::Mix(ground, ink, 0.75)
                                      : ink);
        painter.drawText(area, int(d_->alignment) | int(Qt::TextSingleLine), shown);
    }
    if (wrong)
        WidgetLook::DrawFrame(painter, rect(), WidgetLook::ErrorText());
    else if (hasFocus())
        WidgetLook::DrawFocusRing(painter, rect(), 0.0);
    else if (!d_->readOnly && isEnabled())
        WidgetLook::DrawFrame(painter, rect(),
                              WidgetLook::Mix(ground, ink, underMouse() ? 0.35 : 0.16));
}

// The state.

void TimeCodeEdit::Private::ShowText(const QString& shown)
{
    expression.clear();
    SetProblem({});
    if (editor && editor->text() != shown) {
        const bool all = editor->selectedText() == editor->text();
        const int cursor = editor->cursorPosition();
        editor->setText(shown);
        if (all)
            editor->selectAll();
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
    if (reading.kind == Kind::Number)
        entry.value = reading.value;
    if (reading.kind != Kind::Expression) {
        ShowValue();
    } else {
        typed = false;
        SetProblem({});
        expression = reading.text;
    }
    if (reading.kind != Kind::Nothing)
        emit field.editingFinished();
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
    if (IsSame(value, entry.value))
        return true;
    const QPointer<TimeCodeEdit> alive(&field);
    entry.value = value;
    ShowValue();
    emit alive->editingFinished();
    return alive;
}

// The line edit.

QLineEdit& TimeCodeEdit::Private::OpenEditor()
{
    if (editor)
        return *editor;
    editor = new QLineEdit(text, &field);
    editor->setFrame(false);
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

void TimeCodeEdit::Private::CloseEditor()
{
    if (!editor)
        return;
    editor->hide();
    editor->deleteLater();
    editor.clear();
    cursorPlaced = false;
    digit.reset();
    field.update();
}

void TimeCodeEdit::Private::PlaceEditor()
{
    // A frameless line edit keeps 2 pixels beside its text.
    if (editor)
        editor->setGeometry(field.rect().adjusted(textMargin - 2, 1, 2 - textMargin, -1));
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

QRect TimeCodeEdit::Private::TextRect() const
{
    return field.rect().adjusted(textMargin, 1, -textMargin, -1);
}

} // namespace Marlox
