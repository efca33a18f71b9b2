// Writing shapes and motions to files.

#include "controls/polyline/PolyCommands.h"
#include "controls/polyline/PolyLineControl.h"
#include "controls/polyline/ShapeWriters.h"
#include "system/controls/HostDialogs.h"
#include "system/document/MarloxDoc.h"
#include "system/shapes/PathAnimation.h"
#include "system/shapes/ShapeLinks.h"

#include <cmath>

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

namespace Marlox {

namespace {

constexpr double mostFrames = 1'000'000.0; // of one file

/// Times of the first and the last key, frames.
struct KeySpan {
    double first = 0.0;
    double last = 0.0;

    bool IsTooLong() const { return !(last - first < mostFrames); }
    std::vector<double> WholeFrames() const
    {
        std::vector<double> frames;
        for (double frame = std::trunc(first); frame <= std::trunc(last); frame += 1.0)
            frames.push_back(frame);
        return frames;
    }
};

/// What becomes a file.
struct ExportedText {
    std::string text;
    QString problem{}; // why there is none; empty: there is
    QString remark{};  // what the file lacks
};

NativeFileHeader HeaderOf(const PolyLineControl& control)
{
    NativeFileHeader header;
    header.width = 1920.0; // as masks are without a picture
    header.height = 1080.0;
    const PreviewInfo* view = control.View();
    if (view && view->pixelWidth > 0 && view->pixelHeight > 0) {
        header.width = view->pixelWidth;
        header.height = view->pixelHeight;
        header.pixelAspect = view->pixelAspect > 0.0 ? view->pixelAspect : 1.0;
    }
    header.heightsPerWidth = HeightsPerWidth(header.width, header.height, header.pixelAspect);
    if (const MarloxDoc* document = control.GetDoc())
        header.frameRate = document->FrameRate();
    return header;
}

/// Of the keys that move what the input tells; nothing: it stands still. What another expression
/// moves does so over all frames of the document.
std::optional<KeySpan> SpanOf(const Input* input)
{
    if (!input)
        return {};
    if (input->HasExpression()) {
        if (const Operator* path = PathOf(*input))
            return SpanOf(path->FindInput("Displacement"));
        const MarloxDoc* document = input->GetDoc();
        return document ? std::optional(KeySpan{document->FirstFrame(), document->LastFrame()})
                        : std::nullopt;
    }
    const auto& keys = input->GetAnimation().Keys();
    if (keys.empty())
        return {};
    return KeySpan{keys.begin()->first, keys.rbegin()->first};
}

/// Of what moves the shape's centre.
std::optional<KeySpan> SpanOfCentre(const PolyLineControl& control)
{
    for (const u32 tag : {PLCID_Center, PLCID_CenterX, PLCID_CenterY, PLCID_Displacement}) {
        if (const auto span = SpanOf(control.BoundInput(tag)))
            return span;
    }
    return {};
}

/// The span that there is; what stands still is written once, as it is now.
KeySpan SpanOr(const std::optional<KeySpan>& wanted, const std::optional<KeySpan>& otherwise,
               const PolyLineControl& control)
{
    const KeySpan now{control.CurrentTime(), control.CurrentTime()};
    return wanted ? *wanted : otherwise.value_or(now);
}

/// Whether the middle of the shape's bounds is what moves: the shape is animated, and the centre
/// that its tool may have is not.
bool MovesByPoints(const PolyLineControl& control)
{
    const Input* input = control.ShapeInput(InnerPolygon);
    bool hasCentre = false;
    for (const u32 tag : {PLCID_Center, PLCID_CenterX, PLCID_CenterY}) {
        const Input* centre = control.BoundInput(tag);
        if (centre && (centre->HasExpression() || !centre->GetAnimation().Keys().empty()))
            return false;
        hasCentre = hasCentre || centre;
    }
    return !hasCentre || (input && !input->GetAnimation().Keys().empty());
}

/// Where the shape is at a time, as its tool puts it out: the centre that the tool has an input
/// for; the position on a path; else the middle of the shape's bounds.
ShapePlace OutputAt(const PolyLineControl& control, double time, double heightsPerWidth)
{
    ShapePlacement placement = control.PlacementAt(time);
    placement.heightsPerWidth = heightsPerWidth;
    if (!MovesByPoints(control))
        return placement.center;
    const Input* input = control.ShapeInput(InnerPolygon);
    const Ref<PolyLine> shape = input ? ResolvedShape(*input, time) : Ref<PolyLine>();
    ShapePlace at = placement.center;
    if (!shape || shape->GetCount() == 0)
        return at;
    if (const Input* displacement = control.BoundInput(PLCID_Displacement)) {
        shape->GetPointOnPath(displacement->GetNumber(time), heightsPerWidth, at);
        return placement.Out(at);
    }
    const ShapeBounds bounds = PlacedShape(*shape, placement)->CalcMinMax();
    return {(bounds.low.x + bounds.high.x) / 2.0, (bounds.low.y + bounds.high.y) / 2.0};
}

ExportedText TooLong(const PolyLineControl& control)
{
    return {{},
            QStringLiteral("The keys of %1 lie more than a million frames apart: that is too long "
                           "for a motion file.")
                .arg(control.ShapeInput(InnerPolygon)->Owner().GetName())};
}

// The formats ------------------------------------------------------------------------------------

ExportedText LightWaveMotion(const PolyLineControl& control)
{
    const KeySpan span =
        SpanOr(SpanOf(control.ShapeInput(InnerPolygon)), SpanOfCentre(control), control);
    if (span.IsTooLong())
        return TooLong(control);
    const double heights = HeaderOf(control).heightsPerWidth;
    std::vector<ShapePlace> places;
    for (const double frame : span.WholeFrames())
        places.push_back(OutputAt(control, frame, heights));
    return {LightWaveMotionText(places, heights)};
}

ExportedText NativeMotion(const PolyLineControl& control)
{
    const Input* input = control.ShapeInput(InnerPolygon);
    const KeySpan span = SpanOr(SpanOfCentre(control), SpanOf(input), control);
    if (span.IsTooLong())
        return TooLong(control);
    const NativeFileHeader header = HeaderOf(control);
    std::vector<PathSample> centre;
    for (const double frame : span.WholeFrames())
        centre.push_back({frame, OutputAt(control, frame, header.heightsPerWidth)});
    std::vector<double> times;
    if (input && !input->HasExpression()) {
        for (const auto& [time, key] : input->GetAnimation().Keys())
            times.push_back(time);
    }
    if (times.empty())
        times.push_back(control.CurrentTime());
    std::vector<Ref<PolyLine>> shapes; // whose points the samples are
    std::vector<ShapeSample> samples;
    for (const double time : times) {
        shapes.push_back(input ? ResolvedShape(*input, time) : Ref<PolyLine>());
        if (shapes.back())
            samples.push_back({time, shapes.back()->Points()});
    }
    const bool hasHeader = control.Settings().ExportOption() == 1;
    return {MotionText(hasHeader ? std::optional(header) : std::nullopt, centre, samples)};
}

/// A shape of the kind that shape files hold; none: it is another one, or not there.
std::optional<ShapeOutline> OutlineOf(const PolyLineControl& control, int polygon)
{
    const PolyLine* shape = control.Editor().Shape(polygon);
    if (!shape || shape->GetDataType() != MxID(CLSID_DataType_Polyline))
        return {};
    return ShapeOutline{shape->Points(), shape->IsClosed()};
}

ExportedText NativeShape(const PolyLineControl& control)
{
    const std::optional<ShapeOutline> main = OutlineOf(control, InnerPolygon);
    const std::optional<ShapeOutline> outer =
        control.Editor().HasPoints(OuterPolygon) ? OutlineOf(control, OuterPolygon) : std::nullopt;
    const bool marksEnds = control.Settings().ExportOption() == 1;
    ExportedText text{ShapeText(HeaderOf(control), main ? &*main : nullptr,
                                outer ? &*outer : nullptr, marksEnds)};
    if (!main && control.Editor().HasPoints(InnerPolygon))
        text.remark = QStringLiteral("Files of this kind hold Bezier shapes: it has no points. "
                                     "Convert the shape to Bezier and export it again.");
    else if (!control.Editor().HasPoints(InnerPolygon))
        text.remark = QStringLiteral("The shape has no points yet.");
    return text;
}

struct ExportFormat {
    const char* extension;
    const char* filter; // of the file chooser
    ExportedText (*text)(const PolyLineControl& control);
};

constexpr ExportFormat formats[] = {
    {".dfsh", "Polyline Files (*.dfsh)|*.dfsh|", NativeShape},
    {".dfmo", "Polyline Files (*.dfmo)|*.dfmo|", NativeMotion},
    {".mot", "Lightwave Motion Files (*.mot)|*.mot|", LightWaveMotion},
};

/// By the extension or, where that is another one, as it was chosen.
const ExportFormat& FormatOf(const QString& path, int chosen)
{
    for (const ExportFormat& format : formats) {
        if (path.endsWith(QLatin1String(format.extension), Qt::CaseInsensitive))
            return format;
    }
    return formats[chosen >= 0 && chosen < int(std::size(formats)) ? chosen : 0];
}

/// Writes a file in place of what it was, or leaves that; tells what went wrong.
bool Write(const QString& path, const std::string& text)
{
    QSaveFile file(path);
    file.setDirectWriteFallback(true); // where the folder takes no second file
    const auto size = qint64(text.size());
    if (file.open(QIODevice::WriteOnly | QIODevice::Text) &&
        file.write(text.data(), size) == size && file.commit())
        return true;
    HostDialogs::Get().Message(HostDialogs::Kind::Error,
                               QStringLiteral("%1 could not be written: %2")
                                   .arg(QDir::toNativeSeparators(path), file.errorString()));
    return false;
}

QString DxfPath()
{
#ifdef Q_OS_WIN
    const QString folder = QStringLiteral("d:\\Paths");
    if (QDir(folder).exists() || QDir().mkpath(folder))
        return folder + QStringLiteral("\\path.dxf");
#endif
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    QDir().mkpath(documents);
    return QDir(documents).filePath(QStringLiteral("path.dxf"));
}

} // namespace

void ExportFile(PolyLineControl& control)
{
    const auto alive = Ref<PolyLineControl>::Share(&control);
    const Operator* tool = control.GetOperator(nullptr);
    if (!tool)
        return;
    int chosen = 0;
    HostDialogs::FileRequest request;
    request.title = QStringLiteral("Export");
    for (const ExportFormat& format : formats)
        request.filter += QLatin1String(format.filter);
    request.filter += u'|';
    request.pathId = QStringLiteral("PolylineExport");
    // A dot in it would count as an extension.
    request.fileName = HostDialogs::ValidFileName(tool->GetName()).replace(u'.', u'_');
    request.filterChosen = &chosen;
    QString path = HostDialogs::Get().SaveFile(request);
    if (path.isEmpty())
        return;
    path = HostDialogs::WithDefaultExtension(path,
                                             QLatin1String(FormatOf(QString(), chosen).extension));
    const ExportedText exported = FormatOf(path, chosen).text(control);
    if (!exported.problem.isEmpty()) {
        HostDialogs::Get().Message(HostDialogs::Kind::Warning, exported.problem);
        return;
    }
    if (Write(path, exported.text) && !exported.remark.isEmpty())
        HostDialogs::Get().Message(
            HostDialogs::Kind::Warning,
            QStringLiteral("%1 was written without a shape.").arg(QFileInfo(path).fileName()),
            exported.remark);
}

void ExportDxf(PolyLineControl& control)
{
    const PolyLine* shape = control.Editor().Shape(InnerPolygon);
    if (!shape)
        return;
    constexpr double tolerance = 1e-6; // as exact as the file's decimals
    std::vector<ShapePlace> places = shape->GetSamplePoints(tolerance);
    if (places.empty() && shape->GetCount() > 0)
        places.push_back(shape->Points().front().Place());
    const ShapeBounds bounds = CalcMinMax(places);
    const QString path = DxfPath();
    if (Write(path, DxfText(bounds.low, bounds.high)))
        HostDialogs::Get().Message(
            HostDialogs::Kind::Information,
            QStringLiteral("%1 was written.").arg(QDir::toNativeSeparators(path)));
}

} // namespace Marlox
