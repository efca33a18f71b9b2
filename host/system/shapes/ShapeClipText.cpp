// Copied shapes as text, between documents and programs.

#include "system/base/ScriptServices.h"
#include "system/document/InputState.h"
#include "system/document/MarloxDoc.h"
#include "system/shapes/ShapeClipboard.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include <QMimeData>

namespace Marlox {

namespace {

constexpr char formatName[] = "marlox shape";
constexpr double formatVersion = 1;

struct KindName {
    ShapeClip::Kind kind;
    const char* name;
    bool isShape; // its values are shapes, else points
};
constexpr KindName kindNames[] = {
    {ShapeClip::Kind::Shape, "Shape", true},
    {ShapeClip::Kind::PathPoints, "PathPoints", true},
    {ShapeClip::Kind::XYPath, "XYPath", false},
    {ShapeClip::Kind::PathValue, "PathValue", false},
};

bool isFinite(const Ref<Parameter>& value)
{
    const auto components = value->Components();
    return std::all_of(components.begin(), components.end(),
                       [](double n) { return std::isfinite(n); });
}

bool allKeys(const ShapeClip& clip, const std::function<bool(const Ref<Parameter>&)>& test)
{
    const auto& keys = clip.animation.Keys();
    return std::all_of(keys.begin(), keys.end(),
                       [&test](const auto& key) { return test(key.second.value); });
}

/// Values that pasting can rely on: all of the kind.
bool isGood(const ShapeClip& clip, bool isShape)
{
    const auto good = [isShape](const Ref<Parameter>& value) {
        const bool shape = dynamic_cast<const PolyLine*>(value.Get()) != nullptr;
        const bool point = dynamic_cast<const Point*>(value.Get()) != nullptr;
        return (isShape ? shape : point) && isFinite(value);
    };
    return clip.value && good(clip.value) && allKeys(clip, good);
}

/// Whether each shape has as many points.
bool isEven(const ShapeClip& clip)
{
    const std::size_t count = clip.value->Components().size();
    return allKeys(
        clip, [count](const Ref<Parameter>& value) { return value->Components().size() == count; });
}

} // namespace

std::string ClipToText(const ShapeClip& clip)
{
    ScriptServices* const services = ScriptServices::Installed();
    if (!services || !clip.value)
        return {};
    const KindName& kind = kindNames[std::size_t(clip.kind)];
    ScriptVal table = ScriptVal::MakeTable();
    table.Set("Format", formatName);
    table.Set("Version", formatVersion);
    table.Set("Kind", kind.name);
    table.Set("Type", clip.value->GetDataType().c_str());
    table.Set("Value", clip.value->ToScriptVal());
    table.Set("Keys", WriteKeys(clip.animation));
    return services->FormatValue(table, true) + "\n";
}

std::optional<ShapeClip> ClipFromText(const std::string& text, QString& error)
{
    ScriptServices* const services = ScriptServices::Installed();
    ScriptVal table;
    if (!services) {
        error = MarloxDoc::tr("copied shapes need the script library, which is not loaded");
        return {};
    }
    if (!services->ParseValue(text, table, &error))
        return {};
    const std::string name = table.Get("Kind").ToString();
    const auto kind = std::find_if(std::begin(kindNames), std::end(kindNames),
                                   [&name](const KindName& known) { return name == known.name; });
    if (table.Get("Format").ToString() != formatName ||
        table.Get("Version").ToNumber() != formatVersion || kind == std::end(kindNames)) {
        error = MarloxDoc::tr("it is no copied shape");
        return {};
    }
    const std::string type = table.Get("Type").ToString();
    ShapeClip clip{kind->kind, {}, {}};
    if (Parameter::CreateDefault(MxID(std::string_view(type))))
        clip.value = Parameter::FromScriptVal(MxID(std::string_view(type)), table.Get("Value"));
    const ScriptVal& keys = table.Get("Keys");
    const bool read =
        clip.value && (keys.IsNil() || ReadKeys(clip.value->GetDataType(), keys, clip.animation));
    if (!read || !isGood(clip, kind->isShape)) {
        error = MarloxDoc::tr("the copied shape is damaged");
        return {};
    }
    if (!isEven(clip)) {
        error = RefusesCount;
        return {};
    }
    return clip;
}

std::unique_ptr<QMimeData> ClipToMime(const ShapeClip& clip)
{
    const std::string text = ClipToText(clip);
    auto data = std::make_unique<QMimeData>();
    data->setData(QString::fromLatin1(ShapeMimeType), QByteArray::fromStdString(text));
    data->setText(QString::fromStdString(text));
    return data;
}

bool HasClip(const QMimeData& data)
{
    return data.hasFormat(QString::fromLatin1(ShapeMimeType)) ||
           (data.hasText() && data.text().contains(QLatin1String(formatName)));
}

std::optional<ShapeClip> ClipFromMime(const QMimeData& data, QString& error)
{
    const QString type = QString::fromLatin1(ShapeMimeType);
    return ClipFromText(
        data.hasFormat(type) ? data.data(type).toStdString() : data.text().toStdString(), error);
}

} // namespace Marlox
