#include "system/document/MarloxDoc.h"
#include "workbench/images/ImageFile.h"
#include "workbench/images/Sequence.h"
#include "workbench/samples/Samples.h"

#include <map>
#include <string>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace Marlox::Samples {

namespace {

bool save(MarloxDoc& document, const QString& path, QString* error)
{
    document.SetFrameRange(sequenceFirst, sequenceLast);
    document.SetCurrentTime(sequenceFirst);
    return document.Save(path, error);
}

bool writeDocument(const QString& path, QString* error)
{
    MarloxDoc document;
    Operator* source = document.AddTool("ImageSource", -1, error);
    Operator* grade = source ? document.AddTool("BrightnessContrast", -1, error) : nullptr;
    if (!grade)
        return false;
    source->FindInput("File")->SetValue(Text("dusk.exr"), TimeNone, Input::ReplaceAll);
    return save(document, path, error);
}

struct Setting {
    const char* tool;
    const char* input;
    double value;
};

constexpr Setting settings[] = {
    {"Crop", "Left", 150.0},
    {"Crop", "Bottom", 60.0},
    {"Crop", "Right", 1130.0},
    {"Crop", "Top", 640.0},
    {"Transform", "Size", 0.45},
    {"Transform", "Angle", -8.0},
    {"DropShadow", "OffsetX", 0.025},
    {"DropShadow", "OffsetY", -0.06},
    {"DropShadow", "Softness", 30.0},
    {"ColorGradient", "Behind", 1.0},
    {"ColorGradient", "Shape", 1.0},
    {"ColorGradient", "StartRed", 0.42},
    {"ColorGradient", "StartGreen", 0.4},
    {"ColorGradient", "StartBlue", 0.38},
    {"ColorGradient", "EndRed", 0.04},
    {"ColorGradient", "EndGreen", 0.05},
    {"ColorGradient", "EndBlue", 0.08},
};

/// A curve from the left bottom to the right.
Animation curvedPath()
{
    Animation path;
    path.SetKey(1.0, MakeRef<Point>(0.33, 0.36));
    path.SetKey(16.0, MakeRef<Point>(0.4, 0.68));
    path.SetKey(32.0, MakeRef<Point>(0.66, 0.76));
    path.SetKey(48.0, MakeRef<Point>(0.8, 0.42));
    return path;
}

bool writeOverlays(const QString& path, QString* error)
{
    MarloxDoc document;
    std::map<std::string, Operator*> tools;
    for (const char* type : {"ImageSource", "Crop", "Transform", "DropShadow", "ColorGradient"}) {
        tools[type] = document.AddTool(type, -1, error);
        if (!tools[type])
            return false;
    }
    const auto set = [&tools](const char* tool, const char* input, const Parameter& value) {
        tools[tool]->FindInput(input)->SetValue(value, TimeNone, Input::ReplaceAll);
    };
    set("ImageSource", "File", Text("dusk.exr"));
    for (const Setting& setting : settings)
        set(setting.tool, setting.input, Number(setting.value));
    set("Transform", "Pivot", Point(0.3, 0.32));
    set("ColorGradient", "Start", Point(0.45, 0.75));
    set("ColorGradient", "End", Point(0.98, 0.05));
    tools["Transform"]->FindInput("Centre")->SetAnimation(curvedPath());
    return save(document, path, error);
}

constexpr Setting gradeSettings[] = {
    {"ColorCorrector", "MasterSaturation", 1.15},
    {"ColorCorrector", "ShadowsTintAngle", 0.58},
    {"ColorCorrector", "ShadowsTintLength", 0.35},
    {"ColorCorrector", "HighlightsTintAngle", 0.07},
    {"ColorCorrector", "HighlightsTintLength", 0.25},
    {"ColorCorrector", "MasterKeepMagenta", 0.4},
    {"ColorGain", "Red", 1.1},
    {"ColorGain", "Blue", 0.95},
};

/// The landscape, graded.
bool writeGrade(const QString& path, QString* error)
{
    MarloxDoc document;
    std::map<std::string, Operator*> tools;
    for (const char* type : {"ImageSource", "ColorGain", "ColorCorrector"}) {
        tools[type] = document.AddTool(type, -1, error);
        if (!tools[type])
            return false;
    }
    tools["ImageSource"]->FindInput("File")->SetValue(Text("dusk.exr"), TimeNone,
                                                      Input::ReplaceAll);
    for (const Setting& setting : gradeSettings)
        tools[setting.tool]
            ->FindInput(setting.input)
            ->SetValue(Number(setting.value), TimeNone, Input::ReplaceAll);
    return save(document, path, error);
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
    return write(documentName,
                 [error](const QString& path) { return writeDocument(path, error); }) &&
           write(overlaysName,
                 [error](const QString& path) { return writeOverlays(path, error); }) &&
           write(gradeName, [error](const QString& path) { return writeGrade(path, error); });
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
