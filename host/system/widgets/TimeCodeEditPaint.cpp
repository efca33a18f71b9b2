// The field as it is drawn while nobody types in it.
#include "system/widgets/TimeCodeEdit_p.h"
#include "system/widgets/WidgetLook_p.h"

#include <QPainter>
#include <QPixmapCache>
#include <QStyle>

namespace Marlox {

namespace {

constexpr int lineEditMargin = 2; // what a QLineEdit keeps beside its text, pixels

/// The style's panel of a line edit, kept for the next field of that size and state: styles draw
/// it in a multiple of the time that all the rest takes.
QPixmap PanelOf(const QStyleOptionFrame& frame, const QWidget& field)
{
    const double ratio = field.devicePixelRatioF();
    const QString key =
        QString::asprintf("Marlox::TimeCodeEdit %p %llx %x %dx%d %g",
                          static_cast<const void*>(field.style()), frame.palette.cacheKey(),
                          unsigned(frame.state), frame.rect.width(), frame.rect.height(), ratio);
    QPixmap panel;
    if (QPixmapCache::find(key, &panel))
        return panel;
    panel = QPixmap(frame.rect.size() * ratio);
    panel.setDevicePixelRatio(ratio);
    panel.fill(Qt::transparent);
    QPainter painter(&panel);
    field.style()->drawPrimitive(QStyle::PE_PanelLineEdit, &frame, &painter, &field);
    painter.end();
    QPixmapCache::insert(key, panel);
    return panel;
}

} // namespace

void TimeCodeEdit::paintEvent(QPaintEvent*)
{
    if (d_->editor)
        return; // it covers the field, frame and all
    QPainter painter(this);
    const QStyleOptionFrame frame = d_->Frame();
    painter.drawPixmap(0, 0, PanelOf(frame, *this));
    const QColor ink = frame.palette.color(QPalette::Text);
    painter.setPen(IsUnreadable() ? WidgetLook::ErrorText()
                   : d_->readOnly ? WidgetLook::Mix(frame.palette.color(QPalette::Base), ink, 0.75)
                                  : ink);
    painter.drawText(d_->TextRect(frame),
                     int(d_->alignment & Qt::AlignHorizontal_Mask) | int(Qt::TextSingleLine),
                     d_->ShownText(frame));
}

QStyleOptionFrame TimeCodeEdit::Private::Frame() const
{
    QStyleOptionFrame frame;
    frame.initFrom(&field);
    frame.lineWidth = field.style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &frame, &field);
    frame.midLineWidth = 0;
    frame.state |= QStyle::State_Sunken;
    frame.state.setFlag(QStyle::State_ReadOnly, readOnly);
    return frame;
}

QRect TimeCodeEdit::Private::TextRect(const QStyleOptionFrame& frame) const
{
    const QRect area = field.style()
                           ->subElementRect(QStyle::SE_LineEditContents, &frame, &field)
                           .adjusted(lineEditMargin, 0, -lineEditMargin, 0);
    // To the pixel where a line edit has it: the text must not jump when one opens.
    const int height = frame.fontMetrics.height();
    return {area.x(), area.y() + (area.height() - height + 1) / 2, area.width(), height};
}

QString TimeCodeEdit::Private::ShownText(const QStyleOptionFrame& frame) const
{
    const int room = TextRect(frame).width();
    const QFontMetrics& metrics = frame.fontMetrics;
    if (typed || !expression.isEmpty())
        return metrics.elidedText(text, Qt::ElideRight, room);
    // No character of a number is wider than a zero: the usual case needs no measuring.
    const auto fits = [&metrics, room,
                       zero = metrics.horizontalAdvance(u'0')](const QString& shown) {
        return shown.size() * zero <= room || metrics.horizontalAdvance(shown) <= room;
    };
    const QString shown = entry.ShortText(text, fits);
    return fits(shown) ? shown : metrics.elidedText(shown, Qt::ElideRight, room);
}

QString TimeCodeEdit::Private::HiddenText() const
{
    if (typed || !expression.isEmpty())
        return ShownText(Frame()) != text ? text : QString();
    NumberEntry whole = entry;
    whole.precision = -1;
    const QString full = whole.Text();
    return (editor ? text : ShownText(Frame())) != full ? full : QString();
}

} // namespace Marlox
