#include "system/widgets/CustomButton.h"

#include "system/resources/Resources.h"
#include "system/widgets/WidgetAccess.h"
#include "system/widgets/WidgetLook.h"

#include <QKeyEvent>
#include <QPainter>

namespace Marlox {

namespace {

constexpr int padding = 8;     // beside the content, pixels
constexpr int gap = 6;         // between bitmap and text
constexpr int lineHeight = 24; // of a button with a text

QSize BitmapSize(const QByteArray& name)
{
    return name.isEmpty()                                         ? QSize(0, 0)
           : LookPack::Global().Has(Resource::Kind::Bitmap, name) ? ResDIB::SizeOf(name)
                                                                  : QSize(0, 0);
}

} // namespace

CustomButton::CustomButton(QWidget* parent) : CustomButton(QString(), parent) {}

CustomButton::CustomButton(const QString& text, QWidget* parent) : QAbstractButton(parent)
{
    setText(text);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
    WidgetAccess::Install();
}

void CustomButton::SetBitmaps(const QByteArray& normal, const QByteArray& highlighted)
{
    normal_ = normal;
    highlighted_ = highlighted.isEmpty() ? normal : highlighted;
    updateGeometry();
    update();
}

QSize CustomButton::sizeHint() const
{
    const QSize bitmap = BitmapSize(normal_);
    if (text().isEmpty())
        return bitmap.isEmpty() ? QSize(lineHeight, lineHeight) : bitmap + QSize(4, 4);
    const int words = fontMetrics().size(Qt::TextShowMnemonic, text()).width();
    const int picture = bitmap.isEmpty() ? 0 : bitmap.width() + gap;
    return {words + picture + 2 * padding, std::max(lineHeight, bitmap.height() + 4)};
}

QSize CustomButton::minimumSizeHint() const
{
    return sizeHint();
}

void CustomButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const bool hot = isEnabled() && underMouse();
    const bool on = isDown() || isChecked();
    const QColor ink = WidgetLook::Text(*this);
    const QColor ground = palette().color(QPalette::Button);
    const QRect area = rect();
    if (!text().isEmpty() || normal_.isEmpty()) {
        const double lift = on ? 0.22 : hot ? 0.12 : 0.06;
        painter.fillRect(area, WidgetLook::Mix(ground, ink, lift));
    }
    const QSize bitmap = BitmapSize(normal_);
    const int words = fontMetrics().size(Qt::TextShowMnemonic, text()).width();
    int x = text().isEmpty()
                ? (width() - bitmap.width()) / 2
                : (width() - words - (bitmap.isEmpty() ? 0 : bitmap.width() + gap)) / 2;
    if (!bitmap.isEmpty()) {
        const QByteArray& name = hot || on ? highlighted_ : normal_;
        painter.setOpacity(isEnabled() ? 1.0 : 0.4);
        painter.drawPixmap(x, (height() - bitmap.height()) / 2,
                           ResDIB::PixmapOf(name, devicePixelRatioF()));
        painter.setOpacity(1.0);
        x += bitmap.width() + gap;
    }
    painter.setPen(ink);
    painter.drawText(QRect(x, 0, width() - x, height()),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextShowMnemonic, text());
    if (hasFocus())
        WidgetLook::DrawFocusRing(painter, area);
}

void CustomButton::keyPressEvent(QKeyEvent* event)
{
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) &&
        !event->isAutoRepeat()) {
        click();
        return;
    }
    QAbstractButton::keyPressEvent(event);
}

} // namespace Marlox
