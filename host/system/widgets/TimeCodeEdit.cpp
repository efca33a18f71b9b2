#include "system/widgets/TimeCodeEdit.h"

#include "system/document/Preferences.h"
#include "system/widgets/TimeCodeEdit_p.h"
#include "system/widgets/WidgetAccess_p.h"

#include <algorithm>
#include <utility>

namespace Marlox {

namespace {

constexpr int textMargin = 6; // beside the text, frame included
constexpr int rowHeight = 24;
constexpr int usualDigits = 8;

} // namespace

TimeCodeEdit::TimeCodeEdit(QWidget* parent) : QWidget(parent), d_(new Private(*this))
{
    setFocusPolicy(Qt::StrongFocus);
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
    const bool same = d_->entry.Holds(value);
    d_->entry.value = value;
    d_->entry.precision = precision;
    const bool typing = d_->editor && hasFocus();
    if (!d_->typed || !(typing || same))
        d_->ShowValue();
}

void TimeCodeEdit::SetShownDecimals(int decimals)
{
    if (std::exchange(d_->entry.shownDecimals, decimals) != decimals)
        update();
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

void TimeCodeEdit::SetStep(double step)
{
    d_->entry.step = step;
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
    d_->OpenEditor();
    d_->SelectAll();
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
            std::max(rowHeight, metrics.height() + 6)};
}

QSize TimeCodeEdit::minimumSizeHint() const
{
    const QFontMetrics metrics = fontMetrics();
    return {metrics.horizontalAdvance(u'0') * usualDigits / 2 + 2 * textMargin,
            metrics.height() + 4};
}

} // namespace Marlox
