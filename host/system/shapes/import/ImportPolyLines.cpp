#include "system/shapes/import/ImportPolyLines.h"

#include "system/shapes/import/FxsFile_p.h"
#include "system/shapes/import/ImportJob_p.h"
#include "system/shapes/import/ImportText_p.h"
#include "system/shapes/import/NativeShapeFiles.h"

#include <QFile>
#include <QFileInfo>

namespace Marlox {

namespace {

/// One row for each format: how it is told by its first word, and who reads it.
struct FormatRow {
    ShapeFileFormat format;
    const char* firstWord; // nullptr: it has no such word
    void (*read)(ImportJob& job);
};

constexpr FormatRow formats[] = {
    {ShapeFileFormat::LightWave, "LWMO", ReadLightWaveMotion},
    {ShapeFileFormat::Motion, nativeMotionMagic, ReadNativeMotion},
    {ShapeFileFormat::Shape, nativeShapeMagic, ReadNativeShape},
    {ShapeFileFormat::Ssf, "shake_shape_data", ReadSsfShapes},
    {ShapeFileFormat::Fxs, nullptr, ReadFxsShapes},
    {ShapeFileFormat::Nuke, nullptr, ReadNukeShapes},
    {ShapeFileFormat::PathText, nullptr, ReadPathText},
};

/// XML in any encoding, or packed.
bool LooksLikeFxs(const QByteArray& bytes)
{
    for (const char c : bytes.left(16)) {
        if (c == '<')
            return true;
        const bool mayPrecede = c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\0' ||
                                (c & 0x80) != 0; // byte order marks
        if (!mayPrecede)
            break;
    }
    return IsPackedFxs(bytes);
}

/// A line that begins a roto node or a script's settings.
bool LooksLikeNuke(std::string_view text)
{
    TextLines lines(text.substr(0, 64 * 1024));
    while (lines.NextFilled()) {
        const bool isNode = lines.Count() == 2 && lines.Field(1) == "{";
        if (isNode || lines.Field(0) == "cut_paste_input" || lines.Line().starts_with("#! /"))
            return true;
        if (lines.Line().starts_with("set cut_paste_input"))
            return true;
    }
    return false;
}

ShapeFileFormat Detected(ImportJob& job)
{
    if (LooksLikeFxs(job.Bytes()))
        return ShapeFileFormat::Fxs;
    TextLines lines(job.Text());
    if (!lines.NextFilled())
        throw ImportFailure{0, "it is empty", true};
    for (const FormatRow& row : formats) {
        if (row.firstWord && lines.Field(0) == row.firstWord)
            return row.format;
    }
    return LooksLikeNuke(job.Text()) ? ShapeFileFormat::Nuke : ShapeFileFormat::PathText;
}

void Read(ImportJob& job, ShapeFileFormat format)
{
    if (job.Bytes().isEmpty())
        throw ImportFailure{0, "it is empty", true};
    if (job.Bytes().size() > maxImportFileSize)
        throw ImportFailure{0, "it is larger than 64 MB", true};
    if (format == ShapeFileFormat::Any)
        format = Detected(job);
    for (const FormatRow& row : formats) {
        if (row.format == format)
            row.read(job);
    }
    if (!job.Result().shapes.empty() || !job.Result().paths.empty())
        return;
    if (job.Dropped())
        throw *job.Dropped();
    for (const ImportNote& note : job.Result().notes) {
        if (note.kind == ImportNote::Kind::LeftAside)
            throw ImportFailure{note.line, note.text, true};
    }
    throw ImportFailure{0, "it holds no shapes and no paths", true};
}

} // namespace

std::string ImportedShapes::Message(const ImportNote& note) const
{
    const std::string place = note.line > 0 ? ", line " + std::to_string(note.line) : "";
    return file + place + ": " + note.text;
}

bool ImportPolyLines(const QByteArray& bytes, const QString& name, ShapeFileFormat format,
                     const ImportContext& context, ImportedShapes& result)
{
    result = {};
    result.file = name.toStdString();
    ImportJob job(bytes, context, result);
    try {
        Read(job, format);
        return true;
    } catch (const ImportFailure& failure) {
        result.shapes.clear();
        result.paths.clear();
        result.error = ImportNote{ImportNote::Kind::LeftAside, failure.line, failure.reason};
        return false;
    }
}

bool ImportPolyLines(const QString& path, ShapeFileFormat format, const ImportContext& context,
                     ImportedShapes& result)
{
    const QString name = QFileInfo(path).fileName();
    const auto refuse = [&](const QString& reason) {
        result = {};
        result.file = name.toStdString();
        result.error = ImportNote{ImportNote::Kind::LeftAside, 0, reason.toStdString()};
        return false;
    };
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return refuse(QStringLiteral("it can't be read: ") + file.errorString());
    const QByteArray bytes =
        file.read(maxImportFileSize + 1); // one more tells that it is too large
    if (bytes.isEmpty() && file.error() != QFile::NoError)
        return refuse(QStringLiteral("it can't be read: ") + file.errorString());
    return ImportPolyLines(bytes, name, format, context, result);
}

} // namespace Marlox
