#include "system/shapes/import/PathText_p.h"

#include <algorithm>

namespace Marlox {

// Tracks and motion paths as text, from several programs. How sure the facts are stands with each
// reader below and in PathTextTracks.cpp.

namespace {

bool StartsWith(std::string_view text, std::string_view start)
{
    return text.substr(0, start.size()) == start;
}

std::string WithoutCommas(std::string_view text)
{
    std::string plain(text);
    std::replace(plain.begin(), plain.end(), ',', ' ');
    return plain;
}

bool AreNumbers(const TextLines& lines, std::size_t first)
{
    for (std::size_t i = first; i < lines.Count(); ++i) {
        if (!ToNumber(lines.Field(i)))
            return false;
    }
    return lines.Count() > first;
}

bool IsBoujouTracks(const TextLines& lines)
{
    return StartsWith(lines.Line(), "# boujou 2d tracks export");
}

bool IsBoujouCamera(const TextLines& lines)
{
    return StartsWith(lines.Line(), "# boujou export");
}

bool IsKeyframeData(const TextLines& lines)
{
    return StartsWith(lines.Line(), "Adobe After Effects") &&
           lines.Line().find("Keyframe Data") != std::string_view::npos;
}

bool Is3deOld(const TextLines& lines)
{
    return StartsWith(lines.Line(), "// 3DE");
}

bool IsQuotedName(const TextLines& lines)
{
    return Trimmed(lines.Line()).front() == '"';
}

bool IsTrackName(const TextLines& lines)
{
    return lines.Field(0) == "TrackName";
}

bool IsTrackCount(const TextLines& lines)
{
    return lines.Count() == 1 && AreNumbers(lines, 0);
}

/// A name, then frame, u, v and a status.
bool IsNamedRow(const TextLines& lines)
{
    return lines.Count() >= 4 && !ToNumber(lines.Field(0)) && AreNumbers(lines, lines.Count() - 4);
}

bool IsPlainRow(const TextLines& lines)
{
    return lines.Count() >= 2 && AreNumbers(lines, 0);
}

/// A plain row with commas between its numbers, which are no decimal ones: there are points too.
bool IsCommaRow(std::string_view line)
{
    const std::string plain = WithoutCommas(line);
    TextLines lines(plain);
    return line.find(',') != std::string_view::npos && line.find('.') != std::string_view::npos &&
           lines.NextFilled() && IsPlainRow(lines);
}

/// By its first line that is not blank, in this order.
struct Kind {
    bool (*matches)(const TextLines& lines);
    void (*read)(PathTextJob& job);
};
constexpr Kind kinds[] = {
    {IsBoujouTracks, ReadBoujouTracks}, {IsBoujouCamera, ReadBoujouCamera},
    {IsKeyframeData, ReadKeyframeData}, {Is3deOld, Read3deOldTracks},
    {IsQuotedName, ReadQuotedTracks},   {IsTrackName, ReadNamedTracks},
    {IsTrackCount, Read3deTracks},      {IsNamedRow, ReadNamedRows},
    {IsPlainRow, ReadPlainRows},
};

bool IsComment(std::string_view line)
{
    return StartsWith(line, "#") || StartsWith(line, "//");
}

} // namespace

bool PathTextJob::NextRow()
{
    while (lines.NextFilled()) {
        if (!IsComment(Trimmed(lines.Line())))
            return true;
    }
    return false;
}

void PathTextJob::RequireRow(const char* what)
{
    if (!NextRow())
        throw ImportFailure{lines.LineNumber(), "the file ends before " + std::string(what), true};
}

void PathTextJob::RequireCount(std::size_t least)
{
    if (lines.Count() < least) {
        throw ImportFailure{lines.LineNumber(),
                            std::to_string(least) + " numbers were expected in a line", true};
    }
}

ImportedPath& PathTextJob::Begin(std::string_view name)
{
    ImportedPath path;
    path.name = name;
    path.line = lines.LineNumber();
    paths.push_back(std::move(path));
    constexpr std::size_t most = 10'000;
    if (paths.size() > most)
        throw ImportFailure{lines.LineNumber(), "it has more than 10000 tracks", true};
    return paths.back();
}

ImportedPath& PathTextJob::Named(std::string_view name)
{
    const auto [found, isNew] = byName_.try_emplace(std::string(name), paths.size());
    return isNew ? Begin(name) : paths[found->second];
}

void PathTextJob::Add(ImportedPath& path, double frame, ShapePlace place)
{
    job.CountPoints(1, lines.LineNumber());
    path.keys.push_back({frame, place.x, place.y, Interpolation::Linear});
}

void PathTextJob::Finish()
{
    for (ImportedPath& path : paths)
        job.Take(std::move(path));
}

/// Facts: a guess. Rows of "frame x y" or, for one frame after the other, "x y"; what the numbers
/// count is told by the context.
void ReadPlainRows(PathTextJob& text)
{
    using Unit = ImportContext::PlainUnit;
    ImportedPath& path = text.Begin("");
    const std::size_t columns = text.lines.Count();
    double frame = text.job.Context().startFrame;
    do {
        if (text.lines.Count() != columns)
            throw ImportFailure{text.lines.LineNumber(), "a row has another number of columns",
                                true};
        const std::size_t first = columns > 2 ? 1 : 0;
        text.Add(path, first > 0 ? text.lines.NumberAt(0) : frame,
                 {text.lines.NumberAt(first), text.lines.NumberAt(first + 1)});
        frame += 1.0;
    } while (text.NextRow());
    if (columns > 3)
        text.job.LeaveAside(0, "columns behind frame, x and y were not read");

    Unit unit = text.job.Context().plainUnit;
    if (unit == Unit::ByRange) {
        const auto isNear = [](double value) { return value >= -2.0 && value <= 3.0; };
        const bool isNormalised =
            std::all_of(path.keys.begin(), path.keys.end(),
                        [&](const auto& key) { return isNear(key.x) && isNear(key.y); });
        unit = isNormalised ? Unit::Normalised : Unit::PixelsUp;
        text.job.AskForPlainUnit(isNormalised);
        text.job.Assume(0, isNormalised ? "its numbers are taken as fractions of the image"
                                        : "its numbers are taken as pixels, y upwards");
    }
    if (unit == Unit::Normalised)
        return;
    const ImageFrame image = text.job.Image();
    for (ImportedPathKey& key : path.keys) {
        const double y = unit == Unit::PixelsDown ? image.height - key.y : key.y;
        const ShapePlace place = image.FromPixels(key.x, y);
        key.x = place.x;
        key.y = place.y;
    }
}

void ReadPathText(ImportJob& job)
{
    PathTextJob text(job);
    if (!text.lines.NextFilled())
        throw ImportFailure{0, "it is empty", true};
    const auto kindOfLine = [&] {
        return std::find_if(std::begin(kinds), std::end(kinds),
                            [&](const Kind& kind) { return kind.matches(text.lines); });
    };
    const Kind* kind = kindOfLine();
    while (kind == std::end(kinds) && IsComment(Trimmed(text.lines.Line()))) {
        if (!text.lines.NextFilled())
            throw ImportFailure{text.lines.LineNumber(), "it holds comments alone", true};
        kind = kindOfLine();
    }
    if (kind == std::end(kinds) && IsCommaRow(text.lines.Line())) {
        const std::string plain = WithoutCommas(job.Text());
        PathTextJob rows(job, plain);
        rows.NextRow();
        ReadPlainRows(rows);
        rows.Finish();
        return job.AskForFirstFrame();
    }
    if (kind == std::end(kinds)) {
        for (const std::string_view field : text.lines.Fields()) {
            if (field.find(',') != std::string_view::npos)
                Number(field, text.lines.LineNumber()); // tells of decimal commas
        }
        throw ImportFailure{
            text.lines.LineNumber(),
            Quoted(text.lines.Line()) + " begins no kind of path file that is known", true};
    }
    kind->read(text);
    text.Finish();
    if (kind->read != ReadBoujouCamera)
        job.AskForFirstFrame();
}

} // namespace Marlox
