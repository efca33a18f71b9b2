#include "system/widgets/MxLineEdit.h"

#include "system/resources/Resources.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QPainter>

namespace Marlox {

namespace {

constexpr int captionIndent = 6; // pixels before a caption, and behind it

} // namespace

MxLineEdit::MxLineEdit(QWidget* parent) : MxLineEdit(QString(), parent) {}

MxLineEdit::MxLineEdit(const QString& text, QWidget* parent)
    : QLineEdit(text, parent), committed_(text)
{
    connect(this, &QLineEdit::textChanged, this, &MxLineEdit::OnTextChanged);
}

void MxLineEdit::Commit()
{
    setModified(false);
    if (text() == committed_)
        return;
    committed_ = text();
    emit Committed(committed_);
}

bool MxLineEdit::Restore()
{
    if (text() == committed_)
        return false;
    setText(committed_);
    selectAll();
    return true;
}

void MxLineEdit::SetError(const QString& reason)
{
    if (reason == error_)
        return;
    if (error_.isEmpty())
        plainToolTip_ = toolTip();
    error_ = reason;
    QPalette colours = palette();
    if (reason.isEmpty())
        colours = QPalette();
    else
        colours.setColor(
            QPalette::Text,
            LookPack::Global().Color("System.ErrorTextColour", {255, 140, 140}).ToQColor());
    setPalette(colours);
    setToolTip(reason.isEmpty() ? plainToolTip_ : reason);
    setAccessibleDescription(reason);
}

void MxLineEdit::SetCaption(const QString& caption)
{
    caption_ = caption;
    const int room =
        caption.isEmpty() ? 0 : fontMetrics().horizontalAdvance(caption) + 2 * captionIndent;
    setTextMargins(room, 0, 0, 0);
    update();
}

void MxLineEdit::paintEvent(QPaintEvent* event)
{
    QLineEdit::paintEvent(event);
    if (caption_.isEmpty())
        return;
    QPainter painter(this);
    painter.setPen(
        LookPack::Global().Color("System.PlaceholderTextColour", {138, 138, 138}).ToQColor());
    painter.drawText(rect().adjusted(captionIndent, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
                     caption_);
}

bool MxLineEdit::event(QEvent* event)
{
    // While there is something to restore, Escape is the field's and no window's shortcut.
    if (event->type() == QEvent::ShortcutOverride &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape && text() != committed_) {
        event->accept();
        return true;
    }
    return QLineEdit::event(event);
}

void MxLineEdit::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && Restore()) {
        event->accept();
        return;
    }
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        Commit();
    QLineEdit::keyPressEvent(event);
}

void MxLineEdit::focusOutEvent(QFocusEvent* event)
{
    QLineEdit::focusOutEvent(event);
    // A context menu or another window's activation is no leaving of the field.
    if (event->reason() != Qt::PopupFocusReason)
        Commit();
}

void MxLineEdit::OnTextChanged(const QString& text)
{
    if (!error_.isEmpty())
        SetError({});
    if (!isModified())
        committed_ = text;
}

} // namespace Marlox
