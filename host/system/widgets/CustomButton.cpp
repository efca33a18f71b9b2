#include "system/widgets/CustomButton.h"

#include "system/resources/Resources.h"
#include "system/widgets/WidgetAccess_p.h"
#include "system/widgets/WidgetLook_p.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStyleOption>

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
    QStyleOptionButton option;
    option.initFrom(this);
    option.features = QStyleOptionButton::Flat;
    option.state |= isDown() ? QStyle::State_Sunken : QStyle::State_Raised;
    option.state.setFlag(QStyle::State_On, isChecked());
    if (!text().isEmpty())
        option.features = QStyleOptionButton::None; // words alone would not look like a button
    style()->drawPrimitive(QStyle::PE_PanelButtonCommand, &option, &painter, this);

    const QSize bitmap = BitmapSize(normal_);
    const int words = fontMetrics().size(Qt::TextShowMnemonic, text()).width();
    const int beside = bitmap.isEmpty() || text().isEmpty() ? 0 : gap;
    int x = (width() - bitmap.width() - beside - words) / 2;
    if (!bitmap.isEmpty()) {
        const bool highlight = isEnabled() && (underMouse() || isDown() || isChecked());
        painter.setOpacity(isEnabled() ? 1.0 : 0.35);
        painter.drawPixmap(
            x, (height() - bitmap.height()) / 2,
            ResDIB::PixmapOf(highlight ? highlighted_ : normal_, devicePixelRatioF()));
        painter.setOpacity(1.0);
        x += bitmap.width() + beside;
    }
    const auto group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    painter.setPen(palette().color(group, QPalette::ButtonText));
    const int mnemonic = style()->styleHint(QStyle::SH_UnderlineShortcut, &option, this)
                             ? int(Qt::TextShowMnemonic)
                             : int(Qt::TextHideMnemonic);
    painter.drawText(QRect(x, 0, width() - x, height()),
                     int(Qt::AlignLeft | Qt::AlignVCenter) | mnemonic, text());
    if (hasFocus())
        WidgetLook::DrawFocusRing(painter, rect());
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
