#include "workbench/viewer/ViewerBars.h"

#include "system/resources/Resources.h"

#include <algorithm>

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QProgressBar>
#include <QToolButton>

namespace Marlox {

namespace {

constexpr int margin = 8;

QColor lookColor(const char* name, MxColor fallback)
{
    return LookPack::Global().Color(name, fallback).ToQColor();
}

void paintPlate(QWidget& widget, int alpha)
{
    QPainter painter(&widget);
    QColor ground = lookColor("System.PopupColour", {34, 34, 34});
    ground.setAlpha(alpha);
    painter.fillRect(widget.rect(), ground);
}

} // namespace

MessageBar::MessageBar(QWidget* parent) : QWidget(parent)
{
    setObjectName("message");
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void MessageBar::SetText(const QString& text)
{
    text_ = text;
    setAccessibleName(text);
    setVisible(!text.isEmpty());
    update();
}

int MessageBar::HeightFor(int width) const
{
    return fontMetrics()
               .boundingRect(QRect(0, 0, std::max(width - 2 * margin, 50), 10000),
                             Qt::TextWrapAnywhere | Qt::TextWordWrap, text_)
               .height() +
           2 * margin;
}

void MessageBar::paintEvent(QPaintEvent*)
{
    paintPlate(*this, 235);
    QPainter painter(this);
    const QColor color = lookColor("System.ErrorTextColour", {255, 140, 140});
    painter.fillRect(QRect(0, height() - 1, width(), 1), color);
    painter.setPen(color);
    painter.drawText(rect().adjusted(margin, margin, -margin, -margin),
                     Qt::TextWrapAnywhere | Qt::TextWordWrap, text_);
}

ProgressPlate::ProgressPlate(QWidget* parent)
    : QWidget(parent), tool_(new QLabel), bar_(new QProgressBar), cancel_(new QToolButton)
{
    setObjectName("progress");
    setCursor(Qt::ArrowCursor);
    bar_->setRange(0, 1000);
    bar_->setTextVisible(false);
    bar_->setFixedHeight(4);
    cancel_->setObjectName("cancel");
    cancel_->setText(tr("Cancel"));
    cancel_->setFocusPolicy(Qt::NoFocus);
    connect(cancel_, &QToolButton::clicked, this, &ProgressPlate::Cancelled);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(margin);
    layout->addWidget(tool_);
    layout->addWidget(bar_, 1);
    layout->addWidget(cancel_);
    hide();
}

void ProgressPlate::Show(const QString& toolName, double fraction)
{
    tool_->setText(tr("Rendering %1").arg(toolName));
    bar_->setValue(int(fraction * bar_->maximum()));
    show();
}

void ProgressPlate::paintEvent(QPaintEvent*)
{
    paintPlate(*this, 235);
}

} // namespace Marlox
