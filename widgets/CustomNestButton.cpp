#include "widgets/CustomNestButton.h"

#include "system/resources/Resources.h"

#include <QPainter>

namespace Marlox {

void CustomNestButton::Show(bool open, State state)
{
    if (open == open_ && state == state_)
        return;
    open_ = open;
    state_ = state;
    update();
}

QByteArray CustomNestButton::Bitmap() const
{
    return "Controls.Nest.Button." + QByteArray::number(open_ ? 2 : 1) + '.' +
           QByteArray::number(int(state_));
}

QSize CustomNestButton::sizeHint() const
{
    return ResDIB::SizeOf(Bitmap());
}

void CustomNestButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QSize size = sizeHint();
    painter.drawPixmap((width() - size.width()) / 2, (height() - size.height()) / 2,
                       ResDIB::PixmapOf(Bitmap(), devicePixelRatioF()));
}

} // namespace Marlox
