// Reading shapes and motions from files.

#include "controls/polyline/PolyImport.h"

#include "controls/polyline/PolyCommands.h"
#include "controls/polyline/PolyLineControl.h"
#include "controls/polyline/PolyValuesDlg.h"
#include "system/controls/HostDialogs.h"
#include "system/document/MarloxDoc.h"
#include "system/shapes/import/ImportPolyLines.h"

#include <cmath>

#include <QApplication>

namespace Marlox {

namespace {

struct ImportKind {
    const char* title;
    const char* filter;
    ShapeFileFormat format;
    const char* undoText;
};

constexpr char motionText[] = "Import motion path";
/// Behind each filter, for names that other programs give their files.
constexpr char allFiles[] = "All Files (*)|*||";

constexpr ImportKind lightWave{"Import LightWave MOT", "Polyline Files (*.mot)|*.mot||",
                               ShapeFileFormat::LightWave, motionText};
constexpr ImportKind motionPath{
    "Import Motion Path",
    "Polyline Files (*.mot)|*.mot|Polyline Files (*.txt)|*.txt|Polyline Files (*.dfmo)|*.dfmo||",
    ShapeFileFormat::Any, motionText};
constexpr ImportKind boujou{"Import Boujou Path", "Polyline Files (*.txt)|*.txt||",
                            ShapeFileFormat::PathText, motionText};
constexpr ImportKind anyShape{"Import Shape",
                              "Shape Files (*.dfsh;*.dfmo;*.ssf;*.sfx;*.fxs;*.nk;*.nuke)|"
                              "*.dfsh;*.dfmo;*.ssf;*.sfx;*.fxs;*.nk;*.nuke|"
                              "Polyline Files (*.dfsh)|*.dfsh|Polyline Files (*.dfmo)|*.dfmo|"
                              "SSF Shapes (*.ssf)|*.ssf|FXS Shapes (*.fxs;*.sfx)|*.fxs;*.sfx|"
                              "Nuke Scripts (*.nk;*.nuke)|*.nk;*.nuke||",
                              ShapeFileFormat::Any, "Import shape"};
constexpr ImportKind ssf{"Import SSF Shapes", "Polyline Files (*.ssf)|*.ssf||",
                         ShapeFileFormat::Ssf, "Import ssf shape"};
constexpr ImportKind fxs{"Import FXS (Silhouette) Shapes", "Polyline Files (*.fxs)|*.fxs||",
                         ShapeFileFormat::Fxs, "Import fxs shape"};
constexpr ImportKind nuke{"Import Nuke Shapes", "Polyline Files (*.nuke;*.nk)|*.nuke;*.nk||",
                          ShapeFileFormat::Nuke, "Import nuke shape"};

void Warn(const QString& text)
{
    HostDialogs::Get().Message(HostDialogs::Kind::Warning, text);
}

ImportContext ContextOf(const PolyLineControl& control)
{
    ImportContext context;
    if (const PreviewInfo* view = control.View(); view && view->pixelWidth > 0) {
        context.width = view->pixelWidth;
        context.height = view->pixelHeight;
        context.pixelAspect = view->pixelAspect;
    }
    if (const MarloxDoc* document = control.GetDoc()) {
        context.frameRate = document->FrameRate();
        context.startFrame = document->FirstFrame();
    }
    context.stillFrame = control.CurrentTime(); // as if the shape were drawn now
    return context;
}

bool Read(const QString& path, ShapeFileFormat format, const ImportContext& context,
          ImportedShapes& file)
{
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const bool read = ImportPolyLines(path, format, context, file);
    QApplication::restoreOverrideCursor();
    return read;
}

/// Asks what a file leaves open, each thing once. What is answered goes into the context.
class OpenQuestions {
public:
    OpenQuestions(ImportContext& context, QString title)
        : context_(context), title_(std::move(title))
    {
    }

    enum class Outcome { NothingOpen, Answered, Cancelled };
    Outcome Ask(const ImportedShapes& file)
    {
        struct Question {
            bool isOpen;
            bool& isAsked;
            bool (OpenQuestions::*ask)(const ImportedShapes& file);
        };
        const Question questions[] = {
            {file.asksPlainUnit, isUnitAsked_, &OpenQuestions::AskUnit},
            {file.asksImageSize || file.lacksImageSize, isSizeAsked_, &OpenQuestions::AskSize},
            {file.asksFirstFrame, isFrameAsked_, &OpenQuestions::AskFrame}};
        for (const Question& question : questions) {
            if (!question.isOpen || question.isAsked)
                continue;
            question.isAsked = true;
            return (this->*question.ask)(file) ? Outcome::Answered : Outcome::Cancelled;
        }
        return Outcome::NothingOpen;
    }

private:
    std::optional<double> Number(const QString& label, double preset, double low, double high) const
    {
        return HostDialogs::Get().AskNumber({title_, label, preset, low, high, true});
    }

    bool AskUnit(const ImportedShapes& file)
    {
        using Unit = ImportContext::PlainUnit;
        constexpr Unit units[] = {Unit::Normalised, Unit::PixelsUp, Unit::PixelsDown};
        const auto number =
            Number(QStringLiteral("The file does not tell what its numbers count: fractions of the "
                                  "image (1), pixels from its bottom left corner (2) or pixels "
                                  "from its top left corner (3)?"),
                   file.isNormalised ? 1.0 : 2.0, 1.0, 3.0);
        if (number)
            context_.plainUnit = units[int(*number) - 1];
        return number.has_value();
    }

    bool AskSize(const ImportedShapes& file)
    {
        constexpr double largest = 100'000.0;
        const bool isTaken = file.imageWidth > 0.0 && file.imageHeight > 0.0;
        const auto field = [](const char* name, const char* label, double preset) {
            PolyValueField size{name, QLatin1String(label), QStringLiteral("pixels"), {}, preset};
            size.minimum = 1.0;
            size.maximum = largest;
            size.whole = true;
            return size;
        };
        const auto tell = [](const PolyValuesDlg::Values&) {
            return QStringLiteral("The file counts in pixels of its image.");
        };
        PolyValuesDlg dialog(
            title_,
            {field("Width", "Image Width:", isTaken ? std::round(file.imageWidth) : 1920.0),
             field("Height", "Image Height:", isTaken ? std::round(file.imageHeight) : 1080.0)},
            tell);
        if (dialog.exec() != QDialog::Accepted)
            return false;
        context_.width = dialog.GetValues()[0];
        context_.height = dialog.GetValues()[1];
        context_.overrideImageSize = context_.isSizeSure = true;
        return true;
    }

    bool AskFrame(const ImportedShapes&)
    {
        constexpr double furthest = 1'000'000.0;
        const auto number = Number(QStringLiteral("The file may count its frames from another one "
                                                  "than here. Frames to add:"),
                                   0.0, -furthest, furthest);
        context_.frameOffset = number.value_or(0.0);
        return number.has_value();
    }

    ImportContext& context_;
    QString title_;
    bool isUnitAsked_ = false;
    bool isSizeAsked_ = false;
    bool isFrameAsked_ = false;
};

QStringList NotesOf(const ImportedShapes& file)
{
    QStringList notes;
    for (const ImportNote& note : file.notes) {
        const bool isError =
            file.error && file.error->line == note.line && file.error->text == note.text;
        if (!isError)
            notes += QString::fromStdString(file.Message(note));
    }
    return notes;
}

enum class Wanted { Shapes, Paths };

bool Holds(const ImportedShapes& file, Wanted wanted)
{
    return wanted == Wanted::Paths ? !file.paths.empty() : !file.shapes.empty();
}

/// Lets the user choose a file and reads the whole of it; nothing: cancelled, or the user has been
/// told why not.
std::optional<ImportedShapes> ReadChosen(const PolyLineControl& control, const ImportKind& kind,
                                         Wanted wanted)
{
    HostDialogs::FileRequest request;
    request.title = QLatin1String(kind.title);
    request.filter = QLatin1String(kind.filter) + QLatin1String(allFiles);
    request.pathId = QStringLiteral("PolylineImport");
    const QString path = HostDialogs::Get().OpenFile(request);
    if (path.isEmpty())
        return {};
    ImportContext context = ContextOf(control);
    OpenQuestions questions(context, request.title);
    ImportedShapes file;
    for (;;) {
        const bool read = Read(path, kind.format, context, file);
        const bool mayAsk = read ? Holds(file, wanted) : file.lacksImageSize;
        const auto outcome = mayAsk ? questions.Ask(file) : OpenQuestions::Outcome::NothingOpen;
        if (outcome == OpenQuestions::Outcome::Cancelled)
            return {};
        if (outcome == OpenQuestions::Outcome::Answered)
            continue;
        if (read)
            return file;
        HostDialogs::Get().Message(HostDialogs::Kind::Error,
                                   QString::fromStdString(file.Message(*file.error)),
                                   NotesOf(file).join(u'\n'));
        return {};
    }
}

/// What follows an import that was made.
void Finish(PolyLineControl& control, const ImportedShapes& file, const QStringList& remarks)
{
    control.SetMode(PolyLineControl::ModeAfterClose());
    const QStringList told = NotesOf(file) + remarks;
    if (!told.isEmpty())
        HostDialogs::Get().Message(HostDialogs::Kind::Information,
                                   QStringLiteral("%1 was imported, with these notes:")
                                       .arg(QString::fromStdString(file.file)),
                                   told.join(u'\n'));
}

// Shapes -----------------------------------------------------------------------------------------

std::optional<ImportShapeChoice> ChooseShapes(const ImportedShapes& file)
{
    if (file.shapes.size() == 1)
        return ImportShapeChoice{0, false};
    QStringList names;
    for (const ImportedShape& shape : file.shapes)
        names += QString::fromStdString(shape.name);
    ImportShapeDlg dialog(int(names.size()), names);
    if (dialog.exec() != QDialog::Accepted)
        return {};
    return dialog.Choice();
}

void ImportShapes(PolyLineControl& control, const ImportKind& kind)
{
    const auto alive = Ref<PolyLineControl>::Share(&control);
    std::optional<ImportedShapes> file = ReadChosen(control, kind, Wanted::Shapes);
    if (!file)
        return;
    if (file->shapes.empty()) {
        Warn(QStringLiteral("%1 holds no shape.").arg(QString::fromStdString(file->file)));
        return;
    }
    const std::optional<ImportShapeChoice> choice = ChooseShapes(*file);
    if (!choice || (!choice->shape && !choice->all))
        return;
    QString problem;
    QStringList remarks;
    if (PlaceShapes(control, *file, *choice, kind.undoText, problem, remarks))
        Finish(control, *file, remarks);
    else
        Warn(problem);
}

// Motions ----------------------------------------------------------------------------------------

/// Null: cancelled.
const ImportedPath* ChoosePath(const ImportedShapes& file, const QString& title)
{
    if (file.paths.size() == 1)
        return &file.paths.front();
    constexpr std::size_t mostNames = 12;
    QStringList names;
    for (std::size_t i = 0; i < std::min(file.paths.size(), mostNames); ++i)
        names += QStringLiteral("%1 %2").arg(i + 1).arg(QString::fromStdString(file.paths[i].name));
    if (file.paths.size() > mostNames)
        names += QStringLiteral("…");
    HostDialogs::NumberRequest request;
    request.title = title;
    request.label = QStringLiteral("%1 holds %2 paths (%3). Number of the one to import:")
                        .arg(QString::fromStdString(file.file))
                        .arg(file.paths.size())
                        .arg(names.join(QStringLiteral(", ")));
    request.preset = request.minimum = 1.0;
    request.maximum = double(file.paths.size());
    request.integer = true;
    const auto number = HostDialogs::Get().AskNumber(request);
    return number ? &file.paths[std::size_t(*number) - 1] : nullptr;
}

void ImportMotion(PolyLineControl& control, const ImportKind& kind)
{
    const auto alive = Ref<PolyLineControl>::Share(&control);
    const std::optional<ImportedShapes> file = ReadChosen(control, kind, Wanted::Paths);
    if (!file)
        return;
    if (file->paths.empty()) {
        Warn(QStringLiteral("%1 holds no motion path.").arg(QString::fromStdString(file->file)));
        return;
    }
    const ImportedPath* path = ChoosePath(*file, QLatin1String(kind.title));
    QString problem;
    if (path && PlaceMotion(control, *path, kind.undoText, problem))
        Finish(control, *file, {});
    else if (path)
        Warn(problem);
}

} // namespace

void ImportLightWave(PolyLineControl& control)
{
    ImportMotion(control, lightWave);
}

void ImportMotionPath(PolyLineControl& control)
{
    ImportMotion(control, motionPath);
}

void ImportBoujou(PolyLineControl& control)
{
    ImportMotion(control, boujou);
}

void ImportShape(PolyLineControl& control)
{
    ImportShapes(control, anyShape);
}

void ImportSsf(PolyLineControl& control)
{
    ImportShapes(control, ssf);
}

void ImportFxs(PolyLineControl& control)
{
    ImportShapes(control, fxs);
}

void ImportNuke(PolyLineControl& control)
{
    ImportShapes(control, nuke);
}

} // namespace Marlox
