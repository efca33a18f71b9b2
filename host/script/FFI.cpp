#include "script/FFI.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <vector>

#include <dlfcn.h>

namespace Marlox {

namespace {

/// The records of one kind in the order they were made. Constant-initialised, so that it is there
/// before any library's records.
template <class Record>
class RecordList {
public:
    Record* First() const { return records_.empty() ? nullptr : records_.front(); }

    void Append(Record* record) noexcept
    {
        if (records_.empty())
            records_.reserve(128);
        else
            records_.back()->next = record;
        records_.push_back(record);
    }

    /// A library takes its records back in reverse: the one looked for is near the end.
    void Remove(Record* record) noexcept
    {
        const auto found = std::find(records_.rbegin(), records_.rend(), record);
        if (found == records_.rend())
            return;
        if (const auto previous = std::next(found); previous != records_.rend())
            (*previous)->next = record->next;
        records_.erase(std::prev(found.base()));
    }

    template <class Matches>
    Record* Find(Matches matches) const
    {
        const auto found = std::find_if(records_.begin(), records_.end(),
                                        [&](const Record* record) { return matches(*record); });
        return found != records_.end() ? *found : nullptr;
    }

private:
    std::vector<Record*> records_;
};

struct TypeLink {
    const std::type_info* classInfo;
    const std::type_info* baseInfo;
};

constinit RecordList<FFIType> types;
constinit RecordList<FFIFunc> functions;
constinit RecordList<FFITagMap> tagMaps;
constinit std::vector<TypeLink> typeLinks;

} // namespace

FFIType::FFIType(const char* scriptName, const char* cName, const char* baseName, int size,
                 int flags, const void* data) noexcept
    : scriptName(scriptName), cName(cName), baseName(baseName), size(size), flags(flags), data(data)
{
    types.Append(this);
}

FFIType::~FFIType()
{
    types.Remove(this);
}

FFIType* FFIType::First()
{
    return types.First();
}

FFIType* FFIType::Find(const char* scriptName)
{
    return types.Find(
        [&](const FFIType& type) { return std::strcmp(type.scriptName, scriptName) == 0; });
}

FFIType* FFIType::Find(const std::type_info& classInfo)
{
    return types.Find(
        [&](const FFIType& type) { return type.typeInfo && *type.typeInfo == classInfo; });
}

void SetFFIType(const std::type_info& classInfo, FFIType* type)
{
    type->typeInfo = &classInfo;
}

void SetTypeInfo(const std::type_info& classInfo, const std::type_info& baseInfo)
{
    if (typeLinks.capacity() == 0)
        typeLinks.reserve(128);
    typeLinks.push_back({&classInfo, &baseInfo});
}

void ResetTypeInfo(const std::type_info& classInfo)
{
    // By address: another library may have told of a class with the same name.
    std::erase_if(typeLinks, [&](const TypeLink& link) { return link.classInfo == &classInfo; });
}

const std::type_info* BaseTypeInfo(const std::type_info& classInfo)
{
    for (const TypeLink& link : typeLinks) {
        if (*link.classInfo == classInfo)
            return link.baseInfo;
    }
    return nullptr;
}

FFIFunc::FFIFunc(FFIType* type, const char* call, const char* function,
                 const char* declaration) noexcept
    : type(type), call(call), function(function), declaration(declaration)
{
    functions.Append(this);
}

FFIFunc::~FFIFunc()
{
    functions.Remove(this);
}

FFIFunc* FFIFunc::First()
{
    return functions.First();
}

FFIFunc* FFIFunc::Find(const FFIType* type, const char* call)
{
    return functions.Find([&](const FFIFunc& record) {
        return record.type == type && std::strcmp(record.call, call) == 0;
    });
}

void* FFIFunc::Address() const
{
    if (address_)
        return address_;
    Dl_info own{};
    if (!dladdr(this, &own))
        return nullptr;
    // The program itself has no file name that dlopen knows it by.
    void* library = own.dli_fname ? dlopen(own.dli_fname, RTLD_LAZY | RTLD_NOLOAD) : nullptr;
    if (!library)
        library = dlopen(nullptr, RTLD_LAZY | RTLD_NOLOAD);
    if (!library)
        return nullptr;
    void* found = dlsym(library, function);
    dlclose(library);
    // dlsym searches the libraries that this one needs, too.
    Dl_info other{};
    if (!found || !dladdr(found, &other) || other.dli_fbase != own.dli_fbase)
        return nullptr;
    return address_ = found;
}

FFITagMap::FFITagMap(FFIType* type, const char* call, const TagMapEntry* own,
                     const char* sharedMap) noexcept
    : type(type), call(call), own(own), sharedMap(sharedMap)
{
    tagMaps.Append(this);
}

FFITagMap::~FFITagMap()
{
    tagMaps.Remove(this);
}

FFITagMap* FFITagMap::First()
{
    return tagMaps.First();
}

FFITagMap* FFITagMap::Find(const FFIType* type, const char* call)
{
    return tagMaps.Find([&](const FFITagMap& record) {
        return record.type == type && std::strcmp(record.call, call) == 0;
    });
}

} // namespace Marlox
