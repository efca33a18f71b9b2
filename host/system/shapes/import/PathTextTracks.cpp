#include "system/shapes/import/PathText_p.h"

#include <array>

namespace Marlox {

namespace {

constexpr int maxRows = 1'000'000;
constexpr int maxTracks = 10'000;

ShapePlace FromTop(const ImageFrame& image, double x, double y)
{
    return image.FromPixels(x, image.height - y);
}

/// Begins a row of a track, and no name or heading.
bool IsNumberRow(const TextLines& lines)
{
    return ToNumber(lines.Field(0)).has_value();
}
/// The same, where names may be numbers.
bool IsIndentedRow(const TextLines& lines)
{
    return lines.Line().front() == '\t' || lines.Line().front() == ' ';
}

/// Rows "frame x y ..." as long as they are some; the line behind them is put back.
void ReadRows(PathTextJob& text, ImportedPath& path, const ImageFrame& image,
              bool (*isRow)(const TextLines& lines))
{
    while (text.NextRow()) {
        if (!isRow(text.lines))
            return text.lines.PutBack();
        text.RequireCount(3);
        text.Add(path, text.lines.NumberAt(0),
                 image.FromPixels(text.lines.NumberAt(1), text.lines.NumberAt(2)));
    }
}

/// The same, of a known number.
void ReadRows(PathTextJob& text, ImportedPath& path, const ImageFrame& image, double shift,
              int count)
{
    for (int i = 0; i < count; ++i) {
        text.RequireRow("the last row of a track");
        text.RequireCount(3);
        text.Add(path, text.lines.NumberAt(0),
                 image.FromPixels(text.lines.NumberAt(1) + shift, text.lines.NumberAt(2) + shift));
    }
}

/// The heading of a section is its last word behind tabs: what it belongs to stands before it.
bool IsSection(std::string_view line, std::string_view name)
{
    const std::string_view words = Trimmed(line);
    return line.front() != '\t' && words.substr(words.rfind('\t') + 1) == name;
}

/// "W x H" within a line; none: it has no such words.
std::optional<ShapePlace> SizeIn(const TextLines& lines)
{
    for (std::size_t i = 1; i + 1 < lines.Count(); ++i) {
        const std::optional<double> width = ToNumber(lines.Field(i - 1));
        const std::optional<double> height = ToNumber(lines.Field(i + 1));
        if (lines.Field(i) == "x" && width && height)
            return ShapePlace{*width, *height};
    }
    return std::nullopt;
}

} // namespace

/// Facts: seen in real files. Rows "name frame x y" in the order that a comment tells, pixels from
/// the top left corner, right to a pixel.
void ReadBoujouTracks(PathTextJob& text)
{
    const ImageFrame image = text.job.Image();
    constexpr std::array<std::string_view, 4> names = {"track_id", "view", "x", "y"};
    std::array<std::size_t, 4> order = {0, 1, 2, 3};
    while (text.lines.NextFilled()) {
        TextLines& lines = text.lines;
        if (lines.Field(0).starts_with('#')) {
            for (std::size_t i = 0; lines.Count() == 5 && i < names.size(); ++i) {
                for (std::size_t field = 1; field < 5; ++field) {
                    if (lines.Field(field) == names[i])
                        order[i] = field - 1;
                }
            }
            continue;
        }
        text.RequireCount(4);
        // Names may have blanks: the columns behind them are counted from the end.
        const std::size_t extra = order[0] == 0 ? lines.Count() - 4 : 0;
        const std::string_view name =
            extra > 0 ? Trimmed(lines.Line().substr(
                            0, std::size_t(lines.Field(extra + 1).data() - lines.Line().data())))
                      : lines.Field(order[0]);
        const double x = lines.NumberAt(order[2] + extra);
        const double y = lines.NumberAt(order[3] + extra);
        text.Add(text.Named(name), lines.NumberAt(order[1] + extra), FromTop(image, x, y));
    }
}

/// Facts: as other programs read it. Rows of 13 numbers, one for each frame: rotation, place, focal
/// length. A path in the image takes x and y of the place; how they lie on it is not told.
void ReadBoujouCamera(PathTextJob& text)
{
    constexpr std::size_t columns = 13;
    constexpr std::size_t placeAt = 9;
    constexpr std::string_view indexed = "First boujou frame indexed to animation frame";
    const ImageFrame image = text.job.ShownImage();
    text.job.Assume(0, "the image is taken as one unit wide around the origin, y upwards");
    std::size_t path = 0;
    text.Begin("Camera");
    double frame = text.job.Context().startFrame;
    bool isTold = false;
    while (text.lines.NextFilled()) {
        TextLines& lines = text.lines;
        if (lines.Field(0).starts_with('#')) {
            const std::size_t at = lines.Line().find(indexed);
            if (at != std::string_view::npos) {
                frame =
                    Number(Trimmed(lines.Line().substr(at + indexed.size())), lines.LineNumber());
                isTold = true;
            } else if (lines.Line().find("3D Scene Points") != std::string_view::npos) {
                text.job.LeaveAside(lines.LineNumber(), "points of the scene are not read");
                break;
            }
            continue;
        }
        if (lines.Count() != columns)
            throw ImportFailure{lines.LineNumber(), "13 numbers were expected in a line", true};
        text.Add(text.paths[path], frame,
                 {0.5 + lines.NumberAt(placeAt),
                  0.5 + lines.NumberAt(placeAt + 1) / image.HeightsPerWidth()});
        frame += 1.0;
    }
    if (!isTold) {
        text.job.Assume(0, "it does not tell the frame of its beginning");
        text.job.AskForFirstFrame();
    }
}

/// Facts: seen in real files. The number of tracks; for each its name, a colour, the number of its
/// rows "frame x y", pixels from the bottom left corner.
void Read3deTracks(PathTextJob& text)
{
    const ImageFrame image = text.job.Image();
    text.lines.PutBack();
    const int tracks = text.lines.RequireWhole(0, maxTracks, "the number of tracks");
    for (int i = 0; i < tracks; ++i) {
        text.lines.Require("its last track"); // names may begin as comments do
        ImportedPath& path = text.Begin(Trimmed(text.lines.Line()));
        text.lines.Require("the colour of a track");
        ReadRows(text, path, image, 0.0, text.lines.RequireWhole(0, maxRows, "the number of rows"));
    }
}

/// Facts: seen in real files. A comment with the image's size, names, rows "frame x y" that begin
/// with a tab, pixels from the bottom left corner.
void Read3deOldTracks(PathTextJob& text)
{
    const std::optional<ShapePlace> size = SizeIn(text.lines);
    const ImageFrame image = size ? text.job.Image(size->x, size->y) : text.job.Image();
    while (text.NextRow())
        ReadRows(text, text.Begin(Trimmed(text.lines.Line())), image, IsIndentedRow);
}

/// Facts: seen in real files (.2dt). A name in quotes, perhaps a camera's name or a number of the
/// clip, the number of rows "frame x y residual"; pixels from the bottom left one's centre.
void ReadQuotedTracks(PathTextJob& text)
{
    constexpr double toPixelCorner = 0.5;
    const ImageFrame image = text.job.Image();
    do {
        const std::string_view name = Trimmed(text.lines.Line());
        if (name.size() < 2 || name.front() != '"' || name.back() != '"') {
            throw ImportFailure{text.lines.LineNumber(),
                                "the name of a track was expected in quotes", true};
        }
        ImportedPath& path = text.Begin(name.substr(1, name.size() - 2));
        text.RequireRow("the number of rows");
        if (!ToNumber(text.lines.Field(0)))
            text.RequireRow("the number of rows"); // that was a camera
        int count = WholeNumber(text.lines.Field(0), text.lines.LineNumber(), 0, maxRows,
                                "the number of rows");
        if (text.NextRow()) {
            if (text.lines.Count() == 1 && ToNumber(text.lines.Field(0))) // that was the clip
                count = WholeNumber(text.lines.Field(0), text.lines.LineNumber(), 0, maxRows,
                                    "the number of rows");
            else
                text.lines.PutBack();
        }
        ReadRows(text, path, image, toPixelCorner, count);
    } while (text.NextRow());
}

/// Facts: as other programs read it. "TrackName name", a line of headings, rows "frame x y
/// correlation"; pixels, y upwards.
void ReadNamedTracks(PathTextJob& text)
{
    const ImageFrame image = text.job.Image();
    do {
        if (text.lines.Field(0) != "TrackName") {
            throw ImportFailure{text.lines.LineNumber(), "\"TrackName\" was expected", true};
        }
        ImportedPath& path = text.Begin(text.lines.RestFrom(1));
        text.RequireRow("the headings of a track");
        ReadRows(text, path, image, IsNumberRow);
    } while (text.NextRow());
}

/// Facts: as other programs read it. Rows "name frame u v status"; u and v from -1 to 1 around the
/// centre, v downwards.
void ReadNamedRows(PathTextJob& text)
{
    constexpr std::size_t behindName = 4;
    do {
        const TextLines& lines = text.lines;
        text.RequireCount(behindName + 1);
        const std::size_t first = lines.Count() - behindName;
        const std::string_view name = Trimmed(
            lines.Line().substr(0, std::size_t(lines.Field(first).data() - lines.Line().data())));
        const double u = lines.NumberAt(first + 1);
        const double v = lines.NumberAt(first + 2);
        text.Add(text.Named(name), lines.NumberAt(first), {0.5 + 0.5 * u, 0.5 - 0.5 * v});
    } while (text.NextRow());
}

/// Facts: seen in real files. Settings, then sections with a line of headings and rows; the section
/// "Position" is the path, pixels of the source from the top left corner.
void ReadKeyframeData(PathTextJob& text)
{
    double width = 0.0;
    double height = 0.0;
    std::optional<ImageFrame> image;
    TextLines& lines = text.lines;
    while (lines.NextFilled()) {
        const std::string_view line = Trimmed(lines.Line());
        if (line.starts_with("End of Keyframe Data"))
            return;
        const std::size_t last = lines.Count() - 1;
        if (line.starts_with("Source Width")) {
            width = lines.NumberAt(last);
        } else if (line.starts_with("Source Height")) {
            height = lines.NumberAt(last);
        } else if (line.starts_with("Units Per Second")) {
            if (lines.NumberAt(last) != text.job.Context().frameRate)
                text.job.Assume(lines.LineNumber(), "its frame rate differs: frames are kept");
        } else if (IsSection(lines.Line(), "Position")) {
            lines.Require("the headings of its positions");
            if (!image)
                image = text.job.Image(width, height);
            ImportedPath& path = text.Begin("Position");
            while (lines.NextFilled() && ToNumber(lines.Field(0))) {
                text.RequireCount(3);
                text.Add(path, lines.NumberAt(0),
                         FromTop(*image, lines.NumberAt(1), lines.NumberAt(2)));
            }
            lines.PutBack();
        } else if (!ToNumber(lines.Field(0)) && lines.Line().front() != '\t') {
            text.job.LeaveAside(lines.LineNumber(), "the section " + Quoted(line) + " is not read");
        }
    }
    throw ImportFailure{lines.LineNumber(), "the file ends before \"End of Keyframe Data\"", true};
}

} // namespace Marlox
