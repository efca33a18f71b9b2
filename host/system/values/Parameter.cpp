#include "system/values/Parameter.h"

#include "system/color/ColorCurves.h"
#include "system/shapes/BSplinePolyLine.h"
#include "system/values/Image.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

namespace Marlox {

namespace {

/// Equal as a value: a NaN equals a NaN, so that setting it twice changes nothing.
bool sameNumber(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

bool sameComponents(const Parameter& a, const Parameter& b)
{
    const auto left = a.Components();
    const auto right = b.Components();
    return a.GetDataType() == b.GetDataType() &&
           std::equal(left.begin(), left.end(), right.begin(), right.end(), sameNumber);
}

/// Documents written by hand may spell the non-finite numbers as texts.
std::optional<double> readNumber(const ScriptVal& value)
{
    if (value.IsNumber())
        return value.ToNumber();
    if (!value.IsString())
        return {};
    const std::string text = value.ToString();
    if (text == "inf")
        return std::numeric_limits<double>::infinity();
    if (text == "-inf")
        return -std::numeric_limits<double>::infinity();
    if (text == "nan")
        return std::numeric_limits<double>::quiet_NaN();
    return {};
}

ScriptVal listOf(std::span<const double> numbers)
{
    ScriptVal list = ScriptVal::MakeTable();
    for (double number : numbers)
        list.Append(number);
    return list;
}

/// Fills `out` from a list of at least `needed` and at most out.size() numbers.
bool readList(const ScriptVal& value, std::span<double> out, std::size_t needed)
{
    if (!value.IsTable() || value.Length() < needed || value.Length() > out.size() ||
        !value.Fields().empty())
        return false;
    for (std::size_t i = 0; i < value.Length(); ++i) {
        const std::optional<double> number = readNumber(value.At(i + 1));
        if (!number)
            return false;
        out[i] = *number;
    }
    return true;
}

Ref<Parameter> readParameterNumber(const ScriptVal& value)
{
    const std::optional<double> number = readNumber(value);
    return number ? MakeRef<Number>(*number) : nullptr;
}

Ref<Parameter> readPoint(const ScriptVal& value)
{
    std::array<double, 3> xyz{};
    return readList(value, xyz, 2) ? MakeRef<Point>(xyz[0], xyz[1], xyz[2]) : nullptr;
}

Ref<Parameter> readText(const ScriptVal& value)
{
    return value.IsString() ? MakeRef<Text>(value.ToString()) : nullptr;
}

Ref<Parameter> readMatrix(const ScriptVal& value)
{
    std::array<double, 16> elements{};
    return readList(value, elements, 16) ? MakeRef<TransformMatrix>(elements) : nullptr;
}

Ref<Parameter> readColorCurves(const ScriptVal& value)
{
    std::array<double, 2 * ColorCurves::nodeCount> coordinates{};
    return readList(value, coordinates, coordinates.size()) ? MakeRef<ColorCurves>(coordinates)
                                                            : nullptr;
}

template <class T, class... Args>
Ref<Parameter> makeDefault(Args... args)
{
    return MakeRef<T>(args...);
}

template <const char* dataType>
Ref<Parameter> readShape(const ScriptVal& value)
{
    return PolyLine::FromShapeVal(dataType, value);
}

struct Kind {
    const char* classID;
    Ref<Parameter> (*createDefault)();
    Ref<Parameter> (*fromScriptVal)(const ScriptVal&);
};

constexpr Kind kinds[] = {
    {CLSID_DataType_Number, [] { return makeDefault<Number>(); }, readParameterNumber},
    {CLSID_DataType_Point, [] { return makeDefault<Point>(0.5, 0.5); }, readPoint},
    {CLSID_DataType_Text, [] { return makeDefault<Text>(); }, readText},
    {CLSID_DataType_Image, [] { return makeDefault<Image>(); }, nullptr},
    {CLSID_DataType_Mask, [] { return makeDefault<Mask>(); }, nullptr},
    {CLSID_DataType_TransformMatrix, [] { return makeDefault<TransformMatrix>(); }, readMatrix},
    {CLSID_DataType_ColorCurves, [] { return makeDefault<ColorCurves>(); }, readColorCurves},
    {CLSID_DataType_Polyline, [] { return makeDefault<PolyLine>(); },
     readShape<CLSID_DataType_Polyline>},
    {CLSID_DataType_BSplinePolyline, [] { return makeDefault<BSplinePolyLine>(); },
     readShape<CLSID_DataType_BSplinePolyline>},
    {CLSID_DataType_CardinalSplinePolyline, [] { return makeDefault<CardinalPolyLine>(); },
     readShape<CLSID_DataType_CardinalSplinePolyline>},
};

const Kind* findKind(const MxID& dataType)
{
    const auto found = std::find_if(std::begin(kinds), std::end(kinds), [&](const Kind& kind) {
        return dataType.View() == kind.classID;
    });
    return found != std::end(kinds) ? found : nullptr;
}

} // namespace

Ref<Parameter> Parameter::FromScriptVal(const MxID& dataType, const ScriptVal& value)
{
    const Kind* kind = findKind(dataType);
    return kind && kind->fromScriptVal ? kind->fromScriptVal(value) : nullptr;
}

Ref<Parameter> Parameter::CreateDefault(const MxID& dataType)
{
    const Kind* kind = findKind(dataType);
    return kind ? kind->createDefault() : nullptr;
}

TagList& Parameter::Tags()
{
    if (!tags_)
        tags_ = std::make_unique<TagList>();
    return *tags_;
}

bool Parameter::CopyAttr(u64 tag, void* out)
{
    u64 bits = 0;
    if (!tags_ || !tags_->Get(u32(tag), bits))
        return Object::CopyAttr(tag, out);
    std::memcpy(out, &bits, sizeof bits);
    return true;
}

void Parameter::TakeTags(const Parameter& from)
{
    if (from.tags_)
        Tags().Merge(*from.tags_);
}

Ref<Parameter> Parameter::WithComponents(std::span<const double>) const
{
    return Copy();
}

MxID Number::GetDataType() const
{
    static const MxID id(CLSID_DataType_Number);
    return id;
}

Ref<Parameter> Number::Copy() const
{
    return MakeRef<Number>(value_);
}

bool Number::IsEqual(const Parameter& other) const
{
    return sameComponents(*this, other);
}

ScriptVal Number::ToScriptVal() const
{
    return value_;
}

Ref<Parameter> Number::WithComponents(std::span<const double> components) const
{
    return MakeRef<Number>(components.empty() ? value_ : components.front());
}

MxID Point::GetDataType() const
{
    static const MxID id(CLSID_DataType_Point);
    return id;
}

Ref<Parameter> Point::Copy() const
{
    return MakeRef<Point>(X(), Y(), Z());
}

bool Point::IsEqual(const Parameter& other) const
{
    return sameComponents(*this, other);
}

ScriptVal Point::ToScriptVal() const
{
    return listOf(xyz_);
}

Ref<Parameter> Point::WithComponents(std::span<const double> components) const
{
    std::array<double, 3> xyz = xyz_;
    std::copy_n(components.begin(), std::min(components.size(), xyz.size()), xyz.begin());
    return MakeRef<Point>(xyz[0], xyz[1], xyz[2]);
}

MxID Text::GetDataType() const
{
    static const MxID id(CLSID_DataType_Text);
    return id;
}

Ref<Parameter> Text::Copy() const
{
    return MakeRef<Text>(text_);
}

bool Text::IsEqual(const Parameter& other) const
{
    const auto* text = dynamic_cast<const Text*>(&other);
    return text && text->text_ == text_;
}

ScriptVal Text::ToScriptVal() const
{
    return text_;
}

TransformMatrix::TransformMatrix() : elements_{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1} {}

MxID TransformMatrix::GetDataType() const
{
    static const MxID id(CLSID_DataType_TransformMatrix);
    return id;
}

Ref<Parameter> TransformMatrix::Copy() const
{
    return MakeRef<TransformMatrix>(elements_);
}

bool TransformMatrix::IsEqual(const Parameter& other) const
{
    return sameComponents(*this, other);
}

ScriptVal TransformMatrix::ToScriptVal() const
{
    return listOf(elements_);
}

Ref<Parameter> TransformMatrix::WithComponents(std::span<const double> components) const
{
    std::array<double, 16> elements = elements_;
    std::copy_n(components.begin(), std::min(components.size(), elements.size()), elements.begin());
    return MakeRef<TransformMatrix>(elements);
}

double NumberOf(const Parameter* value, double otherwise)
{
    const auto* number = dynamic_cast<const Number*>(value);
    return number ? number->GetValue() : otherwise;
}

} // namespace Marlox
