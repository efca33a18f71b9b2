#include "system/widgets/Container.h"

#include <QEvent>
#include <QVBoxLayout>

namespace Marlox {

Container::Container(QWidget* parent) : QWidget(parent)
{
    auto* stack = new QVBoxLayout(this);
    stack->setContentsMargins(0, 0, 0, 0);
    stack->setSpacing(0);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    setSizePolicy(policy);
}

void Container::AddWidget(QWidget* widget)
{
    if (!widget)
        return;
    layout()->removeWidget(widget);
    layout()->addWidget(widget);
}

void Container::RemoveWidget(QWidget* widget)
{
    if (!widget || layout()->indexOf(widget) < 0)
        return;
    layout()->removeWidget(widget);
    widget->hide();
}

void Container::SetSpacing(int pixels)
{
    layout()->setSpacing(pixels);
}

bool Container::event(QEvent* event)
{
    const bool handled = QWidget::event(event);
    if (event->type() == QEvent::LayoutRequest) {
        const int height = sizeHint().height();
        if (height != lastHeight_) {
            lastHeight_ = height;
            emit HeightChanged(height);
        }
    }
    return handled;
}

} // namespace Marlox
