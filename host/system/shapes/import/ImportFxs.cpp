#include "system/shapes/import/FxsFile_p.h"
#include "system/shapes/import/ImportText_p.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace Marlox {

// FXS shapes and the projects that hold the same objects, XML. How sure the facts are:
// - elements, order of a Bezier point's pairs, units (heights of the image around its centre, y
//   downwards), layer matrices, frames from the session's first: as other programs read and write
//   them, checked against delivered mattes; the elements of .fxs itself are known from writers;
// - how an open B-spline ends, which way `rotate` turns and that it counts degrees: guesses;
// - the curve of an X-spline: not known. Its points are taken, the curve is a cardinal spline.

namespace {

/// The ways from points of a shape to those of the whole image.
class LayerChain {
public:
    LayerChain() = default;
    LayerChain(const LayerChain& parent, const FxsObject& layer) : layers_(parent.layers_)
    {
        layers_.push_back(&layer);
    }

    void AddTimes(KeyTimes& times) const;
    PlaneMap At(double frame) const;
    /// Why it can't be told where its points are.
    void Check(ImportJob& job) const;

private:
    std::vector<const FxsObject*> layers_; // from the root on
};

constexpr const char* transformIds[] = {"transform.matrix", "transform.anchor",
                                        "transform.position", "transform.scale",
                                        "transform.rotate"};

AnimatedNumber TimesOf(const FxsProperty& property)
{
    std::vector<AnimatedNumber::Key> keys;
    for (const FxsKey& key : property.keys)
        keys.push_back({key.frame, 0.0, 0.0, 0.0, Interpolation::Linear});
    return AnimatedNumber(std::move(keys));
}

void LayerChain::AddTimes(KeyTimes& times) const
{
    for (const FxsObject* layer : layers_) {
        for (const char* id : transformIds) {
            const FxsProperty* property = layer->Find(id);
            if (!property || !property->isAnimated)
                continue;
            times.Add(TimesOf(*property));
            if (id == std::string_view("transform.rotate")) // points go along arcs
                times.AddFramesOf(TimesOf(*property));
        }
    }
}

/// The first two numbers of a property at a time, or what stands for them.
ShapePlace PairAt(const FxsObject& layer, const char* id, double frame, double missing)
{
    const FxsProperty* property = layer.Find(id);
    const std::vector<double> numbers = property ? property->At(frame) : std::vector<double>();
    return {numbers.empty() ? missing : numbers[0], numbers.size() < 2 ? missing : numbers[1]};
}

/// The 4 x 4 matrix stands in rows, for row vectors: its places in the plane, turned over.
PlaneMap MatrixAt(const FxsObject& layer, double frame)
{
    const FxsProperty* property = layer.Find("transform.matrix");
    const std::vector<double> numbers = property ? property->At(frame) : std::vector<double>();
    PlaneMap map;
    if (numbers.size() != 16)
        return map;
    constexpr int places[] = {0, 1, 3}; // x, y, w
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column)
            map.m[row][column] = numbers[std::size_t(places[column] * 4 + places[row])];
    }
    return map;
}

PlaneMap LayerChain::At(double frame) const
{
    PlaneMap map;
    for (const FxsObject* layer : layers_) {
        const ShapePlace anchor = PairAt(*layer, "transform.anchor", frame, 0.0);
        const ShapePlace position = PairAt(*layer, "transform.position", frame, 0.0);
        const ShapePlace scale = PairAt(*layer, "transform.scale", frame, 1.0);
        const double degrees = PairAt(*layer, "transform.rotate", frame, 0.0).x;
        map = map * MatrixAt(*layer, frame) *
              PlaneMap::Move(anchor.x + position.x, anchor.y + position.y) *
              PlaneMap::Turn(degrees) * PlaneMap::Scale(scale.x, scale.y) *
              PlaneMap::Move(-anchor.x, -anchor.y);
    }
    return map;
}

void LayerChain::Check(ImportJob& job) const
{
    for (const FxsObject* layer : layers_) {
        if (layer->problem)
            throw *layer->problem;
        for (const char* id : transformIds) {
            const FxsProperty* property = layer->Find(id);
            if (!property)
                continue;
            const std::size_t count = property->keys.front().numbers.size();
            for (const FxsKey& key : property->keys) {
                const bool isMatrix = id == transformIds[0];
                if (key.numbers.size() != count || (isMatrix && count != 16 && count != 0))
                    throw ImportFailure{key.line, std::string(id) + " is not understood"};
            }
            if (id == std::string_view("transform.rotate"))
                job.Assume(0, "rotations of layers are taken as degrees, clockwise");
        }
    }
}

std::string LowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return char(std::tolower(c)); });
    return text;
}

class FxsConverter {
public:
    FxsConverter(ImportJob& job, const FxsFile& file)
        : job_(job), image_(job.Image(file.width, file.height)),
          start_(file.startFrame.value_or(job.Context().startFrame))
    {
        if (!file.startFrame)
            job.Assume(0, "it does not tell the frame of its beginning");
    }
    /// What a layer has and all that is in it takes over.
    struct Inherited {
        LayerChain chain;
        bool isVisible = true;
        bool isLocked = false;
    };
    void Convert(const FxsObject& object, const Inherited& outer);

private:
    void ConvertShape(const FxsObject& object, const Inherited& layer);
    void NoteLayer(const FxsObject& layer);
    void SetKind(ImportedShape& shape, const FxsProperty& path);
    void SetKeys(ImportedShape& shape, const FxsProperty& path, const LayerChain& chain);
    void SetRest(ImportedShape& shape, const FxsObject& object);
    std::vector<PolyPoint> PointsAt(std::span<const FxsKey> keys, double frame) const;
    ShapePlace Place(ShapePlace place, const PlaneMap& map) const;

    ImportJob& job_;
    ImageFrame image_;
    double start_;
};

/// Heights of the image from its centre, y downwards, x also times the pixel aspect.
ShapePlace FxsConverter::Place(ShapePlace place, const PlaneMap& map) const
{
    const ShapePlace moved = map.Apply(place);
    return {0.5 + moved.x * image_.HeightsPerWidth(), 0.5 - moved.y};
}

/// Of keys with as many points in each.
std::vector<PolyPoint> FxsConverter::PointsAt(std::span<const FxsKey> keys, double frame) const
{
    const auto next =
        std::upper_bound(keys.begin(), keys.end(), frame,
                         [](double wanted, const FxsKey& key) { return wanted < key.frame; });
    if (next == keys.begin())
        return next->path;
    const FxsKey& last = *(next - 1);
    std::vector<PolyPoint> points = last.path;
    if (next == keys.end() || last.interpolation == Interpolation::Step)
        return points;
    const auto parts = FxsPartsAt(keys, std::size_t(next - keys.begin()), frame);
    for (std::size_t i = 0; i < points.size(); ++i) {
        for (double PolyPoint::*member : {&PolyPoint::x, &PolyPoint::y, &PolyPoint::inX,
                                          &PolyPoint::inY, &PolyPoint::outX, &PolyPoint::outY}) {
            points[i].*member = 0.0;
            for (const auto& [key, weight] : parts)
                points[i].*member += weight * (key.path[i].*member);
        }
    }
    return points;
}

void FxsConverter::SetKind(ImportedShape& shape, const FxsProperty& path)
{
    const FxsKey& first = path.keys.front();
    shape.closed = first.isClosed;
    if (first.pathType == "Bezier") {
        shape.kind = ImportedShape::Kind::Bezier;
    } else if (first.pathType == "Bspline") {
        shape.kind = ImportedShape::Kind::BSpline;
    } else if (first.pathType == "Xspline") {
        shape.kind = ImportedShape::Kind::Cardinal;
        job_.LeaveAside(shape.line, Quoted(shape.name) + " is an X-spline: its points were taken, "
                                                         "its curve is a cardinal spline");
    } else {
        throw ImportFailure{first.line,
                            "paths of type " + Quoted(first.pathType) + " are not understood"};
    }
    for (const FxsKey& key : path.keys) {
        if (key.isClosed != first.isClosed || key.pathType != first.pathType)
            throw ImportFailure{key.line, "the path changes its kind over time"};
    }
}

void FxsConverter::SetKeys(ImportedShape& shape, const FxsProperty& path, const LayerChain& chain)
{
    std::vector<FxsKey> keys;
    for (const FxsKey& key : path.keys) {
        if (key.path.size() == path.keys.front().path.size())
            keys.push_back(key);
        else
            job_.LeaveAside(key.line, Quoted(shape.name) + ": a key has another number of points");
    }
    KeyTimes times;
    if (path.isAnimated)
        times.Add(TimesOf(path));
    chain.AddTimes(times);
    std::vector<double> frames = times.Take(shape.line);
    if (frames.empty())
        frames.push_back(0.0);
    job_.CountPoints(frames.size() * keys.front().path.size(), shape.line);
    for (const double frame : frames) {
        const PlaneMap map = chain.At(frame);
        const auto ruling = std::find_if(keys.rbegin(), keys.rend() - 1,
                                         [&](const FxsKey& key) { return key.frame <= frame; });
        ImportedKey key{start_ + frame, ruling->interpolation, PointsAt(keys, frame)};
        for (PolyPoint& point : key.points) {
            point = PointFromPlaces(Place(point.Place(), map), Place(point.In(), map),
                                    Place(point.Out(), map));
        }
        shape.keys.push_back(std::move(key));
    }
}

/// What stands beside the path. Opacity counts to 100.
void FxsConverter::SetRest(ImportedShape& shape, const FxsObject& object)
{
    if (const FxsProperty* opacity = object.Find("opacity")) {
        for (const FxsKey& key : opacity->keys) {
            if (key.numbers.size() != 1)
                throw ImportFailure{key.line, "its opacity is not understood"};
            shape.opacity.push_back(
                {start_ + key.frame, key.numbers[0] / 100.0, key.interpolation});
        }
    }
    const auto textOf = [&](const char* id) {
        const FxsProperty* property = object.Find(id);
        return property ? LowerCase(property->keys.front().text) : std::string();
    };
    if (const std::string invert = textOf("invert"); !invert.empty())
        shape.inverted = invert == "true" || invert == "1";
    shape.combine = textOf("mode");
    if (const FxsProperty* feather = object.Find("feather")) {
        const auto isSet = [](const FxsKey& key) {
            return key.numbers != std::vector<double>{0.0} && !key.numbers.empty();
        };
        if (std::any_of(feather->keys.begin(), feather->keys.end(), isSet))
            job_.LeaveAside(object.line, Quoted(shape.name) + ": its feather is not taken");
    }
}

void FxsConverter::ConvertShape(const FxsObject& object, const Inherited& layer)
{
    ImportedShape shape;
    shape.name = object.name;
    shape.line = object.line;
    shape.visible = layer.isVisible && !object.isHidden;
    shape.locked = layer.isLocked || object.isLocked;
    try {
        if (object.problem)
            throw *object.problem;
        layer.chain.Check(job_);
        const FxsProperty* path = object.Find("path");
        if (!path || path->keys.front().path.empty())
            throw ImportFailure{object.line, "it has no path"};
        SetKind(shape, *path);
        SetKeys(shape, *path, layer.chain);
        SetRest(shape, object);
    } catch (const ImportFailure& failure) {
        if (failure.isFatal)
            throw;
        job_.Drop(failure.line, Quoted(object.name) + ": " + failure.reason);
        return;
    }
    job_.Take(std::move(shape));
}

/// What a layer does to its shapes together has no like here.
void FxsConverter::NoteLayer(const FxsObject& layer)
{
    struct Effect {
        const char* id;
        double idle; // does nothing as this number, or as the text
        const char* idleText;
    };
    constexpr Effect effects[] = {{"opacity", 100.0, ""},
                                  {"invert", 0.0, "false"},
                                  {"mode", 0.0, "add"},
                                  {"feather", 0.0, ""}};
    for (const Effect& effect : effects) {
        const FxsProperty* property = layer.Find(effect.id);
        const auto isSet = [&](const FxsKey& key) {
            const auto isIdle = [&](double number) { return number == effect.idle; };
            return key.numbers.empty()
                       ? !key.text.empty() && LowerCase(key.text) != effect.idleText
                       : !std::all_of(key.numbers.begin(), key.numbers.end(), isIdle);
        };
        if (property && std::any_of(property->keys.begin(), property->keys.end(), isSet)) {
            job_.LeaveAside(layer.line, "the " + std::string(effect.id) + " of the layer " +
                                            Quoted(layer.name) + " is not taken");
        }
    }
}

void FxsConverter::Convert(const FxsObject& object, const Inherited& outer)
{
    if (!object.isLayer)
        return ConvertShape(object, outer);
    NoteLayer(object);
    const Inherited inner{LayerChain(outer.chain, object), outer.isVisible && !object.isHidden,
                          outer.isLocked || object.isLocked};
    for (const FxsObject& child : object.children)
        Convert(child, inner);
}

} // namespace

void ReadFxsShapes(ImportJob& job)
{
    const FxsFile file = ReadFxsFile(job);
    FxsConverter(job, file).Convert(file.root, {});
}

} // namespace Marlox
