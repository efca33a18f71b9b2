// Inputs of tools: values, keys, expressions, connections, attributes.

#include "script/FFI.h"
#include "system/base/Registry.h"
#include "system/document/MarloxDoc.h"
#include "workbench/scripting/Bindings.h"

#include <array>

namespace Marlox {

namespace {

constexpr std::array<const char*, 3> interpolations{"step", "linear", "smooth"};

Input& self(const ScriptCall& call)
{
    Input& input = call.Self<Input>();
    if (!input.GetDoc())
        throw ScriptError(QString("the tool of input \"%1\" was removed").arg(input.GetName()));
    return input;
}

double timeOr(const ScriptCall& call, int index, const Input& input)
{
    return call.Number(index, input.Owner().CurrentTime());
}

Ref<Parameter> fromScript(const Input& input, const ScriptVal& value)
{
    if (value.IsTable() && value.Get("x").IsNumber() && value.Get("y").IsNumber() &&
        input.GetDataType() == CLSID_DataType_Point)
        return MakeRef<Point>(value.Get("x").ToNumber(), value.Get("y").ToNumber());
    Ref<Parameter> made = Parameter::FromScriptVal(input.GetDataType(), value);
    if (!made)
        throw ScriptError(QString("input \"%1\" takes no such value (it is a %2)")
                              .arg(input.GetName(), input.GetDataType().ToString()));
    return made;
}

std::optional<Interpolation> interpolationAt(const ScriptCall& call, int index)
{
    if (!call.Has(index))
        return {};
    const std::string name = call.Text(index);
    for (std::size_t i = 0; i < interpolations.size(); ++i) {
        if (name == interpolations[i])
            return Interpolation(i);
    }
    throw ScriptError("an interpolation is \"step\", \"linear\" or \"smooth\"");
}

/// The script type of a class, or of the nearest it inherits from; null: there is none.
const FFIType* scriptTypeOf(MxID classID)
{
    for (int depth = 0; depth < 8; ++depth) { // a loop of parents ends too
        if (const FFIType* type = FFIType::Find(classID.c_str()))
            return type;
        const Registry* record = ClassRegistry::Global().Find(classID);
        if (!record)
            return nullptr;
        classID = record->Parent();
    }
    return nullptr;
}

/// The tag of an attribute by its name in the host's creation map, or in that of the control class
/// which the input asks for.
const TagMapEntry& attributeNamed(const Input& input, const std::string& name)
{
    const auto findIn = [&name](const TagMapEntry* entry) -> const TagMapEntry* {
        for (; entry && entry->name; ++entry) {
            if (name == entry->name)
                return entry;
        }
        return nullptr;
    };
    for (const char* map : {CreationMap_InputControl, CreationMap_PreviewControl}) {
        if (const TagMapEntry* entry = findIn(SharedCreationMap(map)))
            return *entry;
    }
    for (const u32 chooser : {IAS_Control, IAS_Overlay}) {
        const FFIType* type = scriptTypeOf(MxID(input.GetAttrS(chooser)));
        const FFITagMap* map = type ? FFITagMap::Find(type, "Create") : nullptr;
        if (const TagMapEntry* entry = map ? findIn(map->own) : nullptr)
            return *entry;
    }
    throw ScriptError("no attribute is named \"" + name + "\"");
}

/// An attribute that stands once for each of its values, which scripts see as a list.
void repeatedAttribute(ScriptCall& call, Input& input, const TagMapEntry& entry)
{
    const TagMapEntry table[] = {entry, {}};
    if (call.Has(2)) {
        ScriptVal given = ScriptVal::MakeTable();
        given.Set(entry.name, call.Value(2));
        TagList tags;
        if (!scriptval_maptags(table, false, given, tags))
            throw ScriptError(std::string(entry.name) + " is a list of texts");
        input.SetAttrsTagList(tags);
    }
    ScriptVal values = ScriptVal::MakeTable();
    TagList attributes(input.Attributes());
    scriptval_maptags(table, true, values, attributes);
    call.Return(values.Get(entry.name));
}

void attribute(ScriptCall& call)
{
    Input& input = self(call);
    const TagMapEntry& entry = attributeNamed(input, call.Text(1));
    if (entry.repeated)
        return repeatedAttribute(call, input, entry);
    const u32 tag = entry.tag;
    if (call.Has(2)) {
        TagList tags;
        switch (TypeOfTag(tag)) {
        case TagType::String:
        case TagType::InputID:
            tags.AddCopy(tag, call.Text(2));
            break;
        case TagType::Double:
            tags.Add(tag, call.Number(2));
            break;
        default:
            tags.Add(tag, int64(call.Value(2).ToNumber()));
            break;
        }
        input.SetAttrsTagList(tags);
    }
    switch (TypeOfTag(tag)) {
    case TagType::String:
    case TagType::InputID:
        return call.Return(std::string(input.GetAttrS(tag)));
    case TagType::Double:
        return call.Return(input.GetAttrD(tag));
    default:
        return call.Return(input.GetAttr(tag));
    }
}

void addValues(ScriptClass& input)
{
    input.Method("id", [](ScriptCall& call) { call.Return(self(call).GetID().ToString()); });
    input.Method("name", [](ScriptCall& call) { call.Return(self(call).GetName()); });
    input.Method("type",
                 [](ScriptCall& call) { call.Return(self(call).GetDataType().ToString()); });
    input.Method("get", [](ScriptCall& call) {
        const Input& in = self(call);
        call.Return(ValueForScript(in.GetValue(timeOr(call, 1, in)).Get()));
    });
    input.Method("set", [](ScriptCall& call) {
        Input& in = self(call);
        const Ref<Parameter> value = fromScript(in, call.Value(1));
        if (!in.SetValue(*value, timeOr(call, 2, in)))
            throw ScriptError(QString("input \"%1\" can't be set: read-only, or its tool is locked")
                                  .arg(in.GetName()));
    });
    input.Method("reset", [](ScriptCall& call) { call.Return(self(call).SetDefault()); });
    input.Method("attribute", attribute);
}

void addKeys(ScriptClass& input)
{
    input.Method("keys", [](ScriptCall& call) {
        ScriptVal list = ScriptVal::MakeTable();
        for (const auto& [time, key] : self(call).GetAnimation().Keys()) {
            ScriptVal entry = ScriptVal::MakeTable();
            entry.Set("time", time);
            entry.Set("value", ValueForScript(key.value.Get()));
            entry.Set("interpolation", interpolations[std::size_t(key.interpolation)]);
            list.Append(entry);
        }
        call.Return(list);
    });
    input.Method("addkey", [](ScriptCall& call) {
        call.Return(self(call).AddKey(call.Number(1), interpolationAt(call, 2)));
    });
    input.Method("removekey",
                 [](ScriptCall& call) { call.Return(self(call).RemoveKey(call.Number(1))); });
    input.Method("movekey", [](ScriptCall& call) {
        Animation animation = self(call).GetAnimation();
        const bool moved = animation.MoveKey(call.Number(1), call.Number(2));
        call.Return(moved && self(call).SetAnimation(animation));
    });
}

void addLinks(ScriptClass& input)
{
    input.Method("expression", [](ScriptCall& call) {
        Input& in = self(call);
        if (call.Has(1) && !in.SetExpression(call.Text(1)))
            throw ScriptError(QString("input \"%1\" takes no expression").arg(in.GetName()));
        call.Return(in.GetExpression());
    });
    input.Method("problem", [](ScriptCall& call) {
        Input& in = self(call);
        in.GetValue(in.Owner().CurrentTime());
        call.Return(in.ExpressionError());
    });
    input.Method("source", [](ScriptCall& call) {
        Input& in = self(call);
        if (call.Has(1)) {
            Operator* source = call.Cast<Operator>(1);
            if (!source && call.Value(1) != ScriptVal(false))
                throw ScriptError("input:source: a tool, or false to disconnect");
            if (!in.Connect(source))
                throw ScriptError(QString("input \"%1\" can't be connected so").arg(in.GetName()));
        }
        call.ReturnObject(in.GetSource());
    });
}

} // namespace

ScriptVal ValueForScript(const Parameter* value)
{
    if (!value)
        return {};
    const auto* point = dynamic_cast<const Point*>(value);
    if (!point)
        return value->ToScriptVal();
    ScriptVal table = ScriptVal::MakeTable();
    table.Set("x", point->X());
    table.Set("y", point->Y());
    return table;
}

void AddInputBindings(ScriptContext& context)
{
    ScriptClass& input = context.engine.AddClass<Input>("Input");
    addValues(input);
    addKeys(input);
    addLinks(input);
}

} // namespace Marlox
