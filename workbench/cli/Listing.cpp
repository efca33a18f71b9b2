#include "workbench/cli/Listing.h"

#include "script/FFI.h"
#include "system/base/PluginLibrary.h"
#include "system/resources/Resources.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cxxabi.h>
#include <set>
#include <string_view>

namespace Marlox {

namespace {

/// An instance of a record's class, made to ask it what the record does not tell.
Ref<Object> sampleOf(const Registry& record)
{
    return Ref<Object>(ClassRegistry::Global().Create(record.ClassID()));
}

std::string classNameOf(const Object& object)
{
    const std::type_info& type = typeid(object);
    int status = 0;
    char* text = abi::__cxa_demangle(type.name(), nullptr, nullptr, &status);
    std::string name = text ? text : type.name();
    std::free(text);
    return name.substr(name.rfind(':') + 1);
}

/// The script type of one record. A class with several records has a type for each scriptable one:
/// the type is the one named like the record, or the class's own for its plain record.
std::string scriptTypeOf(const Registry& record, const Object& object)
{
    const std::string_view id = record.ClassID().View();
    std::string own;
    for (const FFIType* type = FFIType::First(); type; type = type->next) {
        if (!type->typeInfo) { // a class that cannot be cast to
            if (type->scriptName == id)
                return type->scriptName;
            continue;
        }
        if (*type->typeInfo != typeid(object))
            continue;
        if (type->scriptName == id)
            return type->scriptName;
        if (!ClassRegistry::Global().Find(MxID(type->scriptName)))
            own = type->scriptName;
    }
    const ScriptInfo* info = record.GetScriptInfo();
    const bool isPlain = info && info->name == id;
    return isPlain && !own.empty() ? own : "none";
}

std::string hex(u64 value)
{
    std::array<char, 24> text{};
    std::snprintf(text.data(), text.size(), "0x%llx", static_cast<unsigned long long>(value));
    return text.data();
}

std::string valueOf(const TagPair& pair)
{
    switch (TypeOfTag(u32(pair.tag))) {
    case TagType::Integer:
        return std::to_string(int64(pair.Bits()));
    case TagType::Double:
        return std::to_string(std::bit_cast<double>(pair.Bits()));
    case TagType::String:
        return pair.value.text;
    default:
        return pair.tag == REG_ParentName ? pair.value.text : "set";
    }
}

std::string furtherTagsOf(const Registry& record)
{
    constexpr std::array common{REG_RegInit, REG_RegCleanup, REG_Kind,   REG_BuildStamp,
                                REG_Parent,  REG_ScriptInfo, REG_Create, REG_TagMapper};
    std::string text;
    for (const TagPair* pair = record.Tags(); pair->tag != 0; ++pair) {
        if (std::find(common.begin(), common.end(), u32(pair->tag)) != common.end())
            continue;
        text += (text.empty() ? "" : " ") + hex(pair->tag) + "=" + valueOf(*pair);
    }
    return text.empty() ? "-" : text;
}

/// Classes without a behaviour of their own have a script operation that says so.
bool isGeneric(const Registry& record)
{
    const ScriptInfo* info = record.GetScriptInfo();
    for (const ScriptOperation* row = info ? info->operations : nullptr; row && row->name; ++row) {
        if (std::string_view(row->name) == "IsGeneric")
            return true;
    }
    return false;
}

std::string lineOf(const Registry& record)
{
    const Ref<Object> object = sampleOf(record);
    const std::string columns[] = {
        object ? classNameOf(*object) : "unknown",
        record.ClassID().c_str(),
        record.Parent().c_str(),
        hex(u64(record.Kind())),
        object ? scriptTypeOf(record, *object) : "none",
        furtherTagsOf(record),
        isGeneric(record) ? "generic" : "specified",
    };
    std::string line;
    for (const std::string& column : columns)
        line += (line.empty() ? "" : "\t") + column;
    return line + "\n";
}

std::string colorText(MxColor color)
{
    std::array<char, 24> text{};
    std::snprintf(text.data(), text.size(), "%d,%d,%d,%d", color.red, color.green, color.blue,
                  color.alpha);
    return text.data();
}

} // namespace

std::string ListControls(const std::vector<const PluginLibrary*>& libraries)
{
    std::string text;
    for (const PluginLibrary* library : libraries) {
        for (const Registry* record : library->Records())
            text += lineOf(*record);
    }
    return text;
}

std::string ListResources()
{
    constexpr std::array kinds{"bitmap", "colour", "data"};
    std::set<std::array<std::string, 4>> rows;
    for (const Resource* resource : Resource::Declared()) {
        std::array<std::string, 4> row{kinds[std::size_t(resource->GetKind())], resource->Name(),
                                       "-", "-"};
        if (resource->GetKind() == Resource::Kind::Color) {
            const auto& color = static_cast<const ResColor&>(*resource);
            row[2] = colorText(color.Default());
            row[3] = colorText(color.SecondDefault());
        }
        rows.insert(row);
    }
    std::string text;
    for (const auto& row : rows)
        text += row[0] + "\t" + row[1] + "\t" + row[2] + "\t" + row[3] + "\n";
    return text;
}

} // namespace Marlox
