#include "system/shapes/import/ImportText_p.h"
#include "system/shapes/import/NukeScript_p.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

// The present form of the knob "curves": lists within lists. See ImportNuke.cpp for how sure that
// is.

namespace {

constexpr int maxLayers = 64; // within each other

class CurveReader {
public:
    CurveReader(ImportJob& job, NukeFormat format) : job_(job), numbers_(job), format_(format) {}
    bool ReadRoot(std::string_view text, int depth);

private:
    struct LayerState {
        NukeChain chain;
        bool isVisible = true;
        bool isLocked = false;
    };

    int LineOf(std::string_view text) { return job_.LineOf(text.data()); }
    [[noreturn]] void Misunderstood(std::string_view text)
    {
        throw ImportFailure{LineOf(text), Quoted(text) + " is not understood"};
    }
    double Value(std::string_view word) { return numbers_.Value(word); }
    u32 ReadFlags(std::string_view text);
    void ReadHead(std::string_view text);
    void ReadLayer(std::string_view text, LayerState state, int depth);
    void ReadShape(std::string_view text, const LayerState& state);
    NukeShape ShapeFrom(std::string_view text);
    void ReadCurve(std::string_view text, NukeCurve& curve);
    void ReadPlaces(NukeList list, bool areKeyed, NukeCurve& curve);
    NukePlace ReadPlace(std::string_view text, const std::vector<double>* times);
    void ReadTransform(std::string_view text, NukeTransform& transform);
    void ReadAttributes(std::string_view text, std::map<std::string, AnimatedNumber>& attributes);
    const ImageFrame& Image(const NukeShape& shape);

    ImportJob& job_;
    NukeNumbers numbers_;
    NukeFormat format_;
    NukeFormat rootCentre_;
    std::optional<ImageFrame> image_;
};

/// "x y", what is missing being 0; behind them there may be more, which is not understood.
NukePlace CurveReader::ReadPlace(std::string_view text, const std::vector<double>* times)
{
    NukePlace place;
    NukeList list(job_, text);
    NukeItem item;
    for (AnimatedNumber& number : place) {
        if (!list.Next(item))
            break;
        number = numbers_.Read(item, times);
    }
    return place;
}

void CurveReader::ReadPlaces(NukeList list, bool areKeyed, NukeCurve& curve)
{
    NukeItem item;
    if (areKeyed && list.Next(item))
        curve.times = numbers_.Times(item);
    while (list.Next(item)) {
        if (!item.isList)
            Misunderstood(item.text);
        job_.CountPoints(1, LineOf(item.text));
        curve.places.push_back(ReadPlace(item.text, curve.times.empty() ? nullptr : &curve.times));
    }
}

/// "cc {f flags} {p ...}", or "px ..." alone.
void CurveReader::ReadCurve(std::string_view text, NukeCurve& curve)
{
    NukeList list(job_, text);
    NukeItem item;
    if (!list.Next(item) || item.isList)
        Misunderstood(text);
    if (item.text == "px" || item.text == "p")
        return ReadPlaces(list, item.text == "px", curve);
    if (item.text != "cc")
        Misunderstood(text);
    while (list.Next(item)) {
        NukeList part(job_, item.text);
        NukeItem word;
        if (!item.isList || !part.Next(word))
            continue;
        if (word.text == "f" && part.Next(word))
            curve.flags = u32(std::clamp(Value(word.text), 0.0, 1e9));
        else if (word.text == "p" || word.text == "px")
            ReadPlaces(part, word.text == "px", curve);
        else
            job_.LeaveAside(LineOf(item.text), Quoted(item.text) + " is not understood");
    }
}

/// Numbers in the order of the format; what is not told is as in the identity.
void CurveReader::ReadTransform(std::string_view text, NukeTransform& transform)
{
    constexpr std::size_t matrixAt = 19;
    constexpr std::size_t count = matrixAt + 16;
    std::vector<AnimatedNumber> numbers(count);
    for (const std::size_t one : {9, 10, 11, 19, 24, 29, 34})
        numbers[one] = AnimatedNumber(1.0);
    const std::vector<AnimatedNumber> identity = numbers;
    NukeList list(job_, text);
    NukeItem item;
    list.Next(item);
    const bool isKeyed = item.text == "tx";
    std::vector<double> times;
    if (isKeyed && list.Next(item))
        times = numbers_.Times(item);
    for (std::size_t i = 0; i < count && list.Next(item); ++i)
        numbers[i] = numbers_.Read(item, times.empty() ? nullptr : &times);
    for (int axis = 0; axis < 2; ++axis) {
        transform.pivot[axis] = numbers[std::size_t(axis)];
        transform.move[axis] = numbers[std::size_t(3 + axis)];
        transform.scale[axis] = numbers[std::size_t(9 + axis)];
    }
    transform.turn = numbers[8];
    for (const std::size_t other : {6, 7, 12, 13, 14, 15, 16, 17, 18}) {
        if (!numbers[other].Is(0.0))
            job_.LeaveAside(LineOf(text), "skews and turns in space are not taken");
    }
    const auto differs = [&](std::size_t at) { return !numbers[at].Is(identity[at].At(0.0)); };
    for (std::size_t i = matrixAt; i < count; ++i) {
        if (differs(i))
            transform.matrix.assign(numbers.begin() + matrixAt, numbers.end());
    }
    if (transform.matrix.empty())
        return;
    job_.Assume(LineOf(text), "matrices of transforms are taken as rows, for columns");
    if (differs(31) || differs(32) || differs(34))
        transform.problem = "the matrix of its transform is not understood";
}

/// "f flags"
u32 CurveReader::ReadFlags(std::string_view text)
{
    NukeList list(job_, text);
    NukeItem item;
    list.Next(item);
    return list.Next(item) ? u32(std::clamp(Value(item.text), 0.0, 1e9)) : 0;
}

/// Names and values in turn; what is no number is of no use here.
void CurveReader::ReadAttributes(std::string_view text,
                                 std::map<std::string, AnimatedNumber>& attributes)
{
    constexpr std::size_t most = 1000;
    NukeList list(job_, text);
    NukeItem name;
    NukeItem value;
    list.Next(name); // "a"
    while (list.Next(name) && list.Next(value) && attributes.size() < most) {
        if (value.isList || ToNukeNumber(value.text))
            attributes[std::string(name.text)] = numbers_.Read(value, nullptr);
        else if (!IsKnownNukeAttribute(name.text))
            job_.LeaveAside(0, "the attribute " + Quoted(name.text) + " is not understood");
    }
}

NukeShape CurveReader::ShapeFrom(std::string_view text)
{
    NukeShape shape;
    shape.line = LineOf(text);
    NukeList list(job_, text);
    NukeItem item;
    list.Next(item); // "curvegroup"
    if (list.Next(item))
        shape.name = NukeText(item);
    if (list.Next(item) && !item.isList)
        shape.flags = u32(std::clamp(Value(item.text), 0.0, 1e9));
    if (!list.Next(item) || (item.text != "bezier" && item.text != "bspline"))
        throw ImportFailure{shape.line, Quoted(shape.name) + " is neither bezier nor bspline"};
    shape.isBSpline = item.text == "bspline";
    bool hasCurve = false;
    while (list.Next(item)) {
        if (!item.isList)
            continue;
        NukeList part(job_, item.text);
        NukeItem word;
        if (!part.Next(word))
            continue;
        if (word.isList && !hasCurve) {
            hasCurve = true;
            ReadCurve(word.text, shape.curve);
            if (part.Next(word) && word.isList)
                ReadCurve(word.text, shape.feather);
        } else if (word.text == "t" || word.text == "tx") {
            ReadTransform(item.text, shape.transform);
        } else if (word.text == "a") {
            ReadAttributes(item.text, shape.attributes);
        } else {
            job_.LeaveAside(LineOf(item.text), Quoted(word.text) + " is not understood");
        }
    }
    return shape;
}

/// The format, else twice the place that usually is the centre, else what the user told.
const ImageFrame& CurveReader::Image(const NukeShape& shape)
{
    if (image_)
        return *image_;
    NukeFormat format = format_;
    if (!(format.width > 0.0)) {
        format = {2.0 * rootCentre_.width, 2.0 * rootCentre_.height};
        const auto x = shape.attributes.find("spx");
        const auto y = shape.attributes.find("spy");
        const bool isTold = x != shape.attributes.end() && y != shape.attributes.end();
        if (!(format.width > 0.0) && isTold)
            format = {2.0 * x->second.At(0.0), 2.0 * y->second.At(0.0)};
        if (format.width > 0.0 && format.height > 0.0 && !job_.Context().overrideImageSize) {
            job_.Assume(0, "it tells no image size: the centre of its transforms is taken for the "
                           "image's");
            job_.AskForImage(format.width, format.height);
        }
    }
    image_ = job_.Image(format.width, format.height);
    return *image_;
}

void CurveReader::ReadShape(std::string_view text, const LayerState& state)
{
    try {
        NukeShape shape = ShapeFrom(text);
        shape.flags |= state.isLocked ? u32(NF_Locked) : 0;
        TakeNukeShape(job_, Image(shape), shape, state.chain, state.isVisible);
    } catch (const ImportFailure& failure) {
        if (failure.isFatal)
            throw;
        NukeList list(job_, text);
        NukeItem name;
        list.Next(name);
        list.Next(name);
        job_.Drop(failure.line, Quoted(NukeText(name)) + ": " + failure.reason);
    }
}

/// The layer's own transform and visibility, then what is in it.
void CurveReader::ReadLayer(std::string_view text, LayerState state, int depth)
{
    if (depth > maxLayers)
        throw ImportFailure{LineOf(text), "its layers are nested too deeply", true};
    NukeTransform transform;
    std::map<std::string, AnimatedNumber> attributes;
    NukeItem item;
    std::string name;
    NukeList head(job_, text);
    head.Next(item); // "layer"
    while (head.Next(item)) {
        if (!item.isList && name.empty())
            name = NukeText(item);
        const std::string_view word =
            item.isList ? NukeFirstWord(job_, item.text) : std::string_view();
        try {
            if (word == "t" || word == "tx")
                ReadTransform(item.text, transform);
            else if (word == "a")
                ReadAttributes(item.text, attributes);
            else if (word == "f")
                state.isLocked = state.isLocked || (ReadFlags(item.text) & NF_Locked);
        } catch (const ImportFailure& failure) {
            if (failure.isFatal)
                throw;
            transform.problem = failure.reason + " in the transform of its layer";
        }
    }
    if (depth == 0)
        rootCentre_ = {transform.pivot[0].At(0.0), transform.pivot[1].At(0.0)};
    state.chain.push_back(&transform);
    const auto visible = attributes.find("vis");
    NoteNukeLayer(job_, LineOf(text), name, attributes);
    state.isVisible = state.isVisible && (visible == attributes.end() || !visible->second.Is(0.0));

    NukeList list(job_, text);
    while (list.Next(item)) {
        if (!item.isList)
            continue;
        const std::string_view word = NukeFirstWord(job_, item.text);
        if (word == "layer")
            ReadLayer(item.text, state, depth + 1);
        else if (word == "curvegroup")
            ReadShape(item.text, state);
        else if (word == "cubiccurve")
            job_.LeaveAside(LineOf(item.text), "strokes and pins are not read");
        else if (word != "t" && word != "tx" && word != "a" && word != "f")
            job_.LeaveAside(LineOf(item.text), Quoted(word) + " is not understood");
    }
}

/// The version beside the root layer.
void CurveReader::ReadHead(std::string_view text)
{
    constexpr double versionKnown = 1.2;
    NukeList list(job_, text);
    NukeItem item;
    list.Next(item); // "v"
    if (list.Next(item) && std::abs(ToNukeNumber(item.text).value_or(0.0) - versionKnown) > 1e-3)
        job_.Assume(LineOf(text), "the version of its curves is read like 1.2");
}

/// Finds the list that holds "{v ...}" and "{n {layer Root ...}}", which may be wrapped.
bool CurveReader::ReadRoot(std::string_view text, int depth)
{
    constexpr int maxWraps = 8;
    NukeList list(job_, text);
    NukeItem item;
    bool hasFound = false;
    while (list.Next(item)) {
        if (!item.isList)
            continue;
        const std::string_view word = NukeFirstWord(job_, item.text);
        if (word == "v") {
            ReadHead(item.text);
        } else if (word == "n") {
            NukeList inside(job_, item.text);
            inside.Next(item);
            while (inside.Next(item)) {
                if (item.isList && NukeFirstWord(job_, item.text) == "layer")
                    ReadLayer(item.text, {}, 0);
            }
            hasFound = true;
        } else if (word.empty() && depth < maxWraps) {
            hasFound = ReadRoot(item.text, depth + 1) || hasFound;
        }
    }
    return hasFound;
}

} // namespace

void ReadNukeCurves(ImportJob& job, std::string_view curves, NukeFormat format)
{
    if (!CurveReader(job, format).ReadRoot(curves, 0))
        job.LeaveAside(job.LineOf(curves.data()), "a knob \"curves\" is not understood");
}

} // namespace Marlox
