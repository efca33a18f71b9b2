// Shapes as values: animated, compared, in documents and scripts.

#include "system/shapes/PolyLine.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Marlox {

namespace {

/// The numbers of a point that animation interpolates, in the order in which documents have them.
constexpr double PolyPoint::*numbers[] = {&PolyPoint::x,      &PolyPoint::y,    &PolyPoint::inX,
                                          &PolyPoint::inY,    &PolyPoint::outX, &PolyPoint::outY,
                                          &PolyPoint::tension};
constexpr float PenSample::*penNumbers[] = {&PenSample::time,   &PenSample::pressure,
                                            &PenSample::height, &PenSample::angleXY,
                                            &PenSample::angleZ, &PenSample::rotation};
constexpr std::size_t numbersOfPoint = std::size(numbers);
constexpr std::size_t leastFields = 4; // id, flags, x, y

/// What a document has of a point: id, flags, and the numbers above; zeros at the end are left out.
constexpr std::size_t fieldsOfPoint = 2 + numbersOfPoint + std::size(penNumbers);
using PointFields = std::array<double, fieldsOfPoint>;

PointFields FieldsOf(const PolyPoint& p)
{
    PointFields fields{double(p.id), double(p.flags)};
    std::size_t at = 2;
    for (const auto number : numbers)
        fields[at++] = p.*number;
    for (const auto number : penNumbers)
        fields[at++] = double(p.pen.*number);
    return fields;
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
    std::size_t at = 2;
    for (const auto number : numbers)
        p.*number = fields[at++];
    for (const auto number : penNumbers)
        p.pen.*number = float(fields[at++]);
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
    if (link.Follows()) {
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
        components_ = std::make_unique<std::vector<double>>(points_.size() * numbersOfPoint);
        double* to = components_->data();
        for (const PolyPoint& p : points_) {
            for (const auto number : numbers)
                *to++ = p.*number;
        }
    }
    return *components_;
}

Ref<Parameter> PolyLine::WithComponents(std::span<const double> components) const
{
    const Ref<PolyLine> made = CopyShape();
    std::vector<PolyPoint>& points = made->OwnPoints();
    const std::size_t count = std::min(points.size(), components.size() / numbersOfPoint);
    const double* from = components.data();
    for (std::size_t i = 0; i < count; ++i) {
        for (const auto number : numbers)
            points[i].*number = *from++;
    }
    return made;
}

} // namespace Marlox
