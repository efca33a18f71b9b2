#include "system/shapes/import/ImportText_p.h"
#include "system/shapes/import/NativeShapeFiles.h"

#include <cmath>

namespace Marlox {

// Our own files: see NativeShapeFiles.h.

namespace {

constexpr std::size_t headerFields = 5;

/// The first line, and its word.
void RequireMagic(TextLines& lines, const char* magic)
{
    lines.Require("its first line");
    if (lines.Count() != 1 || lines.Field(0) != magic) {
        throw ImportFailure{lines.LineNumber(),
                            "it does not begin with \"" + std::string(magic) + '"', true};
    }
}

NativeFileHeader HeaderOf(const TextLines& lines)
{
    return {lines.NumberAt(0), lines.NumberAt(1), lines.NumberAt(2), lines.NumberAt(3),
            lines.NumberAt(4)};
}

/// Places are normalised whatever the image; a user still wants to know of another shape of it.
void CompareImage(const NativeFileHeader& header, ImportJob& job)
{
    const ImportContext& context = job.Context();
    if (!(context.width > 0.0) || !(context.height > 0.0) || !(header.heightsPerWidth > 0.0))
        return;
    const double own = HeightsPerWidth(context.width, context.height, context.pixelAspect);
    if (std::abs(own - header.heightsPerWidth) > 0.001 * own)
        job.Assume(2, "it was written for an image of another aspect: the shape is stretched");
}

PolyPoint PointFrom(const TextLines& lines, std::size_t first)
{
    const auto place = [&](std::size_t at) {
        return ShapePlace{lines.NumberAt(first + at), lines.NumberAt(first + at + 1)};
    };
    return PointFromPlaces(place(0), place(2), place(4));
}

/// One polygon of a shape file.
struct Outline {
    std::vector<PolyPoint> points;
    int line = 0;              // where it begins
    std::vector<int> endLines; // of points marked as ends
    bool isFirstEnd = false;
    bool isLastEnd = false;

    bool IsOpen() const { return isFirstEnd && isLastEnd; }
};

void ReadShapePoint(const TextLines& lines, Outline& outline, ImportJob& job)
{
    std::size_t count = lines.Count();
    const bool isEnd = lines.Field(count - 1) == nativeEndMark;
    count -= isEnd;
    constexpr std::size_t linear = 2;
    constexpr std::size_t curve = 6;
    if (count != linear && count != curve)
        throw ImportFailure{lines.LineNumber(), "a point has two or six numbers", true};
    if (outline.points.size() >= std::size_t(maxImportedPoints)) {
        throw ImportFailure{lines.LineNumber(),
                            "a shape has at most " + std::to_string(maxImportedPoints) + " points",
                            true};
    }
    job.CountPoints(1, lines.LineNumber());
    PolyPoint point;
    if (count == curve) {
        point = PointFrom(lines, 0);
    } else {
        point.x = lines.NumberAt(0);
        point.y = lines.NumberAt(1);
        point.flags = PPF_Linear;
    }
    if (isEnd)
        outline.endLines.push_back(lines.LineNumber());
    if (outline.points.empty()) {
        outline.line = lines.LineNumber();
        outline.isFirstEnd = isEnd;
    }
    outline.isLastEnd = isEnd;
    outline.points.push_back(point);
}

/// Ends stand at the last point, of an open outline at the first as well, or nowhere.
void CheckEnds(const Outline& outline, ImportJob& job)
{
    const std::size_t most = outline.isFirstEnd && outline.points.size() > 1 ? 2 : 1;
    if (!outline.endLines.empty() && (!outline.isLastEnd || outline.endLines.size() > most)) {
        job.LeaveAside(
            outline.endLines.front(),
            "\"EP\" marks the last point, and the first one of open shapes, nothing else");
    }
}

std::vector<ImportedKey> OnlyKey(std::vector<PolyPoint> points, double time)
{
    std::vector<ImportedKey> keys(1);
    keys[0].time = time;
    keys[0].points = std::move(points);
    return keys;
}

/// The lines of a motion file, told apart by their number of fields.
class MotionReader {
public:
    explicit MotionReader(ImportJob& job) : job_(job), lines_(job.Text()) {}
    void Read();

private:
    void ReadLine();
    void ReadPoint();

    ImportJob& job_;
    TextLines lines_;
    ImportedPath path_;
    ImportedShape shape_;
};

void MotionReader::ReadPoint()
{
    const double time = lines_.NumberAt(0);
    if (shape_.keys.empty() || shape_.keys.back().time != time) {
        if (shape_.keys.empty())
            shape_.line = lines_.LineNumber();
        shape_.keys.push_back({time, Interpolation::Linear, {}}); // as editing makes them
    }
    std::vector<PolyPoint>& points = shape_.keys.back().points;
    if (points.size() >= std::size_t(maxImportedPoints)) {
        throw ImportFailure{lines_.LineNumber(),
                            "a shape has at most " + std::to_string(maxImportedPoints) + " points",
                            true};
    }
    points.push_back(PointFrom(lines_, 1));
}

void MotionReader::ReadLine()
{
    constexpr std::size_t centreFields = 3;
    constexpr std::size_t pointFields = 7;
    job_.CountPoints(1, lines_.LineNumber());
    if (lines_.Count() == centreFields && shape_.keys.empty()) {
        if (path_.keys.empty())
            path_.line = lines_.LineNumber();
        path_.keys.push_back({lines_.NumberAt(0), lines_.NumberAt(1), lines_.NumberAt(2)});
    } else if (lines_.Count() == pointFields) {
        ReadPoint();
    } else {
        throw ImportFailure{lines_.LineNumber(),
                            "a line has three numbers for the centre or seven for a point", true};
    }
}

void MotionReader::Read()
{
    RequireMagic(lines_, nativeMotionMagic);
    if (lines_.NextFilled()) {
        if (lines_.Count() == headerFields)
            CompareImage(HeaderOf(lines_), job_);
        else
            lines_.PutBack();
    }
    while (lines_.NextFilled())
        ReadLine();
    if (!path_.keys.empty())
        job_.Take(std::move(path_));
    if (!shape_.keys.empty()) {
        job_.Assume(0, "it tells neither whether the shape is closed nor how its keys go on: taken "
                       "as closed, and evenly from key to key");
        job_.Take(std::move(shape_));
    }
}

} // namespace

void ReadNativeMotion(ImportJob& job)
{
    MotionReader(job).Read();
}

void ReadNativeShape(ImportJob& job)
{
    TextLines lines(job.Text());
    RequireMagic(lines, nativeShapeMagic);
    lines.Require("its header");
    if (lines.Count() != headerFields)
        throw ImportFailure{lines.LineNumber(), "a header of five numbers was expected", true};
    CompareImage(HeaderOf(lines), job);
    Outline outlines[2];
    int current = 0;
    ImportedShape shape;
    while (lines.NextFilled()) {
        if (Trimmed(lines.Line()) == nativeEdgeMark && current == 0) {
            current = 1;
            continue;
        }
        ReadShapePoint(lines, outlines[current], job);
    }
    for (const Outline& outline : outlines)
        CheckEnds(outline, job);
    if (outlines[0].points.empty())
        throw ImportFailure{0, "it holds no points", true};
    if (outlines[0].endLines.empty())
        job.Assume(0, "it does not tell whether the shape is closed: taken as closed");
    shape.line = outlines[0].line;
    shape.closed = !outlines[0].IsOpen();
    shape.keys = OnlyKey(std::move(outlines[0].points), job.Context().stillFrame);
    if (!outlines[1].points.empty() && outlines[1].points.size() != shape.keys[0].points.size())
        job.LeaveAside(outlines[1].line, "the edge shape has another number of points");
    else if (!outlines[1].points.empty())
        shape.outerKeys = OnlyKey(std::move(outlines[1].points), job.Context().stillFrame);
    constexpr bool cornersAreTold = true;
    job.Take(std::move(shape), cornersAreTold);
}

} // namespace Marlox
