#include "workbench/ui/ReadOut.h"

#include "system/resources/Resources.h"
#include "workbench/viewer/ViewerWidget.h"

#include <cmath>

#include <QAccessible>
#include <QApplication>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

namespace Marlox {

namespace {

constexpr int margin = 8;
constexpr int swatchSide = 16;
constexpr int gap = 12; // between columns

QString valueText(float value)
{
    const double wide = double(value);
    const bool plain = !std::isfinite(wide) || std::abs(wide) < 1000.0;
    return plain ? QString::number(wide, 'f', 4) : QString::number(wide, 'g', 5);
}

QString text(const MxRect& rect)
{
    return ReadOut::tr("%1 × %2").arg(rect.Width()).arg(rect.Height());
}

} // namespace

ReadOut::ReadOut(ViewerWidget& viewer, QWidget* parent)
    : QWidget(parent), viewer_(viewer),
      format_(new QLabel), columns_{{"x", 5, {}}, {"y", 5, {}}, {"R", 9, {}},
                                    {"G", 9, {}}, {"B", 9, {}}, {"A", 9, {}}}
{
    setObjectName("readout");
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPixelSize(11);
    setFont(font);
    format_->setObjectName("imageformat");
    format_->setFont(QApplication::font());

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(margin, 0, margin, 0);
    row->addStretch();
    row->addWidget(format_);
    setFixedHeight(24);

    connect(&viewer_, &ViewerWidget::ProbeChanged, this, &ReadOut::ShowProbe);
    connect(&viewer_, &ViewerWidget::ImageShown, this, &ReadOut::ShowFormat);
}

QString ReadOut::Text() const
{
    QStringList parts;
    for (const Column& column : columns_) {
        if (!column.text.isEmpty())
            parts << QString("%1 %2").arg(QLatin1String(column.name), column.text);
    }
    return parts.join("  ");
}

void ReadOut::ShowProbe(const Probe& probe)
{
    swatch_ = probe.hasPixel ? probe.shown : QColor();
    columns_[0].text = probe.inView ? QString::number(probe.x) : QString();
    columns_[1].text = probe.inView ? QString::number(probe.y) : QString();
    for (std::size_t i = 0; i < probe.rgba.size(); ++i)
        columns_[i + 2].text = probe.hasPixel ? valueText(probe.rgba[i]) : QString();
    if (QAccessible::isActive()) // this is the path of every move of the pointer
        setAccessibleName(tr("Under the pointer: %1").arg(Text()));
    update();
}

void ReadOut::ShowFormat()
{
    if (!viewer_.ShownImage()) {
        format_->clear();
        format_->setToolTip({});
        return;
    }
    const Image::Format& format = viewer_.ShownImage()->GetFormat();
    const QString whole = text(viewer_.View().DisplayWindow());
    format_->setText(format.scale < 1.0
                         ? tr("%1 at 1/%2").arg(whole).arg(std::lround(1.0 / format.scale))
                         : whole);
    const MxRect& data = format.dataWindow;
    format_->setToolTip(tr("Pixel aspect %1, pixels stored: %2 from %3, %4")
                            .arg(format.pixelAspect)
                            .arg(text(data))
                            .arg(data.left)
                            .arg(data.top));
}

/// Each value has its place, so that nothing moves sideways under the cursor.
void ReadOut::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const LookPack& look = LookPack::Global();
    const QRect square(margin, (height() - swatchSide) / 2, swatchSide, swatchSide);
    if (swatch_.isValid()) {
        painter.fillRect(square, look.Color("System.BorderColour", {20, 20, 20}).ToQColor());
        painter.fillRect(square.adjusted(1, 1, -1, -1), swatch_);
    }
    const int digit = fontMetrics().horizontalAdvance(QLatin1Char('0'));
    int x = square.right() + 1 + margin;
    for (const Column& column : columns_) {
        const QRect place(x, 0, digit * (column.digits + 1), height());
        x = place.right() + 1 + gap;
        if (column.text.isEmpty() || place.right() > format_->x())
            continue;
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter, QLatin1String(column.name));
        painter.setPen(palette().color(QPalette::ButtonText));
        painter.drawText(place, Qt::AlignRight | Qt::AlignVCenter, column.text);
    }
}

} // namespace Marlox
