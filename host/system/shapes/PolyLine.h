#pragma once

#include "system/base/LockableObject.h"
#include "system/shapes/PolyPoint.h"
#include "system/shapes/SelMask.h"
#include "system/values/Parameter.h"

#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

namespace Marlox {

/// A cubic Bezier segment of a curve: ends and control points, normalised image coordinates.
struct MARLOXSYSTEM_EXPORT CurveSegment {
    ShapePlace from;
    ShapePlace control1;
    ShapePlace control2;
    ShapePlace to;

    /// The place at `t`, 0 at `from`, 1 at `to`.
    ShapePlace At(double t) const;
    ShapePlace Derivative(double t) const; // by t
    bool IsStraight() const { return control1 == from && control2 == to; }
};

/// What a point of a shape is joined to: an input of its own tool that it feeds and is moved by
/// (published), or a point of another shape that it follows.
struct PointLink {
    enum class Kind { Published, Follows };
    Kind kind = Kind::Published;
    u32 point = 0;     // id of the point
    std::string input; // published: id of the tool's point input; follows: of the other shape's
    std::string tool;  // follows: name of the tool whose shape it is
    u32 target = 0;    // follows: id of the other shape's point

    bool Follows() const { return kind == Kind::Follows; }
    friend bool operator==(const PointLink&, const PointLink&) = default;
};

/// Bounds in normalised image coordinates.
struct ShapeBounds {
    ShapePlace low;
    ShapePlace high;
    bool isEmpty = true; // no point
};

/// A shape: points joined by a curve, open or closed. The base is the Bezier kind; the others
/// derive from it and draw another curve from their points. As a parameter it is a value like any
/// other, and animation interpolates between keys whose shapes have the same number of points,
/// point by point: edits that add or remove points are made to all keys (see ShapeKeys).
///
/// Who changes a shape that others see holds its write lock, who reads one that others change its
/// read lock. A shape that was handed to an input is never changed again: an edit works on a copy.
class MARLOXSYSTEM_EXPORT PolyLine : public Parameter, public LockableObject {
public:
    static constexpr int maxPoints = 1'000'000;

    PolyLine() = default;
    PolyLine(const PolyLine& other);

    /// A new shape of a kind: CLSID_DataType_Polyline and its kin; null for others.
    static Ref<PolyLine> Create(const MxID& dataType);
    virtual Ref<PolyLine> CopyShape() const;

    // Points, from 0. With `flags` only those that have all of them count.
    std::span<const PolyPoint> Points() const { return points_; }
    const PolyPoint* First(u32 flags = 0) const; // null: none
    const PolyPoint* Last(u32 flags = 0) const;
    const PolyPoint* GetPoint(int index) const; // null outside
    PolyPoint* GetPoint(int index);
    int GetIndex(const KeyPoint& point) const; // -1: there is none
    int GetIndex(u32 id) const;
    int GetCount(u32 flags = 0) const;
    /// One that is not enabled is kept, yet neither shown nor drawn into masks.
    bool IsEnabled() const { return enabled_; }
    void SetEnabled(bool enabled) { enabled_ = enabled; }
    bool IsClosed() const { return closed_; }
    /// False: it has fewer than two points.
    bool Close();
    void Open() { closed_ = false; }
    /// Forgets flags, tension, pen and links of all points; ids stay.
    void ResetAttrib();

    // Changes of the points. New points without an id get the next one.
    void SetPoints(std::vector<PolyPoint> points);
    void Append(PolyPoint point);
    /// A new point on the curve of the segment that begins at point `index`, at `t` (0 to 1) along
    /// it. A Bezier shape keeps its form; that of other kinds changes a little. The new point's
    /// index, or -1 when there is no such segment or the shape is full.
    int InsertPoint(int index, double t);
    /// A new point behind `after` (-1: before all) at a place, without handles. Its index, or -1
    /// when the shape is full.
    int InsertPoint(int after, ShapePlace at);
    /// Removes the selected points and their links; locked ones stay. How many went.
    int RemovePoints(const SelMask& mask);
    /// Moves the selected points with their handles; locked ones stay.
    void MovePoints(const SelMask& mask, ShapePlace by);
    /// Turns the order of the points round; the form stays.
    void Reverse();
    /// Points of the byte mask (1: this one; as long as there are points), from `from.index` on,
    /// become smooth: handles along the direction between their neighbours, a third of the way to
    /// each, clear of PPF_Linear. Kinds without handles only lose that flag. Locked ones stay.
    virtual void Smooth(const KeyPoint& from, std::span<const u8> mask);
    /// The same, to corners: without handles, and with PPF_Linear.
    virtual void Linear(const KeyPoint& from, std::span<const u8> mask);

    // The curve.
    /// Number of segments: as many as points when closed (and at least two), else one less.
    int GetSegmentsCount() const;
    /// Segment `index`, from 0 to GetSegmentsCount() less one, begins at the point of that index.
    virtual CurveSegment Segment(int index) const;
    /// The place at `at`: the whole part tells the segment, the rest how far along it; clamped.
    ShapePlace ValueAt(double at) const;
    /// The place at `fraction` (0 to 1) of the curve's length, measured in image widths when
    /// `heightsPerWidth` is the image's height over its width. False: no points.
    bool GetPointOnPath(double fraction, double heightsPerWidth, ShapePlace& at,
                        ShapePlace* direction = nullptr) const;
    /// The curve as straight lines, no further than `tolerance` from it. For each place the
    /// parameter as in ValueAt when `parameters` is given. A closed curve ends where it began.
    std::vector<ShapePlace> GetSamplePoints(double tolerance,
                                            std::vector<double>* parameters = nullptr) const;
    /// Of the curve (control points count), so it may be a little larger than the curve is.
    ShapeBounds CalcMinMax() const;

    // Regular forms, in place of the points there are. Sizes along x are fractions of the image's
    // width, along y of its height; `angle` in degrees, counter-clockwise as seen in an image whose
    // height over width is `heightsPerWidth`.
    virtual void MakeEllipse(ShapePlace center, double width, double height, double angle,
                             double heightsPerWidth = 1.0, bool clockwise = false);
    virtual void MakeRectangle(ShapePlace center, double width, double height, double angle,
                               double heightsPerWidth = 1.0, bool clockwise = false);
    /// An open spiral from radius `from` to radius `to` (image widths) in `turns` turns, with
    /// `pointsPerTurn` points in each, from `startAngle` on.
    virtual void MakeSpiral(ShapePlace center, double from, double to, double turns,
                            double startAngle, int pointsPerTurn, double heightsPerWidth = 1.0,
                            bool clockwise = false);

    // Published points and points that follow others.
    const std::vector<PointLink>& Links() const { return links_; }
    const PointLink* LinkOf(u32 point) const; // null: none
    const PointLink* LinkAt(int index) const; // of the point there
    void SetLink(PointLink link);             // in place of the one its point had
    void RemoveLink(u32 point);
    /// The index of the point that feeds this input; -1: none.
    int GetPublishedPoint(const std::string& input) const;
    /// The first selected point that is published; -1: none.
    int GetSelectedPublishedPoint(const SelMask& mask) const;

    /// The form in documents, as ToScriptVal gives it.
    bool Save(ScriptVal& to) const override;

    // Parameter
    MxID GetDataType() const override;
    Ref<Parameter> Copy() const override;
    bool IsEqual(const Parameter& other) const override;
    ScriptVal ToScriptVal() const override;
    /// Of the kind that the value names, otherwise of `dataType`.
    static Ref<Parameter> FromShapeVal(const MxID& dataType, const ScriptVal& value);
    /// Seven for each point: place, handles, tension.
    std::span<const double> Components() const override;
    Ref<Parameter> WithComponents(std::span<const double> components) const override;
    std::size_t SizeOf() const override { return sizeof(*this); }

    friend bool operator==(const PolyLine& a, const PolyLine& b) { return a.IsEqual(b); }

protected:
    std::vector<PolyPoint>& OwnPoints();
    /// The index before or behind `index`; in an open shape the ends have none: -1.
    int Neighbour(int index, int step) const;

private:
    void GiveIds();

    std::vector<PolyPoint> points_;
    std::vector<PointLink> links_;
    u32 lastId_ = 0;
    bool closed_ = false;
    bool enabled_ = true;
    mutable std::mutex cacheMutex_;
    mutable std::unique_ptr<std::vector<double>> components_; // made when first asked for
};

/// Whether it is one of the kinds of shapes: an input of one carries shapes of any.
MARLOXSYSTEM_EXPORT bool IsShapeType(const MxID& dataType);

// Distances and bounds ---------------------------------------------------------------------------

/// Where a curve comes nearest to a place.
struct CurveFoot {
    double distance = 0.0; // in view or image pixels, as `scale` tells
    int nearest = -1;      // index of the nearest point of the shape
    int segment = -1;      // on which the foot lies
    double t = 0.0;        // how far along it
    ShapePlace foot;       // normalised image coordinates
};

/// The nearest place on the curve to `at`, with distances measured in units of `scale` for each
/// axis (the image's pixels, or the view's). `closed` counts the segment from the last point to the
/// first. `segment` is -1 when there are fewer than two points.
MARLOXSYSTEM_EXPORT CurveFoot DistancePointToPolygon(ShapePlace at, const PolyLine& shape,
                                                     bool closed, ShapePlace scale);
/// Evens out handles while they are dragged: the other handle of a smooth point is turned into line
/// with the one that moved (`moved` is the in handle or the out handle) and keeps its length.
/// Lengths are measured with y times `heightsPerWidth`.
MARLOXSYSTEM_EXPORT void SmoothFast(PolyPoint& point, bool inMoved, double heightsPerWidth);
/// Carries a selection from one shape to the points at the same positions of another.
MARLOXSYSTEM_EXPORT void SetMatchingPolyLinePointMask(const SelMask& from, int pointsOfOther,
                                                      SelMask& to);
/// Of places.
MARLOXSYSTEM_EXPORT ShapeBounds CalcMinMax(std::span<const ShapePlace> places);

} // namespace Marlox
