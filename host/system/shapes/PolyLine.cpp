#include "system/shapes/PolyLine.h"

#include "system/shapes/BSplinePolyLine.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

PolyLine::PolyLine(const PolyLine& other)
    : Parameter(), LockableObject(other), points_(other.points_), links_(other.links_),
      lastId_(other.lastId_), closed_(other.closed_), enabled_(other.enabled_)
{
}

Ref<PolyLine> PolyLine::Create(const MxID& dataType)
{
    if (dataType == MxID(CLSID_DataType_Polyline))
        return MakeRef<PolyLine>();
    if (dataType == MxID(CLSID_DataType_BSplinePolyline))
        return MakeRef<BSplinePolyLine>();
    if (dataType == MxID(CLSID_DataType_CardinalSplinePolyline))
        return MakeRef<CardinalPolyLine>();
    return {};
}

bool IsShapeType(const MxID& dataType)
{
    return dataType == MxID(CLSID_DataType_Polyline) ||
           dataType == MxID(CLSID_DataType_BSplinePolyline) ||
           dataType == MxID(CLSID_DataType_CardinalSplinePolyline);
}

Ref<PolyLine> PolyLine::CopyShape() const
{
    return MakeRef<PolyLine>(*this);
}

// Points -----------------------------------------------------------------------------------------

const PolyPoint* PolyLine::First(u32 flags) const
{
    const auto found = std::find_if(points_.begin(), points_.end(),
                                    [flags](const PolyPoint& point) { return point.Has(flags); });
    return found == points_.end() ? nullptr : &*found;
}

const PolyPoint* PolyLine::Last(u32 flags) const
{
    const auto found = std::find_if(points_.rbegin(), points_.rend(),
                                    [flags](const PolyPoint& point) { return point.Has(flags); });
    return found == points_.rend() ? nullptr : &*found;
}

const PolyPoint* PolyLine::GetPoint(int index) const
{
    return index >= 0 && index < GetCount() ? &points_[std::size_t(index)] : nullptr;
}

PolyPoint* PolyLine::GetPoint(int index)
{
    return index >= 0 && index < GetCount() ? &OwnPoints()[std::size_t(index)] : nullptr;
}

int PolyLine::GetIndex(const KeyPoint& point) const
{
    return GetPoint(point.index) ? point.index : -1;
}

int PolyLine::GetIndex(u32 id) const
{
    const auto found = std::find_if(points_.begin(), points_.end(),
                                    [id](const PolyPoint& point) { return point.id == id; });
    return found == points_.end() ? -1 : int(found - points_.begin());
}

int PolyLine::GetCount(u32 flags) const
{
    if (flags == 0)
        return int(points_.size());
    return int(std::count_if(points_.begin(), points_.end(),
                             [flags](const PolyPoint& point) { return point.Has(flags); }));
}

bool PolyLine::Close()
{
    if (GetCount() < 2)
        return false;
    closed_ = true;
    return true;
}

void PolyLine::ResetAttrib()
{
    for (PolyPoint& point : OwnPoints()) {
        point.flags = 0;
        point.tension = 0.0;
        point.pen = {};
    }
    links_.clear();
}

/// What was derived from the points is forgotten.
std::vector<PolyPoint>& PolyLine::OwnPoints()
{
    components_.reset();
    return points_;
}

void PolyLine::GiveIds()
{
    for (const PolyPoint& point : points_)
        lastId_ = std::max(lastId_, point.id);
    for (PolyPoint& point : points_) {
        if (point.id == 0)
            point.id = ++lastId_;
    }
}

void PolyLine::SetPoints(std::vector<PolyPoint> points)
{
    OwnPoints() = std::move(points);
    GiveIds();
    std::erase_if(links_, [this](const PointLink& link) { return GetIndex(link.point) < 0; });
    if (GetCount() < 2)
        closed_ = false;
}

void PolyLine::Append(PolyPoint point)
{
    if (GetCount() >= maxPoints)
        return;
    lastId_ = std::max(lastId_, point.id);
    if (point.id == 0)
        point.id = ++lastId_;
    OwnPoints().push_back(point);
}

int PolyLine::InsertPoint(int index, double t)
{
    if (index < 0 || index >= GetSegmentsCount() || GetCount() >= maxPoints)
        return -1;
    const CurveSegment segment = Segment(index);
    const bool hasHandles = GetDataType() == MxID(CLSID_DataType_Polyline);
    t = t >= 0.0 ? std::min(t, 1.0) : 0.0;
    const ShapePlace at = segment.At(t);
    PolyPoint made;
    made.x = at.x;
    made.y = at.y;
    made.id = ++lastId_;
    std::vector<PolyPoint>& points = OwnPoints();
    PolyPoint& before = points[std::size_t(index)];
    PolyPoint& after = points[(std::size_t(index) + 1) % points.size()];
    if (hasHandles && segment.IsStraight()) {
        made.flags = PPF_Linear;
    } else if (hasHandles) { // de Casteljau's division
        const auto mix = [t](ShapePlace a, ShapePlace b) {
            return ShapePlace(std::lerp(a.x, b.x, t), std::lerp(a.y, b.y, t));
        };
        const ShapePlace middle = mix(segment.control1, segment.control2);
        const ShapePlace first = mix(segment.from, segment.control1);
        const ShapePlace last = mix(segment.control2, segment.to);
        const ShapePlace in = mix(first, middle) - at;
        const ShapePlace out = mix(middle, last) - at;
        made.inX = in.x;
        made.inY = in.y;
        made.outX = out.x;
        made.outY = out.y;
        before.outX = first.x - before.x;
        before.outY = first.y - before.y;
        after.inX = last.x - after.x;
        after.inY = last.y - after.y;
    }
    points.insert(points.begin() + index + 1, made);
    return index + 1;
}

int PolyLine::InsertPoint(int after, ShapePlace at)
{
    if (GetCount() >= maxPoints)
        return -1;
    const int index = std::clamp(after + 1, 0, GetCount());
    PolyPoint made;
    made.x = at.x;
    made.y = at.y;
    made.id = ++lastId_;
    std::vector<PolyPoint>& points = OwnPoints();
    points.insert(points.begin() + index, made);
    return index;
}

int PolyLine::RemovePoints(const SelMask& mask)
{
    std::vector<PolyPoint> kept;
    kept.reserve(points_.size());
    for (int i = 0; i < GetCount(); ++i) {
        const PolyPoint& point = points_[std::size_t(i)];
        if (!mask.GetSetItem(i) || point.Has(PPF_Locked))
            kept.push_back(point);
    }
    const int gone = GetCount() - int(kept.size());
    if (gone > 0)
        SetPoints(std::move(kept));
    return gone;
}

void PolyLine::MovePoints(const SelMask& mask, ShapePlace by)
{
    std::vector<PolyPoint>& points = OwnPoints();
    const std::size_t count = std::min(points.size(), mask.Bytes().size());
    for (std::size_t i = 0; i < count; ++i) {
        if (!mask.Bytes()[i] || points[i].Has(PPF_Locked))
            continue;
        points[i].x += by.x;
        points[i].y += by.y;
    }
}

void PolyLine::Reverse()
{
    std::vector<PolyPoint>& points = OwnPoints();
    // A gap lies behind a point: in the new order behind the one that came after it.
    std::vector<bool> gaps(points.size());
    for (std::size_t i = 0; i < points.size(); ++i)
        gaps[i] = points[i].Has(PPF_Gap);
    const std::size_t count = points.size();
    for (std::size_t i = 0; i < count; ++i)
        points[(i + 1) % count].Set(PPF_Gap, gaps[i]);
    for (PolyPoint& point : points) {
        std::swap(point.inX, point.outX);
        std::swap(point.inY, point.outY);
    }
    std::reverse(points.begin(), points.end());
}

int PolyLine::Neighbour(int index, int step) const
{
    const int count = GetCount();
    const int at = index + step;
    if (at >= 0 && at < count)
        return at;
    return closed_ && count > 0 ? (at + count) % count : -1;
}

void PolyLine::Smooth(const KeyPoint& from, std::span<const u8> mask)
{
    const bool hasHandles = GetDataType() == MxID(CLSID_DataType_Polyline);
    const int count = std::min(GetCount(), int(mask.size()));
    std::vector<PolyPoint>& points = OwnPoints();
    for (int i = std::max(from.index, 0); i < count; ++i) {
        PolyPoint& point = points[std::size_t(i)];
        if (!mask[std::size_t(i)] || point.Has(PPF_Locked))
            continue;
        point.Set(PPF_Linear, false);
        const int before = Neighbour(i, -1);
        const int after = Neighbour(i, 1);
        if (!hasHandles || (before < 0 && after < 0))
            continue;
        point.Set(PPF_Broken, false);
        const ShapePlace last = before < 0 ? point.Place() : points[std::size_t(before)].Place();
        const ShapePlace next = after < 0 ? point.Place() : points[std::size_t(after)].Place();
        const ShapePlace along = next - last;
        const double length = std::hypot(along.x, along.y);
        const auto handle = [&](ShapePlace other, double sign) {
            const double reach = std::hypot(other.x - point.x, other.y - point.y) / 3.0;
            const double factor = length > 0.0 ? sign * reach / length : 0.0;
            return ShapePlace(along.x * factor, along.y * factor);
        };
        const ShapePlace in = handle(last, -1.0);
        const ShapePlace out = handle(next, 1.0);
        point.inX = in.x;
        point.inY = in.y;
        point.outX = out.x;
        point.outY = out.y;
    }
}

void PolyLine::Linear(const KeyPoint& from, std::span<const u8> mask)
{
    const int count = std::min(GetCount(), int(mask.size()));
    std::vector<PolyPoint>& points = OwnPoints();
    for (int i = std::max(from.index, 0); i < count; ++i) {
        PolyPoint& point = points[std::size_t(i)];
        if (!mask[std::size_t(i)] || point.Has(PPF_Locked))
            continue;
        point.Set(PPF_Linear, true);
        point.inX = point.inY = point.outX = point.outY = 0.0;
    }
}

// Published points and points that follow others

const PointLink* PolyLine::LinkOf(u32 point) const
{
    const auto found = std::find_if(links_.begin(), links_.end(),
                                    [point](const PointLink& link) { return link.point == point; });
    return found == links_.end() ? nullptr : &*found;
}

const PointLink* PolyLine::LinkAt(int index) const
{
    const PolyPoint* const point = GetPoint(index);
    return point ? LinkOf(point->id) : nullptr;
}

void PolyLine::SetLink(PointLink link)
{
    RemoveLink(link.point);
    links_.push_back(std::move(link));
}

void PolyLine::RemoveLink(u32 point)
{
    std::erase_if(links_, [point](const PointLink& link) { return link.point == point; });
}

int PolyLine::GetPublishedPoint(const std::string& input) const
{
    for (const PointLink& link : links_) {
        if (!link.Follows() && link.input == input)
            return GetIndex(link.point);
    }
    return -1;
}

int PolyLine::GetSelectedPublishedPoint(const SelMask& mask) const
{
    for (const int index : mask.Items()) {
        const PointLink* const link = LinkAt(index);
        if (link && !link->Follows())
            return index;
    }
    return -1;
}

void SetMatchingPolyLinePointMask(const SelMask& from, int pointsOfOther, SelMask& to)
{
    to.Create(pointsOfOther);
    for (const int index : from.Items())
        to.DoSet(index, SelMask::Select);
    to.SetLast(from.Last());
}

} // namespace Marlox
