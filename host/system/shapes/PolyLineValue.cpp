// Shapes as values: animated, compared, in documents and scripts.

#include "system/shapes/PolyLine.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Marlox {

namespace {

constexpr std::size_t numbersOfPoint = 7; // that animation interpolates
constexpr std::size_t leastFields = 4;    // id, flags, x, y

/// What a document has of a point, in this order; zeros at the end are left out.
constexpr std::size_t fieldsOfPoint = 15;
using PointFields = std::array<double, fieldsOfPoint>;

PointFields FieldsOf(const PolyPoint& p)
{
    return {double(p.id),   double(p.flags), p.x,           p.y,          p.inX,
            p.inY,          p.outX,          p.outY,        p.tension,    p.pen.time,
            p.pen.pressure, p.pen.height,    p.pen.angleXY, p.pen.angleZ, p.pen.rotation};
}

bool IsWhole(double number)
{
    return number >= 0.0 && number <= double(~0u) && number == std::floor(number);
}

bool ReadPoint(const ScriptVal& value, PolyPoint& p)
{
    PointFields fields{};
    const std::size_t length = value.Length();
    if (!value.IsTable() || length < leastFields || length > fieldsOfPoint)
        return false;
    for (std::size_t i = 0; i < length; ++i) {
        const ScriptVal& field = value.Elements()[i];
        fields[i] = field.ToNumber();
        if (!field.IsNumber() || !std::isfinite(fields[i]))
            return false;
    }
    if (!IsWhole(fields[0]) || !IsWhole(fields[1]))
        return false;
    p.id = u32(fields[0]);
    p.flags = u32(fields[1]);
    p.x = fields[2];
    p.y = fields[3];
    p.inX = fields[4];
    p.inY = fields[5];
    p.outX = fields[6];
    p.outY = fields[7];
    p.tension = fields[8];
    p.pen = {float(fields[9]),  float(fields[10]), float(fields[11]),
             float(fields[12]), float(fields[13]), float(fields[14])};
    return true;
}

ScriptVal ToVal(const PolyPoint& point)
{
    const PointFields fields = FieldsOf(point);
    std::size_t count = fields.size();
    while (count > leastFields && fields[count - 1] == 0.0)
        --count;
    ScriptVal list = ScriptVal::MakeTable();
    for (std::size_t i = 0; i < count; ++i)
        list.Append(fields[i]);
    return list;
}

ScriptVal ToVal(const PointLink& link)
{
    ScriptVal table = ScriptVal::MakeTable();
    table.Set("Point", double(link.point));
    table.Set("Input", link.input);
    if (link.kind == PointLink::Kind::Follows) {
        table.Set("Tool", link.tool);
        table.Set("Target", double(link.target));
    }
    return table;
}

bool ReadLink(const ScriptVal& value, PointLink& link)
{
    const double point = value.Get("Point").ToNumber();
    const double target = value.Get("Target").ToNumber();
    if (!IsWhole(point) || !IsWhole(target) || !value.Get("Input").IsString())
        return false;
    const bool follows = value.Get("Tool").IsString();
    link = {follows ? PointLink::Kind::Follows : PointLink::Kind::Published, u32(point),
            value.Get("Input").ToString(), value.Get("Tool").ToString(), u32(target)};
    return true;
}

} // namespace

MxID PolyLine::GetDataType() const
{
    static const MxID id(CLSID_DataType_Polyline);
    return id;
}

Ref<Parameter> PolyLine::Copy() const
{
    return CopyShape();
}

bool PolyLine::IsEqual(const Parameter& other) const
{
    if (this == &other)
        return true;
    if (other.GetDataType() != GetDataType())
        return false;
    const auto& shape = static_cast<const PolyLine&>(other);
    return closed_ == shape.closed_ && enabled_ == shape.enabled_ && points_ == shape.points_ &&
           links_ == shape.links_;
}

ScriptVal PolyLine::ToScriptVal() const
{
    ScriptVal points = ScriptVal::MakeTable();
    for (const PolyPoint& point : points_)
        points.Append(ToVal(point));
    ScriptVal table = ScriptVal::MakeTable();
    table.Set("Kind", std::string(GetDataType().View()));
    table.Set("Closed", closed_);
    if (!enabled_)
        table.Set("Enabled", false);
    if (!links_.empty()) {
        ScriptVal links = ScriptVal::MakeTable();
        for (const PointLink& link : links_)
            links.Append(ToVal(link));
        table.Set("Links", links);
    }
    table.Set("Points", points);
    return table;
}

bool PolyLine::Save(ScriptVal& to) const
{
    to = ToScriptVal();
    return true;
}

Ref<Parameter> PolyLine::FromShapeVal(const MxID& dataType, const ScriptVal& value)
{
    const ScriptVal& kind = value.Get("Kind");
    const Ref<PolyLine> shape =
        Create(kind.IsString() ? MxID(std::string_view(kind.ToString())) : dataType);
    const ScriptVal& list = value.Get("Points");
    if (!shape || !list.IsTable() || list.Length() > std::size_t(maxPoints))
        return {};
    std::vector<PolyPoint> points(list.Length());
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (!ReadPoint(list.Elements()[i], points[i]))
            return {};
    }
    shape->SetPoints(std::move(points));
    for (const ScriptVal& element : value.Get("Links").Elements()) {
        PointLink link;
        if (!ReadLink(element, link))
            return {};
        if (shape->GetIndex(link.point) >= 0)
            shape->links_.push_back(std::move(link));
    }
    if (value.Get("Closed").ToBool())
        shape->Close();
    shape->SetEnabled(value.Get("Enabled").ToBool(true));
    return shape;
}

std::span<const double> PolyLine::Components() const
{
    const std::lock_guard lock(cacheMutex_);
    if (!components_) {
        components_ = std::make_unique<std::vector<double>>();
        components_->reserve(points_.size() * numbersOfPoint);
        for (const PolyPoint& p : points_)
            components_->insert(components_->end(),
                                {p.x, p.y, p.inX, p.inY, p.outX, p.outY, p.tension});
    }
    return *components_;
}

Ref<Parameter> PolyLine::WithComponents(std::span<const double> components) const
{
    const Ref<PolyLine> made = CopyShape();
    std::vector<PolyPoint>& points = made->OwnPoints();
    const std::size_t count = std::min(points.size(), components.size() / numbersOfPoint);
    for (std::size_t i = 0; i < count; ++i) {
        const double* const from = &components[i * numbersOfPoint];
        PolyPoint& p = points[i];
        p.x = from[0];
        p.y = from[1];
        p.inX = from[2];
        p.inY = from[3];
        p.outX = from[4];
        p.outY = from[5];
        p.tension = from[6];
    }
    return made;
}

} // namespace Marlox
