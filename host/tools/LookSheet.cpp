// Draws every bitmap of a look pack, with its name, at 1x and 2x, for the eye of whoever works on
// it.
//   marlox-look-sheet <look pack> <picture.png> [part of the names]

#include "script/ScriptSystem.h"
#include "system/resources/Resources.h"

#include <cstdio>

#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>

using namespace Marlox;

namespace {

constexpr int columnWidth = 300;
constexpr int columnHeight = 1180;
constexpr int gap = 8;

struct Place {
    QByteArray name;
    QRect cell;
};

/// Columns of cells, each high enough for its bitmap.
std::vector<Place> Arrange(const QStringList& names, QSize& whole)
{
    std::vector<Place> places;
    int x = 0;
    int y = gap;
    for (const QString& name : names) {
        const QByteArray key = name.toLatin1();
        const int height = std::max(16, ResDIB::SizeOf(key).height()) + gap;
        if (y + height > columnHeight) {
            x += columnWidth;
            y = gap;
        }
        places.push_back({key, QRect(x, y, columnWidth, height)});
        y += height;
    }
    whole = QSize(x + columnWidth, columnHeight);
    return places;
}

QImage Draw(const std::vector<Place>& places, QSize whole, double ratio)
{
    QImage sheet(whole * ratio, QImage::Format_RGB32);
    sheet.setDevicePixelRatio(ratio);
    sheet.fill(LookPack::Global().Color("System.WindowColour", {41, 41, 41}).ToQColor());
    QPainter painter(&sheet);
    QFont font;
    font.setPixelSize(11);
    painter.setFont(font);
    painter.setPen(QColor(190, 190, 190));
    for (const Place& place : places) {
        const QSize size = ResDIB::SizeOf(place.name);
        painter.drawPixmap(place.cell.topLeft() + QPoint(gap, 0),
                           ResDIB::PixmapOf(place.name, ratio));
        painter.drawText(place.cell.adjusted(gap * 2 + std::max(24, size.width()), 0, 0, -gap),
                         Qt::AlignVCenter | Qt::AlignLeft, QString::fromLatin1(place.name));
    }
    return sheet;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s <look pack> <picture.png> [part of the names]\n", argv[0]);
        return 2;
    }
    const QGuiApplication application(argc, argv);
    InstallScripting();
    QString error;
    if (!LookPack::Global().Use(QFile::decodeName(argv[1]), &error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }
    QStringList names;
    const QDir bitmaps(LookPack::Global().Folder() + QStringLiteral("/bitmaps"));
    for (const QString& file : bitmaps.entryList({QStringLiteral("*.svg")}, QDir::Files)) {
        if (argc < 4 || file.contains(QString::fromLocal8Bit(argv[3]))) {
            names << file.chopped(4);
        }
    }
    QSize whole;
    const auto places = Arrange(names, whole);
    bool written = true;
    for (const int ratio : {1, 2}) {
        QString path = QFile::decodeName(argv[2]);
        path.insert(path.lastIndexOf(QLatin1Char('.')), QStringLiteral("@%1x").arg(ratio));
        written &= Draw(places, whole, ratio).save(path);
    }
    for (const QString& problem : LookPack::Global().TakeProblems()) {
        std::fprintf(stderr, "%s\n", qPrintable(problem));
    }
    return written ? 0 : 1;
}
