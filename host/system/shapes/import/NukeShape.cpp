#include "system/shapes/PolyLine.h"
#include "system/shapes/import/ImportText_p.h"
#include "system/shapes/import/NukeScript_p.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

constexpr std::size_t inTangent = 0; // of the three places of a Bezier vertex
constexpr std::size_t centre = 1;
constexpr std::size_t outTangent = 2;
constexpr std::size_t placesPerVertex = 3;

ShapePlace At(const NukePlace& place, double time)
{
    return {place[0].At(time), place[1].At(time)};
}

/// One vertex at one time, as places in pixels before any transform.
struct Vertex {
    ShapePlace at;
    ShapePlace in;
    ShapePlace out;
};

Vertex VertexAt(const NukeCurve& curve, bool isBSpline, std::size_t index, double time)
{
    if (isBSpline) {
        const ShapePlace at = At(curve.places[index], time);
        return {at, at, at};
    }
    const NukePlace* places = &curve.places[index * placesPerVertex];
    Vertex vertex{At(places[centre], time), At(places[inTangent], time),
                  At(places[outTangent], time)};
    if (curve.flags & NF_RelativeTangents) {
        vertex.in = vertex.at + vertex.in;
        vertex.out = vertex.at + vertex.out;
    }
    return vertex;
}

/// Feather points are told as offsets from the curve's; their tangents belong to them.
Vertex FeatherAt(const NukeShape& shape, std::size_t index, double time)
{
    const ShapePlace base = VertexAt(shape.curve, shape.isBSpline, index, time).at;
    const Vertex vertex = VertexAt(shape.feather, shape.isBSpline, index, time);
    return {base + vertex.at, base + vertex.in, base + vertex.out};
}

void AddTimes(const NukeCurve& curve, KeyTimes& times)
{
    for (const double time : curve.times)
        times.Add(time);
    for (const NukePlace& place : curve.places) {
        for (const AnimatedNumber& number : place)
            times.Add(number);
    }
}

bool HasFeather(const NukeShape& shape)
{
    const NukeCurve& feather = shape.feather;
    if (feather.places.size() != shape.curve.places.size())
        return false;
    const std::size_t step = shape.isBSpline ? 1 : placesPerVertex;
    for (std::size_t i = shape.isBSpline ? 0 : centre; i < feather.places.size(); i += step) {
        if (!feather.places[i][0].Is(0.0) || !feather.places[i][1].Is(0.0))
            return true;
    }
    return false;
}

constexpr double sameInterpolation = 2e-5; // of the image's width
constexpr double samplesOf[] = {0.21, 0.5, 0.79};
constexpr double mostBakedPoints = 1e6;

/// A shape at one time with its feather, if it has one.
struct Moment {
    ImportedKey inner;
    ImportedKey outer;
};

/// How a segment goes on, as far as it is one of the ways that keys can have.
struct SegmentFit {
    bool isLinear = true;
    bool isHeld = true;
};

/// Calls `compare` with each number of a point in all of the keys.
template <class Compare>
void CompareNumbers(const Moment& a, const Moment& b, const Moment& at, Compare compare)
{
    for (ImportedKey Moment::*part : {&Moment::inner, &Moment::outer}) {
        for (std::size_t i = 0; i < (at.*part).points.size(); ++i) {
            for (double PolyPoint::*number : {&PolyPoint::x, &PolyPoint::y, &PolyPoint::inX,
                                              &PolyPoint::inY, &PolyPoint::outX, &PolyPoint::outY})
                compare((a.*part).points[i].*number, (b.*part).points[i].*number,
                        (at.*part).points[i].*number);
        }
    }
}

/// One shape on its way, with the transforms it lies under.
class NukeConverter {
public:
    NukeConverter(ImportJob& job, const ImageFrame& image, const NukeShape& shape,
                  const NukeChain& layers)
        : job_(job), image_(image), shape_(shape), chain_(layers)
    {
        chain_.push_back(&shape.transform);
    }
    ImportedShape Convert();

private:
    void Check();
    std::vector<double> Times();
    ImportedKey KeyAt(double time, bool isFeather) const;
    Moment MomentAt(double time) const;
    SegmentFit FitOf(const Moment& from, const Moment& to) const;
    bool AreSmooth(const std::vector<Moment>& moments) const;
    void SetInterpolations(std::vector<Moment>& moments) const;
    void Bake(std::vector<Moment>& moments);

    ImportJob& job_;
    const ImageFrame& image_;
    const NukeShape& shape_;
    NukeChain chain_;
    std::size_t count_ = 0; // of vertices
    bool hasFeather_ = false;
};

void NukeConverter::Check()
{
    const std::size_t places = shape_.curve.places.size();
    if (places == 0)
        throw ImportFailure{shape_.line, "it has no points"};
    if (!shape_.isBSpline && places % placesPerVertex != 0)
        throw ImportFailure{shape_.line, "its points and tangents do not come in threes"};
    count_ = shape_.isBSpline ? places : places / placesPerVertex;
    if (count_ > std::size_t(maxImportedPoints))
        throw ImportFailure{shape_.line, "it has too many points"};
    for (const NukeTransform* transform : chain_) {
        if (!transform->problem.empty())
            throw ImportFailure{shape_.line, transform->problem};
    }
    hasFeather_ = HasFeather(shape_);
    if (!shape_.feather.places.empty() && shape_.feather.places.size() != places) {
        job_.LeaveAside(shape_.line,
                        Quoted(shape_.name) + ": its feather has another number of points");
    }
}

std::vector<double> NukeConverter::Times()
{
    KeyTimes gathered;
    AddTimes(shape_.curve, gathered);
    if (hasFeather_)
        AddTimes(shape_.feather, gathered);
    for (const NukeTransform* transform : chain_)
        transform->AddTimes(gathered);
    std::vector<double> times = gathered.Take(shape_.line);
    if (times.empty())
        times.push_back(job_.Context().startFrame);
    job_.CountPoints(count_ * times.size() * (hasFeather_ ? 2 : 1), shape_.line);
    return times;
}

ImportedKey NukeConverter::KeyAt(double time, bool isFeather) const
{
    PlaneMap map;
    for (const NukeTransform* transform : chain_)
        map = map * transform->At(time);
    const auto place = [&](ShapePlace at) {
        const ShapePlace moved = map.Apply(at);
        return image_.FromPixels(moved.x, moved.y);
    };
    ImportedKey key{time, Interpolation::Linear, {}};
    for (std::size_t i = 0; i < count_; ++i) {
        const Vertex vertex = isFeather ? FeatherAt(shape_, i, time)
                                        : VertexAt(shape_.curve, shape_.isBSpline, i, time);
        key.points.push_back(
            PointFromPlaces(place(vertex.at), place(vertex.in), place(vertex.out)));
    }
    return key;
}

Moment NukeConverter::MomentAt(double time) const
{
    return {KeyAt(time, false), hasFeather_ ? KeyAt(time, true) : ImportedKey()};
}

SegmentFit NukeConverter::FitOf(const Moment& from, const Moment& to) const
{
    SegmentFit fit;
    for (const double part : samplesOf) {
        const Moment at = MomentAt(std::lerp(from.inner.time, to.inner.time, part));
        CompareNumbers(from, to, at, [&](double a, double b, double is) {
            fit.isLinear =
                fit.isLinear && std::abs(std::lerp(a, b, part) - is) <= sameInterpolation;
            fit.isHeld = fit.isHeld && std::abs(a - is) <= sameInterpolation;
        });
    }
    return fit;
}

/// Whether smooth segments are those that an animation makes of such keys.
bool NukeConverter::AreSmooth(const std::vector<Moment>& moments) const
{
    for (ImportedKey Moment::*part : {&Moment::inner, &Moment::outer}) {
        Animation animation;
        for (const Moment& moment : moments) {
            const auto line = MakeRef<PolyLine>();
            line->SetPoints((moment.*part).points);
            animation.SetKey(moment.inner.time, line, moment.inner.interpolation);
        }
        for (std::size_t i = 0; i + 1 < moments.size() && !(moments[i].*part).points.empty(); ++i) {
            if (moments[i].inner.interpolation != Interpolation::Smooth)
                continue;
            for (const double sample : samplesOf) {
                const double time =
                    std::lerp(moments[i].inner.time, moments[i + 1].inner.time, sample);
                const Ref<Parameter> value = animation.Evaluate(time);
                const auto points = static_cast<const PolyLine&>(*value).Points();
                Moment made;
                Moment meant;
                (made.*part).points.assign(points.begin(), points.end());
                meant.*part = KeyAt(time, part == &Moment::outer);
                bool isSame = true;
                CompareNumbers(made, made, meant, [&](double a, double, double b) {
                    isSame = isSame && std::abs(a - b) <= sameInterpolation;
                });
                if (!isSame)
                    return false;
            }
        }
    }
    return true;
}

/// By what the curves do between the keys, all of them together.
void NukeConverter::SetInterpolations(std::vector<Moment>& moments) const
{
    Interpolation kind = Interpolation::Linear;
    for (std::size_t i = 0; i < moments.size(); ++i) {
        if (i + 1 < moments.size()) {
            const SegmentFit fit = FitOf(moments[i], moments[i + 1]);
            kind = fit.isLinear ? Interpolation::Linear
                   : fit.isHeld ? Interpolation::Step
                                : Interpolation::Smooth;
        }
        moments[i].inner.interpolation = moments[i].outer.interpolation = kind;
    }
}

/// Smooth segments that an animation can't make get a key at each whole frame.
void NukeConverter::Bake(std::vector<Moment>& moments)
{
    const auto isCurved = [](const Moment& moment) {
        return moment.inner.interpolation == Interpolation::Smooth;
    };
    if (std::none_of(moments.begin(), moments.end(), isCurved) || AreSmooth(moments))
        return;
    double frames = 0.0;
    for (std::size_t i = 0; i + 1 < moments.size(); ++i)
        frames += isCurved(moments[i]) ? moments[i + 1].inner.time - moments[i].inner.time : 0.0;
    if (frames * double(count_) > mostBakedPoints) {
        job_.LeaveAside(shape_.line,
                        Quoted(shape_.name) + ": the slopes of its curves are not taken");
        return;
    }
    std::vector<Moment> baked;
    for (std::size_t i = 0; i < moments.size(); ++i) {
        const double time = moments[i].inner.time;
        const bool isBaked = isCurved(moments[i]);
        baked.push_back(std::move(moments[i]));
        if (!isBaked)
            continue;
        baked.back().inner.interpolation = baked.back().outer.interpolation = Interpolation::Linear;
        for (double frame = std::floor(time) + 1.0;
             i + 1 < moments.size() && frame < moments[i + 1].inner.time; frame += 1.0)
            baked.push_back(MomentAt(frame));
    }
    moments = std::move(baked);
    job_.CountPoints(count_ * moments.size() * (hasFeather_ ? 2 : 1), shape_.line);
    job_.Assume(shape_.line,
                Quoted(shape_.name) +
                    ": where no key goes on like its curves there is one at each frame");
}

ImportedShape NukeConverter::Convert()
{
    Check();
    ImportedShape out;
    out.name = shape_.name;
    out.line = shape_.line;
    out.kind = shape_.isBSpline ? ImportedShape::Kind::BSpline : ImportedShape::Kind::Bezier;
    out.closed = !(shape_.curve.flags & NF_Open);
    std::vector<Moment> moments;
    for (const double time : Times())
        moments.push_back(MomentAt(time));
    SetInterpolations(moments);
    Bake(moments);
    for (Moment& moment : moments) {
        out.keys.push_back(std::move(moment.inner));
        if (hasFeather_)
            out.outerKeys.push_back(std::move(moment.outer));
    }
    return out;
}

} // namespace

PlaneMap NukeTransform::At(double time) const
{
    const auto pair = [&](const AnimatedNumber(&numbers)[2]) {
        return ShapePlace{numbers[0].At(time), numbers[1].At(time)};
    };
    const ShapePlace about = pair(pivot);
    const ShapePlace by = pair(move);
    const ShapePlace size = pair(scale);
    const PlaneMap map = PlaneMap::Move(about.x + by.x, about.y + by.y) *
                         PlaneMap::Turn(turn.At(time)) * PlaneMap::Scale(size.x, size.y) *
                         PlaneMap::Move(-about.x, -about.y);
    if (matrix.empty())
        return map;
    constexpr int places[] = {0, 1, 3}; // x, y, w
    PlaneMap own;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column)
            own.m[row][column] = matrix[std::size_t(places[row] * 4 + places[column])].At(time);
    }
    return own * map;
}

void NukeTransform::AddTimes(KeyTimes& times) const
{
    for (int axis = 0; axis < 2; ++axis) {
        for (const AnimatedNumber* number : {&pivot[axis], &move[axis], &scale[axis]})
            times.Add(*number);
    }
    times.Add(turn);
    times.AddFramesOf(turn); // points go along arcs
    for (const AnimatedNumber& number : matrix)
        times.Add(number);
}

void TakeNukeShape(ImportJob& job, const ImageFrame& image, const NukeShape& shape,
                   const NukeChain& layers, bool isVisible)
{
    ImportedShape out = NukeConverter(job, image, shape, layers).Convert();
    SetNukeAttributes(job, shape, isVisible, out);
    job.Take(std::move(out));
}

} // namespace Marlox
