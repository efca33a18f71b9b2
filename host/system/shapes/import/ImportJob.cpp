#include "system/shapes/import/ImportJob_p.h"
#include "system/shapes/import/ImportText_p.h"

#include <algorithm>
#include <cmath>

#include <QTextCodec>

namespace Marlox {

namespace {

constexpr std::size_t maxNotes = 100;
constexpr std::size_t maxThings = 10'000; // shapes or paths of a file
constexpr std::size_t maxNameBytes = 200;
constexpr double sameTime = 1e-6;    // frames; as keys of an animation
constexpr double largestPlace = 1e6; // image widths

bool StartsWith(const QByteArray& bytes, const char* mark, int size)
{
    return bytes.size() >= size && std::equal(mark, mark + size, bytes.constData());
}

void UnifyLineEnds(std::string& text)
{
    std::size_t out = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\r') {
            if (at + 1 < text.size() && text[at + 1] == '\n')
                continue;
            text[out++] = '\n';
        } else {
            text[out++] = text[at];
        }
    }
    text.resize(out);
}

void RefuseBinary(const std::string& text)
{
    int line = 1;
    for (const char c : text) {
        line += c == '\n';
        const bool isText = (c & 0xe0) != 0 || (c >= '\t' && c <= '\r') || c == 0x1a;
        if (!isText || c == 0x7f)
            throw ImportFailure{line, "it holds binary data, no text", true};
    }
}

/// The text of a file in UTF-16 or Latin-1 becomes UTF-8.
std::string Decoded(const QByteArray& bytes, ImportJob& job)
{
    const bool isWide = StartsWith(bytes, "\xff\xfe", 2) || StartsWith(bytes, "\xfe\xff", 2);
    const int mark = StartsWith(bytes, "\xef\xbb\xbf", 3) ? 3 : 0;
    std::string text =
        isWide ? QTextCodec::codecForName("UTF-16")->toUnicode(bytes).toStdString()
               : std::string(bytes.constData() + mark, std::size_t(bytes.size() - mark));
    UnifyLineEnds(text);
    RefuseBinary(text);
    if (isWide || std::none_of(text.begin(), text.end(), [](char c) { return (c & 0x80) != 0; }))
        return text;
    QTextCodec::ConverterState state;
    QTextCodec::codecForName("UTF-8")->toUnicode(text.data(), int(text.size()), &state);
    if (state.invalidChars == 0 && state.remainingChars == 0)
        return text;
    job.Assume(0, "its letters are taken as Latin-1");
    return QString::fromLatin1(text.data(), int(text.size())).toStdString();
}

/// The flags of a Bezier point by its handles at one time: a corner has none, the handles of a
/// smooth point lie in line.
u32 HandleFlags(const PolyPoint& point)
{
    const double in = std::hypot(point.inX, point.inY);
    const double out = std::hypot(point.outX, point.outY);
    if (in == 0.0 && out == 0.0)
        return PPF_Linear;
    constexpr double sine = 0.01;
    const double across = point.inX * point.outY - point.inY * point.outX;
    const double along = point.inX * point.outX + point.inY * point.outY;
    const bool isBroken = std::abs(across) > sine * in * out || along >= 0.0;
    return isBroken ? u32(PPF_Broken) : 0;
}

/// Flags go for all keys: a corner is one in each of them, and what breaks once is broken.
void SetHandleFlags(std::vector<ImportedKey>& keys, bool cornersAreTold)
{
    const std::size_t count = keys.empty() ? 0 : keys.front().points.size();
    for (std::size_t i = 0; i < count; ++i) {
        u32 all = PPF_Linear;
        u32 any = 0;
        for (const ImportedKey& key : keys) {
            const u32 flags = HandleFlags(key.points[i]);
            all &= flags;
            any |= flags;
        }
        const u32 corner = cornersAreTold ? 0 : all;
        for (ImportedKey& key : keys)
            key.points[i].flags |= corner | (any & PPF_Broken);
    }
}

bool IsPlace(double value)
{
    return std::isfinite(value) && std::abs(value) <= largestPlace;
}

void CheckPlaces(const ImportedKey& key, int line)
{
    for (const PolyPoint& point : key.points) {
        for (const double value :
             {point.x, point.y, point.inX, point.inY, point.outX, point.outY}) {
            if (!IsPlace(value))
                throw ImportFailure{line, "a point lies out of range"};
        }
    }
}

} // namespace

std::string_view ImportJob::Text()
{
    if (!isDecoded_) {
        text_ = Decoded(bytes_, *this);
        isDecoded_ = true;
        counted_ = text_.data();
    }
    return text_;
}

int ImportJob::LineOf(const char* place)
{
    if (place < text_.data() || place > text_.data() + text_.size())
        return 0;
    // Places come close to each other, mostly ascending.
    if (place < counted_)
        countedLines_ -= int(std::count(place, counted_, '\n'));
    else
        countedLines_ += int(std::count(counted_, place, '\n'));
    counted_ = place;
    return countedLines_;
}

ImageFrame ImportJob::Image(double width, double height)
{
    const bool isTold = width > 0.0 && height > 0.0;
    if (isTold && !context_.overrideImageSize)
        return {width, height, context_.pixelAspect > 0.0 ? context_.pixelAspect : 1.0};
    const ImageFrame image = ShownImage();
    if (!context_.isSizeSure) {
        const char* what = isTold ? "its own image size is not used" : "it tells no image size";
        Assume(0, std::string(what) + ": taken as " + std::to_string(std::lround(image.width)) +
                      " x " + std::to_string(std::lround(image.height)));
        if (!isTold)
            AskForImage(image.width, image.height);
    }
    return image;
}

ImageFrame ImportJob::ShownImage()
{
    if (!(context_.width > 0.0) || !(context_.height > 0.0)) {
        result_.lacksImageSize = true;
        throw ImportFailure{0, "it tells no image size, and none was given", true};
    }
    return {context_.width, context_.height,
            context_.pixelAspect > 0.0 ? context_.pixelAspect : 1.0};
}

void ImportJob::AskForImage(double width, double height)
{
    result_.asksImageSize = true;
    result_.imageWidth = width;
    result_.imageHeight = height;
}

void ImportJob::Note(ImportNote::Kind kind, int line, const std::string& text)
{
    const auto isSame = [&](const ImportNote& note) {
        return note.text == text && (kind == ImportNote::Kind::Assumed || note.line == line);
    };
    if (std::any_of(result_.notes.begin(), result_.notes.end(), isSame))
        return;
    if (result_.notes.size() < maxNotes)
        result_.notes.push_back({kind, line, text});
    else if (result_.notes.size() == maxNotes)
        result_.notes.push_back({kind, 0, "there is more to tell than this"});
}

void ImportJob::CountPoints(std::size_t count, int line)
{
    keyPoints_ += count;
    if (keyPoints_ > std::size_t(maxImportedKeyPoints)) {
        throw ImportFailure{line,
                            "it has more than " + std::to_string(maxImportedKeyPoints) +
                                " points in all keys",
                            true};
    }
}

void ImportJob::TakeName(std::string& name, const char* kind, std::size_t number)
{
    if (number > maxThings)
        throw ImportFailure{0, "it has more than 10000 shapes or paths", true};
    name = Trimmed(name);
    if (name.size() > maxNameBytes) {
        std::size_t end = maxNameBytes;
        while (end > 0 && (name[end] & 0xc0) == 0x80)
            --end;
        name.resize(end);
    }
    if (name.empty())
        name = kind + std::to_string(number);
}

void ImportJob::Tidy(std::vector<ImportedKey>& keys, const ImportedShape& shape)
{
    for (ImportedKey& key : keys) {
        CheckPlaces(key, shape.line);
        key.time += context_.frameOffset;
    }
    std::stable_sort(keys.begin(), keys.end(),
                     [](const ImportedKey& a, const ImportedKey& b) { return a.time < b.time; });
    std::vector<ImportedKey> tidy;
    for (ImportedKey& key : keys) {
        const std::string what =
            Quoted(shape.name) + ": its key at frame " + std::to_string(std::lround(key.time));
        if (!tidy.empty() && key.points.size() != tidy.front().points.size()) {
            LeaveAside(shape.line, what + " has " + std::to_string(key.points.size()) +
                                       " points in place of " +
                                       std::to_string(tidy.front().points.size()));
        } else if (!tidy.empty() && key.time - tidy.back().time < sameTime) {
            LeaveAside(shape.line, what + " is there twice: the later one counts");
            tidy.back() = std::move(key);
        } else {
            tidy.push_back(std::move(key));
        }
    }
    keys = std::move(tidy);
}

void ImportJob::Take(ImportedShape shape, bool cornersAreTold)
{
    TakeName(shape.name, "Shape ", result_.shapes.size() + 1);
    try {
        Tidy(shape.keys, shape);
        Tidy(shape.outerKeys, shape);
    } catch (const ImportFailure& failure) {
        if (failure.isFatal)
            throw;
        Drop(failure.line, Quoted(shape.name) + ": " + failure.reason);
        return;
    }
    if (shape.keys.empty() || shape.keys.front().points.empty()) {
        Drop(shape.line, Quoted(shape.name) + " has no points");
        return;
    }
    if (!shape.outerKeys.empty() && shape.outerKeys.front().points.empty())
        shape.outerKeys.clear();
    if (shape.kind == ImportedShape::Kind::Bezier) {
        SetHandleFlags(shape.keys, cornersAreTold);
        SetHandleFlags(shape.outerKeys, cornersAreTold);
    }
    for (ImportedNumber& opacity : shape.opacity)
        opacity.time += context_.frameOffset;
    result_.shapes.push_back(std::move(shape));
}

void ImportJob::Take(ImportedPath path)
{
    TakeName(path.name, "Path ", result_.paths.size() + 1);
    std::stable_sort(path.keys.begin(), path.keys.end(),
                     [](const auto& a, const auto& b) { return a.time < b.time; });
    std::vector<ImportedPathKey> tidy;
    for (ImportedPathKey& key : path.keys) {
        key.time += context_.frameOffset;
        if (!IsPlace(key.x) || !IsPlace(key.y)) {
            Drop(path.line, Quoted(path.name) + ": a place lies out of range");
            return;
        }
        if (!tidy.empty() && key.time - tidy.back().time < sameTime) {
            LeaveAside(path.line, Quoted(path.name) + ": frame " +
                                      std::to_string(std::lround(key.time)) +
                                      " is there twice: the later one counts");
            tidy.back() = key;
        } else {
            tidy.push_back(key);
        }
    }
    path.keys = std::move(tidy);
    if (path.keys.empty())
        Drop(path.line, Quoted(path.name) + " has no places");
    else
        result_.paths.push_back(std::move(path));
}

} // namespace Marlox
