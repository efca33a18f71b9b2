#pragma once

#include "system/shapes/ShapeFit.h"

#include <cmath>

namespace Marlox {

inline ShapePlace operator*(ShapePlace a, double factor)
{
    return {a.x * factor, a.y * factor};
}
inline double Dot(ShapePlace a, ShapePlace b)
{
    return a.x * b.x + a.y * b.y;
}
inline double Length(ShapePlace a)
{
    return std::sqrt(Dot(a, a));
}

/// A place that a curve is fitted to, in the units of the error.
struct FitPlace {
    ShapePlace at;
    double along = 0.0;    // the stroke's length up to here
    double weight = 1.0;   // the length that it stands for
    std::size_t first = 0; // samples that it is the mean of: from here
    std::size_t last = 0;  // to here
};

/// A stroke made ready: scaled, samples that lie close together replaced by their mean, closed, and
/// its corners found. Part of the fitting; of no use elsewhere.
struct FitStroke {
    FitStroke() = default;
    /// `spacing`: samples that are closer along the stroke are joined; 0: none are.
    FitStroke(std::span<const StrokeSample> stroke, const FitOptions& options, double spacing);

    std::vector<ShapePlace> samples; // all that count, scaled
    std::vector<std::size_t> source; // their indices in the stroke
    std::vector<FitPlace> places;    // of a closed stroke, the last one is the first again
    std::vector<int> corners; // indices of places, ascending; of an open stroke, its ends too
    bool closed = false;
    bool IsRound() const { return closed && corners.empty(); }
    double Scatter() const; // how far samples lie from their means, across the stroke

private:
    void Take(std::span<const StrokeSample> stroke, const FitOptions& options);
    void CloseUp(const FitOptions& options);
    void Join(double spacing);
    void Measure();
    void FindCorners(const FitOptions& options);
    double SparseTurn(int place, double least) const;
    int TipNear(int corner, double reach) const;
    void BeginAtCorner();
    void BeginBetween(std::vector<double>& turns);
    void Rotate(int begin);
};

/// The direction of the stroke at a place, from the places within `reach` of it along the stroke
/// between two others (of a stroke without ends, anywhere). Zero: there is none.
ShapePlace DirectionAt(const FitStroke& stroke, int place, int from, int to, double reach);

/// How far samples lie from a curve, of which `segments` tells for each place where it was fitted;
/// exact where that is more than `enough`.
double FarthestSample(const FitStroke& stroke, std::span<const CurveSegment> curve,
                      std::span<const int> segments, double enough);

/// A point of the shape at a place of the curve, with the pen's report from a place of the stroke.
PolyPoint PointAt(std::span<const StrokeSample> samples, const FitStroke& stroke, int place,
                  ShapePlace at, const FitOptions& options);

/// Where the curve of a segment comes nearest to a place, from a guess on; two steps of Newton's
/// method.
double Closer(const CurveSegment& segment, ShapePlace at, double t);

} // namespace Marlox
