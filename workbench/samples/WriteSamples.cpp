#include "system/document/MarloxDoc.h"
#include "workbench/images/ImageFile.h"
#include "workbench/images/Sequence.h"
#include "workbench/samples/Samples.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace Marlox::Samples {

namespace {

bool writeDocument(const QString& path, QString* error)
{
    MarloxDoc document;
    Operator* source = document.AddTool("ImageSource", -1, error);
    Operator* grade = source ? document.AddTool("BrightnessContrast", -1, error) : nullptr;
    if (!grade)
        return false;
    source->FindInput("File")->SetValue(Text("dusk.exr"), TimeNone, Input::ReplaceAll);
    document.SetFrameRange(sequenceFirst, sequenceLast);
    document.SetCurrentTime(sequenceFirst);
    return document.Save(path, error);
}

} // namespace

bool WriteAll(const QString& folder, bool anew, const std::function<void(const QString&)>& tell,
              QString* error)
{
    const auto write = [&](const QString& name, auto make) {
        const QString path = QDir(folder).filePath(name);
        if (!anew && QFileInfo::exists(path))
            return true;
        if (!make(path))
            return false;
        tell(path);
        return true;
    };
    const auto picture = [error](auto paint) {
        return [paint, error](const QString& path) {
            return WriteImage(*paint(), path, error, {.halfFloat = true});
        };
    };
    if (!write("dusk.exr", picture(DuskLandscape)) || !write("chart.exr", picture(Chart)))
        return false;
    const Sequence frames = Sequence::FromPattern(sequencePattern);
    for (int frame = sequenceFirst; frame <= sequenceLast; ++frame) {
        if (!write(frames.FramePath(frame), picture([frame] { return BalloonFrame(frame); })))
            return false;
    }
    return write(documentName, [error](const QString& path) { return writeDocument(path, error); });
}

QString Folder()
{
    const QDir program(QCoreApplication::applicationDirPath());
    for (const char* place : {"../samples", MARLOX_SAMPLES_PATH}) {
        const QString folder = QDir::cleanPath(program.filePath(place));
        if (QFileInfo(QDir(folder).filePath(documentName)).isFile())
            return folder;
    }
    return {};
}

} // namespace Marlox::Samples
