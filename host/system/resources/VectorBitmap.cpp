#include "system/resources/VectorBitmap.h"

#include <cmath>
#include <string_view>

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>
#include <QXmlStreamReader>

namespace Marlox {

namespace {

/// Reads through the whole text, because the renderer takes broken drawings as far as they go and
/// says nothing about where they end. Empty: well formed.
QString FindFault(const QByteArray& text)
{
    QXmlStreamReader reader(text);
    bool first = true;
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement || !first) {
            continue;
        }
        first = false;
        if (reader.name() != QLatin1String("svg")) {
            return QStringLiteral("line %1: the outermost element is <%2>, not <svg>")
                .arg(reader.lineNumber())
                .arg(reader.name());
        }
        for (const char* extent : {"width", "height"}) {
            if (!reader.attributes().hasAttribute(QLatin1String(extent))) {
                return QStringLiteral("line %1: <svg> has no %2")
                    .arg(reader.lineNumber())
                    .arg(QLatin1String(extent));
            }
        }
    }
    if (reader.hasError()) {
        return QStringLiteral("line %1: %2").arg(reader.lineNumber()).arg(reader.errorString());
    }
    return {};
}

QPixmap TransparentPixmap(QSize size, double ratio)
{
    QPixmap pixmap(int(std::lround(size.width() * ratio)), int(std::lround(size.height() * ratio)));
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    return pixmap;
}

struct UsableSize {
    std::string_view part; // of the name
    int width;
    int height;
};

// The first row whose text the name contains counts.
constexpr UsableSize usableSizes[] = {
    {"Slider.Knob", 9, 15},
    {"Color.Knob", 9, 15},
    {"Slider.Track", 33, 13},
    {"Slider.Reset", 7, 7},
    {"Screw.Frame", 96, 17},
    {"Screw.Grip", 8, 13},
    {"Screw.Reset", 7, 7},
    {"Range.Track", 33, 13},
    {"Range.Normal", 33, 13},
    {"Range.Cap", 7, 13},
    {"ColorWheel.Wheel", 200, 200},
    {"Suppression.Wheel", 180, 180},
    {"Chequer", 16, 16},
    {"Gradient.Delete", 16, 16},
    {"LevelsOutput.Gradient", 33, 13},
    {"Levels", 11, 9},
    {"Node", 9, 9},
    {"Workbench.Application", 64, 64},
    {"Icons.Polyline", 20, 20},
    {"PickButton", 20, 20},
    {"Histogram.", 20, 20},
};

} // namespace

VectorBitmap::VectorBitmap() = default;
VectorBitmap::~VectorBitmap() = default;
VectorBitmap::VectorBitmap(VectorBitmap&&) noexcept = default;
VectorBitmap& VectorBitmap::operator=(VectorBitmap&&) noexcept = default;

bool VectorBitmap::Load(const QString& path, QString* error)
{
    QFile file(path);
    QString fault;
    QByteArray text;
    if (file.open(QIODevice::ReadOnly)) {
        text = file.readAll();
        fault = FindFault(text);
    } else {
        fault = file.errorString();
    }
    if (fault.isEmpty()) {
        auto renderer = std::make_unique<QSvgRenderer>();
        if (!renderer->load(text)) {
            fault = QStringLiteral("this is no drawing that can be shown");
        } else if (const QSize size = renderer->defaultSize();
                   size.isEmpty() || size.width() > maxExtent || size.height() > maxExtent) {
            fault = QStringLiteral("width and height must be from 1 to %1").arg(maxExtent);
        } else {
            renderer_ = std::move(renderer);
            size_ = size;
            return true;
        }
    }
    if (error) {
        *error = fault;
    }
    return false;
}

QPixmap VectorBitmap::Rasterise(double devicePixelRatio) const
{
    QPixmap pixmap = TransparentPixmap(size_, devicePixelRatio);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer_->render(&painter, QRectF(QPointF(), QSizeF(pixmap.size()) / devicePixelRatio));
    return pixmap;
}

QPixmap DrawPlaceholder(QSize size, double devicePixelRatio)
{
    QPixmap pixmap = TransparentPixmap(size, devicePixelRatio);
    QPainter painter(&pixmap);
    painter.fillRect(QRect(QPoint(), size), QColor(24, 24, 24));
    painter.fillRect(QRect(QPoint(), size).adjusted(1, 1, -1, -1), QColor(150, 150, 150));
    return pixmap;
}

QSize PlaceholderSize(const char* name)
{
    for (const UsableSize& row : usableSizes) {
        if (std::string_view(name).find(row.part) != std::string_view::npos) {
            return {row.width, row.height};
        }
    }
    return {16, 16};
}

} // namespace Marlox
