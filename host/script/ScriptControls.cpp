#include "script/ScriptEngine_p.h"
#include "system/base/HostClassIds.h"
#include "system/base/HostTags.h"
#include "system/base/Registry.h"
#include "system/controls/InputControl.h"
#include "system/viewer/PreviewControl.h"

#include <cstdlib>
#include <memory>
#include <optional>

#include <cxxabi.h>

namespace Marlox {

namespace {

constexpr char createCall[] = "Create";

bool IsControl(const Registry& record)
{
    return record.Kind() == ClassKind::InputControl || record.Kind() == ClassKind::PreviewControl;
}

/// Which script type belongs to which registered class. Their records don't refer to each other:
/// most share a name; the rest are matched by the class of an instance.
class TypeIndex {
public:
    TypeIndex();
    const FFIType* TypeOf(const Registry& record) const;
    Registry* RecordOf(const std::string& name) const;

private:
    bool IsTaken(const Registry& record) const { return TypeOf(record) != nullptr; }
    Registry* FindByInstance(const FFIType& type) const;

    std::vector<std::pair<const FFIType*, Registry*>> pairs_;
};

TypeIndex::TypeIndex()
{
    const ClassRegistry& registry = ClassRegistry::Global();
    std::vector<const FFIType*> left;
    for (const FFIType* type = FFIType::First(); type; type = type->next) {
        Registry* record = registry.Find(MxID(type->scriptName));
        if (!record)
            record = registry.Find(MxID(type->cName));
        if (record)
            pairs_.emplace_back(type, record);
        else
            left.push_back(type);
    }
    for (const FFIType* type : left) {
        if (Registry* record = FindByInstance(*type))
            pairs_.emplace_back(type, record);
    }
}

Registry* TypeIndex::FindByInstance(const FFIType& type) const
{
    for (Registry* record : ClassRegistry::Global().Records()) {
        if (!IsControl(*record) || IsTaken(*record) || !type.typeInfo)
            continue;
        const Ref<Object> instance(ClassRegistry::Global().Create(record->ClassID()));
        const Object* made = instance.Get();
        if (made && typeid(*made) == *type.typeInfo)
            return record;
    }
    return nullptr;
}

const FFIType* TypeIndex::TypeOf(const Registry& record) const
{
    for (const auto& [type, of] : pairs_) {
        if (of == &record)
            return type;
    }
    return nullptr;
}

Registry* TypeIndex::RecordOf(const std::string& name) const
{
    for (const auto& [type, record] : pairs_) {
        if (name == type->scriptName)
            return record;
    }
    return nullptr;
}

Registry& FindControlClass(const std::string& name)
{
    Registry* record = ClassRegistry::Global().Find(MxID(std::string_view(name)));
    if (!record)
        record = TypeIndex().RecordOf(name);
    if (!record)
        throw ScriptError("there is no control class \"" + name + "\"");
    if (!IsControl(*record))
        throw ScriptError("\"" + name + "\" is no class of controls");
    return *record;
}

const Registry* RecordOf(const Object& object)
{
    if (const auto* control = dynamic_cast<const InputControl*>(&object))
        return control->GetRegistry();
    if (const auto* control = dynamic_cast<const PreviewControl*>(&object))
        return control->GetRegistry();
    return nullptr;
}

/// All ways in which the attributes of one class are named.
class AttributeNames {
public:
    /// `record` null: an object that only has host-wide attributes.
    AttributeNames(const Registry* record, const FFIType* type);

    /// Adds the attribute to `tags`. False if there is none of that name; throws if the value does
    /// not fit.
    bool Add(const MxID& call, const std::string& name, const ScriptVal& value,
             TagList& tags) const;
    std::optional<u32> TagOf(const std::string& name, Object& object) const;
    bool IsRepeated(u32 tag) const;
    ScriptVal ToScript(const MxID& call, TagList& tags) const;
    std::vector<std::string> All() const;

private:
    TagMapFunction mapper_ = nullptr;
    const TagMapEntry* own_ = nullptr;
    const TagMapEntry* shared_ = nullptr;
};

AttributeNames::AttributeNames(const Registry* record, const FFIType* type)
    : mapper_(record ? record->TagMapper() : nullptr)
{
    if (const FFITagMap* map = type ? FFITagMap::Find(type, createCall) : nullptr) {
        own_ = map->own;
        shared_ = SharedCreationMap(map->sharedMap);
    }
    const bool overlay = record && record->Kind() == ClassKind::PreviewControl;
    if (!shared_)
        shared_ =
            SharedCreationMap(overlay ? CreationMap_PreviewControl : CreationMap_InputControl);
}

bool AttributeNames::Add(const MxID& call, const std::string& name, const ScriptVal& value,
                         TagList& tags) const
{
    ScriptVal one;
    one.Set(name, value);
    const auto takes = [&](const auto& map) {
        TagList probe;
        if (!map(probe))
            throw ScriptError("the value of \"" + name + "\" does not fit");
        if (probe.Count() == 0)
            return false;
        map(tags);
        return true;
    };
    if (mapper_ && takes([&](TagList& out) { return mapper_(call, false, one, out); }))
        return true;
    return takes([&](TagList& out) { return scriptval_maptags(own_, false, one, out); }) ||
           takes([&](TagList& out) { return scriptval_maptags(shared_, false, one, out); });
}

std::optional<u32> AttributeNames::TagOf(const std::string& name, Object& object) const
{
    for (const TagMapEntry* table : {own_, shared_}) {
        for (const TagMapEntry* entry = table; entry && entry->name; ++entry) {
            if (name == entry->name)
                return entry->tag;
        }
    }
    // The table of a class without a script type is known to its mapper alone: see what it makes of
    // a value of each kind.
    for (const ScriptVal& trial : {ScriptVal(0.0), ScriptVal(""), ScriptVal(&object)}) {
        ScriptVal one;
        TagList probe;
        one.Set(name, trial);
        if (mapper_ && mapper_(MxID(createCall), false, one, probe) && probe.Count() > 0)
            return u32(probe.First()->tag);
    }
    return {};
}

bool AttributeNames::IsRepeated(u32 tag) const
{
    for (const TagMapEntry* entry = own_; entry && entry->name; ++entry) {
        if (entry->tag == tag)
            return entry->repeated;
    }
    return false;
}

ScriptVal AttributeNames::ToScript(const MxID& call, TagList& tags) const
{
    ScriptVal values = ScriptVal::MakeTable();
    if (mapper_)
        mapper_(call, true, values, tags);
    scriptval_maptags(own_, true, values, tags);
    scriptval_maptags(shared_, true, values, tags);
    return values;
}

std::vector<std::string> AttributeNames::All() const
{
    std::vector<std::string> names;
    for (const TagMapEntry* table : {own_, shared_}) {
        for (const TagMapEntry* entry = table; entry && entry->name; ++entry)
            names.emplace_back(entry->name);
    }
    return names;
}

AttributeNames NamesOf(const Object& object)
{
    return AttributeNames(RecordOf(object), FFIType::Find(typeid(object)));
}

/// Translates a table of attributes; every name must be known.
void Translate(const AttributeNames& names, const MxID& call, const ScriptVal& table,
               const std::string& of, TagList& tags)
{
    if (table.Length() > 0)
        throw ScriptError("attributes are written Name = value");
    for (const auto& [name, value] : table.Fields()) {
        if (!names.Add(call, name, value, tags))
            throw ScriptError(of + " has no attribute \"" + name + "\"");
    }
}

void ReturnControl(ScriptCall& call, const Registry& record, const ScriptVal& creator,
                   const TagList& tags)
{
    Object* made = ClassRegistry::Global().Create(record.ClassID(), creator, tags);
    if (!made)
        throw ScriptError(std::string("a control of the class \"") + record.ClassID().c_str() +
                          "\" could not be made");
    call.ReturnOwned(made);
}

void Create(ScriptCall& call)
{
    const Registry& record = FindControlClass(call.Text(1));
    const ScriptVal table = call.Has(2) ? call.Table(2) : ScriptVal::MakeTable();
    TagList tags;
    Translate(AttributeNames(&record, TypeIndex().TypeOf(record)), MxID(createCall), table,
              record.ClassID().c_str(), tags);
    ReturnControl(call, record, table, tags);
}

/// Users name a control and its class beside the attributes.
void CreateUserControl(ScriptCall& call)
{
    const ScriptVal table = call.Table(1);
    ScriptVal attributes = table.Clone();
    attributes.Set("Control", ScriptVal());
    attributes.Set("Name", ScriptVal());
    if (!table.Get("Control").IsString() || !table.Get("Name").IsString())
        throw ScriptError("a control needs Control = \"class\" and Name = \"text\"");
    const Registry& record = FindControlClass(table.Get("Control").ToString());
    TagList tags;
    tags.AddCopy(IAS_Name, table.Get("Name").ToString());
    Translate(AttributeNames(&record, TypeIndex().TypeOf(record)), MxID("UserControl"), attributes,
              record.ClassID().c_str(), tags);
    ReturnControl(call, record, table, tags);
}

const char* NameOfKind(ClassKind kind)
{
    switch (kind) {
    case ClassKind::Tool:
        return "Tool";
    case ClassKind::Parameter:
        return "Parameter";
    case ClassKind::InputControl:
        return "InputControl";
    case ClassKind::PreviewControl:
        return "PreviewControl";
    }
    return "other";
}

/// An operation of the class's own table; null if there is none of that name.
const ScriptOperation* FindOperation(const Registry* record, const std::string& name)
{
    const ScriptInfo* info = record ? record->GetScriptInfo() : nullptr;
    for (const ScriptOperation* at = info ? info->operations : nullptr; at && at->name; ++at) {
        if (name == at->name)
            return at;
    }
    return nullptr;
}

/// Classes that have no behaviour of their own yet say so by an operation.
bool IsSpecified(const Registry& record)
{
    return !FindOperation(&record, "IsGeneric");
}

/// The C++ class of a record without a script type, from an instance; empty if none can be made.
std::string ClassNameOf(const Registry& record)
{
    const Ref<Object> instance(IsControl(record) ? ClassRegistry::Global().Create(record.ClassID())
                                                 : nullptr);
    const Object* made = instance.Get();
    if (!made)
        return {};
    const std::unique_ptr<char, void (*)(void*)> plain(
        abi::__cxa_demangle(typeid(*made).name(), nullptr, nullptr, nullptr), std::free);
    const std::string name = plain ? plain.get() : "";
    return name.substr(name.rfind(':') + 1);
}

void ListClasses(ScriptCall& call)
{
    const TypeIndex types;
    ScriptVal list = ScriptVal::MakeTable();
    for (const Registry* record : ClassRegistry::Global().Records()) {
        const FFIType* type = types.TypeOf(*record);
        ScriptVal row = ScriptVal::MakeTable();
        row.Set("id", ScriptVal(record->ClassID().c_str()));
        row.Set("class", ScriptVal(type ? type->cName : ClassNameOf(*record)));
        row.Set("parent", ScriptVal(record->Parent().c_str()));
        row.Set("kind", ScriptVal(NameOfKind(record->Kind())));
        row.Set("specified", ScriptVal(IsSpecified(*record)));
        if (type)
            row.Set("type", ScriptVal(type->scriptName));
        if (const TagPair* name = record->Find(REG_DisplayName))
            row.Set("name", ScriptVal(name->value.text));
        list.Append(std::move(row));
    }
    call.Return(list);
}

/// Reads an attribute of the object; one that it lacks is left out.
void ReadAttribute(const AttributeNames& names, u32 tag, Object& object, TagList& out)
{
    if (names.IsRepeated(tag)) {
        TagList all({{tag, 0}});
        if (object.DoTagList(Object::CommandGetRepeated, all) != 0) {
            out.Merge(all);
            return;
        }
    }
    u64 bits = 0; // every form of value fits
    if (object.CopyAttr(tag, &bits))
        out.Set(tag, TagValue((unsigned long)(bits)));
}

void GetAttributes(ScriptCall& call)
{
    Object& object = call.Self<Object>();
    const AttributeNames names = NamesOf(object);
    std::vector<std::string> wanted;
    if (call.Has(1)) {
        const ScriptVal list = call.Table(1);
        for (const ScriptVal& name : list.Elements())
            wanted.push_back(name.ToString());
    } else {
        wanted = names.All();
    }
    TagList tags;
    for (const std::string& name : wanted) {
        const std::optional<u32> tag = names.TagOf(name, object);
        if (!tag)
            throw ScriptError("there is no attribute \"" + name + "\"");
        ReadAttribute(names, *tag, object, tags);
    }
    const ScriptVal all = names.ToScript(MxID("GetAttrs"), tags);
    ScriptVal result = ScriptVal::MakeTable();
    for (const std::string& name : wanted)
        result.Set(name, all.Get(name));
    call.Return(result);
}

void SetAttributes(ScriptCall& call)
{
    Object& object = call.Self<Object>();
    const Registry* record = RecordOf(object);
    TagList tags;
    Translate(NamesOf(object), MxID("SetAttrs"), call.Table(1),
              record ? record->ClassID().c_str() : "the object", tags);
    if (!object.SetAttrsTagList(tags))
        throw ScriptError("the attributes were refused");
}

void RunOperation(ScriptCall& call)
{
    const std::string name = call.Text(1);
    ScriptVal arguments = ScriptVal::MakeTable();
    for (int i = 2; i <= call.Count(); ++i)
        arguments.Append(call.Value(i));
    ScriptVal result;
    auto& self = call.Self<Object>();
    const ScriptOperation* own = FindOperation(RecordOf(self), name);
    if (!(own ? own->run(self, arguments, result)
              : self._Do(MxID(std::string_view(name)), arguments, result)))
        throw ScriptError("the operation \"" + name + "\" is not there or failed");
    call.Return(result);
}

} // namespace

void AddControlAccess(ScriptEngine& engine, ScriptClass& objectClass)
{
    engine.AddFunction("classes", ListClasses);
    engine.AddFunction("create", Create);
    engine.AddFunction("usercontrol", CreateUserControl);
    objectClass.Method("GetAttrs", GetAttributes)
        .Method("SetAttrs", SetAttributes)
        .Method("Do", RunOperation);
}

} // namespace Marlox
