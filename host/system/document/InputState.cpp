#include "system/document/InputState.h"

#include <algorithm>
#include <cmath>

#include <QCoreApplication>

namespace Marlox {

namespace {

struct InterpolationName {
    Interpolation interpolation;
    const char* name;
};

constexpr InterpolationName interpolationNames[] = {
    {Interpolation::Step, "Step"},
    {Interpolation::Linear, "Linear"},
    {Interpolation::Smooth, "Smooth"},
};

constexpr const char* knownFields[] = {"Value", "Keys", "Expression", "Source"};

QString tr(const char* text)
{
    return QCoreApplication::translate("Marlox::Document", text);
}

const char* nameOf(Interpolation interpolation)
{
    return std::find_if(std::begin(interpolationNames), std::end(interpolationNames),
                        [&](const auto& entry) { return entry.interpolation == interpolation; })
        ->name;
}

std::optional<Interpolation> interpolationNamed(const std::string& name)
{
    const auto found = std::find_if(std::begin(interpolationNames), std::end(interpolationNames),
                                    [&](const auto& entry) { return name == entry.name; });
    return found != std::end(interpolationNames) ? std::optional(found->interpolation)
                                                 : std::nullopt;
}

bool readKeys(const Input& input, const ScriptVal& list, Animation& out)
{
    Animation read;
    if (!ReadKeys(input.GetDataType(), list, read))
        return false;
    for (const auto& [time, key] : read.Keys())
        out.SetKey(time, input.Accepted(*key.value), key.interpolation);
    return true;
}

/// What the input could never have been given: it could not be taken away again either.
void leaveOutUseless(const Input& input, Input::State& state, QStringList& notes)
{
    const auto leaveOut = [&notes](auto& field, const char* name) {
        field = {};
        notes += tr("it takes no %1, which was left out").arg(QLatin1String(name));
    };
    if (!state.source.empty() && !input.IsImage())
        leaveOut(state.source, "Source");
    if (!state.expression.empty() && input.IsImage())
        leaveOut(state.expression, "Expression");
    if (!state.animation.IsEmpty() && !input.GetAttrB(IA_Animatable, true))
        leaveOut(state.animation, "Keys");
}

bool readText(const ScriptVal& value, std::string& out)
{
    out = value.ToString();
    return value.IsNil() || value.IsString();
}

} // namespace

ScriptVal WriteKeys(const Animation& animation)
{
    ScriptVal keys;
    for (const auto& [time, key] : animation.Keys()) {
        ScriptVal entry;
        entry.Append(time);
        entry.Append(key.value->ToScriptVal());
        entry.Append(nameOf(key.interpolation));
        keys.Append(entry);
    }
    return keys;
}

bool ReadKeys(const MxID& dataType, const ScriptVal& list, Animation& out)
{
    if (!list.IsTable() || !list.Fields().empty())
        return false;
    for (const ScriptVal& entry : list.Elements()) {
        const auto value = Parameter::FromScriptVal(dataType, entry.At(2));
        const auto interpolation = interpolationNamed(entry.At(3).ToString("Smooth"));
        if (!entry.At(1).IsNumber() || !std::isfinite(entry.At(1).ToNumber()) || !value ||
            !interpolation)
            return false;
        out.SetKey(entry.At(1).ToNumber(), value, interpolation);
    }
    return true;
}

ScriptVal WriteInputState(const Input& input)
{
    const Input::State& state = input.GetState();
    ScriptVal table = ScriptVal::MakeTable();
    if (state.value)
        table.Set("Value", state.value->ToScriptVal());
    table.Set("Keys", WriteKeys(state.animation));
    if (!state.expression.empty())
        table.Set("Expression", state.expression);
    if (!state.source.empty())
        table.Set("Source", state.source);
    return table;
}

std::optional<Input::State> ReadInputState(const Input& input, const ScriptVal& table,
                                           QString& error, QStringList& notes)
{
    const auto wrong = [&error](const char* field) {
        error = tr("the field %1 has the wrong form").arg(QLatin1String(field));
        return std::nullopt;
    };
    if (!table.IsTable()) {
        error = tr("a table is wanted");
        return std::nullopt;
    }
    Input::State state;
    state.value = input.DefaultValue();
    if (const ScriptVal& value = table.Get("Value"); !value.IsNil()) {
        const auto read = Parameter::FromScriptVal(input.GetDataType(), value);
        if (!read)
            return wrong("Value");
        state.value = input.Accepted(*read);
    }
    if (const ScriptVal& keys = table.Get("Keys");
        !keys.IsNil() && !readKeys(input, keys, state.animation))
        return wrong("Keys");
    if (!readText(table.Get("Expression"), state.expression))
        return wrong("Expression");
    if (!readText(table.Get("Source"), state.source))
        return wrong("Source");
    leaveOutUseless(input, state, notes);
    for (const auto& [name, value] : table.Fields()) {
        if (std::find(std::begin(knownFields), std::end(knownFields), name) ==
            std::end(knownFields))
            notes +=
                tr("the field %1 is not known and was left out").arg(QString::fromStdString(name));
    }
    return state;
}

} // namespace Marlox
