#pragma once

#include "system/shapes/import/ImportPolyLines.h"

#include <QDir>
#include <QFile>
#include <QStringList>

namespace Marlox {

inline QString shapeFixtureFolder()
{
    return QStringLiteral(MARLOX_SOURCE_DIR "/tests/fixtures/shapes/");
}

inline QByteArray fileBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// An image of 200 x 100 and 24 frames a second.
inline ImportContext smallImage()
{
    ImportContext context;
    context.width = 200.0;
    context.height = 100.0;
    return context;
}

inline QString shortNumber(double value)
{
    const QString text = QString::number(value, 'g', 5);
    return text == QStringLiteral("-0") ? QStringLiteral("0") : text;
}

inline const char* interpolationName(Interpolation interpolation)
{
    constexpr const char* names[] = {"step", "linear", "smooth"};
    return names[int(interpolation)];
}

/// Everything of a result as text, line by line; points as "x,y" with what is set behind them.
inline QStringList keyLines(const char* what, const std::vector<ImportedKey>& keys)
{
    QStringList out;
    for (const ImportedKey& key : keys) {
        QString line = QStringLiteral("  %1 %2 %3:")
                           .arg(QLatin1String(what), shortNumber(key.time),
                                interpolationName(key.interpolation));
        for (const PolyPoint& point : key.points) {
            const auto pair = [](double x, double y) {
                return shortNumber(x) + ',' + shortNumber(y);
            };
            line += ' ' + pair(point.x, point.y);
            if (point.inX != 0.0 || point.inY != 0.0)
                line += QStringLiteral(" in ") + pair(point.inX, point.inY);
            if (point.outX != 0.0 || point.outY != 0.0)
                line += QStringLiteral(" out ") + pair(point.outX, point.outY);
            if (point.Has(PPF_Linear))
                line += QStringLiteral(" corner");
            if (point.Has(PPF_Broken))
                line += QStringLiteral(" broken");
            line += ';';
        }
        out << line;
    }
    return out;
}

inline QStringList shapeLines(const ImportedShape& shape)
{
    constexpr const char* kinds[] = {"bezier", "bspline", "cardinal"};
    QString line =
        QStringLiteral("shape %1 \"%2\" %3, line %4")
            .arg(QLatin1String(kinds[int(shape.kind)]), QString::fromStdString(shape.name),
                 shape.closed ? QStringLiteral("closed") : QStringLiteral("open"))
            .arg(shape.line);
    const auto flag = [&](const char* name, std::optional<bool> value) {
        if (value)
            line += QStringLiteral(", %1 %2").arg(QLatin1String(name)).arg(int(*value));
    };
    flag("visible", shape.visible);
    flag("locked", shape.locked);
    flag("inverted", shape.inverted);
    if (!shape.combine.empty())
        line += QStringLiteral(", ") + QString::fromStdString(shape.combine);
    for (const ImportedNumber& opacity : shape.opacity) {
        line += QStringLiteral(", opacity %1 %2 %3")
                    .arg(shortNumber(opacity.time), shortNumber(opacity.value),
                         interpolationName(opacity.interpolation));
    }
    return QStringList(line) + keyLines("key", shape.keys) + keyLines("outer", shape.outerKeys);
}

inline QStringList resultLines(const ImportedShapes& result)
{
    QStringList out;
    for (const ImportedShape& shape : result.shapes)
        out += shapeLines(shape);
    for (const ImportedPath& path : result.paths) {
        QString line = QStringLiteral("path \"%1\", line %2:")
                           .arg(QString::fromStdString(path.name))
                           .arg(path.line);
        for (const ImportedPathKey& key : path.keys) {
            line += QStringLiteral(" %1 %2,%3 %4;")
                        .arg(shortNumber(key.time), shortNumber(key.x), shortNumber(key.y),
                             interpolationName(key.interpolation));
        }
        out << line;
    }
    for (const ImportNote& note : result.notes) {
        const bool isAssumed = note.kind == ImportNote::Kind::Assumed;
        out << (isAssumed ? QStringLiteral("assumed ") : QStringLiteral("aside ")) +
                   QString::fromStdString(result.Message(note));
    }
    if (result.error)
        out << QStringLiteral("error ") + QString::fromStdString(result.Message(*result.error));
    return out;
}

} // namespace Marlox
