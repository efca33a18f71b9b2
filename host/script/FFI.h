#pragma once

#include "system/base/ScriptVal.h"
#include "system/base/TagList.h"

#include <typeinfo>

#if defined(MARLOXSCRIPT_BUILD)
#define MARLOXSCRIPT_EXPORT Q_DECL_EXPORT
#else
#define MARLOXSCRIPT_EXPORT Q_DECL_IMPORT
#endif

/// Records by which native classes describe themselves to scripts. All are static objects of the
/// library that has the class: made at load, gone at unload, costing a few pointers each; the
/// script engine reads them when a script first asks. Texts and tables must outlive the records.
namespace Marlox {

/// Names for the values of an integer tag, counted from 0 and ended by null.
struct TagEnumeration {
    const char* name;
    const char* const* values;
};

/// One tag name that scripts may write, ended by an entry without a name. Some tags keep an id
/// whose type digit does not tell what they carry: these entries name the type of their value.
struct MARLOXSCRIPT_EXPORT TagMapEntry {
    const char* name = nullptr;
    u32 tag = 0;
    TagType type = TagType(0); // 0: as the tag's id says
    bool repeated = false;     // strings: stands once for each value, in scripts a list
    const TagEnumeration* enumeration = nullptr; // integers: scripts may write its names as well

    /// What the tag carries: `type`, else a string for REG_ParentName, else the id's digit.
    TagType ValueType() const;
};

/// Converts between a script table and a tag list by a table of names: from script to tags, or back
/// when `toScript`. Names that the table lacks are left alone; what stands there already is
/// replaced. By the type of an entry's value: an integer takes whole numbers, booleans and the
/// names of its enumeration, a double numbers, a string or input id strings, a pointer the text of
/// a class id, an object a host object; a repeated entry takes a list of strings, or one string,
/// and becomes a list in scripts. False if a value did not fit its tag (the others are still
/// converted). Strings are copied into the tag list; objects are not owned by either side.
MARLOXSCRIPT_EXPORT bool scriptval_maptags(const TagMapEntry* table, bool toScript,
                                           ScriptVal& values, TagList& tags);

/// A script type. The last three arguments are -1, 0 and null for all control classes.
class MARLOXSCRIPT_EXPORT FFIType {
public:
    FFIType(const char* scriptName, const char* cName, const char* baseName, int size, int flags,
            const void* data) noexcept;
    ~FFIType();
    FFIType(const FFIType&) = delete;
    FFIType& operator=(const FFIType&) = delete;

    const char* scriptName;
    const char* cName;
    const char* baseName;
    int size;
    int flags;
    const void* data;
    const std::type_info* typeInfo = nullptr; // set by SetFFIType
    FFIType* next = nullptr;

    /// The types in the order in which their libraries made them.
    static FFIType* First();
    static FFIType* Find(const char* scriptName);
    /// The type bound to a class; of several the first one made.
    static FFIType* Find(const std::type_info& classInfo);
};

/// Binds a script type to the run-time type information of its class.
MARLOXSCRIPT_EXPORT void SetFFIType(const std::type_info& classInfo, FFIType* type);

/// Tells the type information of a class's base (InputControl or PreviewControl), once per class
/// while its library loads; ResetTypeInfo withdraws it at unload.
MARLOXSCRIPT_EXPORT void SetTypeInfo(const std::type_info& classInfo,
                                     const std::type_info& baseInfo);
MARLOXSCRIPT_EXPORT void ResetTypeInfo(const std::type_info& classInfo);
/// Null for a class that told nothing.
MARLOXSCRIPT_EXPORT const std::type_info* BaseTypeInfo(const std::type_info& classInfo);

/// A native function on a script type: `call` is what scripts say ("_cast"), `function` the
/// exported name in the library that declares it, `declaration` its C declaration.
class MARLOXSCRIPT_EXPORT FFIFunc {
public:
    FFIFunc(FFIType* type, const char* call, const char* function,
            const char* declaration) noexcept;
    ~FFIFunc();
    FFIFunc(const FFIFunc&) = delete;
    FFIFunc& operator=(const FFIFunc&) = delete;

    FFIType* type; // only its address is taken: it may be made later
    const char* call;
    const char* function;
    const char* declaration;
    FFIFunc* next = nullptr;

    static FFIFunc* First();
    static FFIFunc* Find(const FFIType* type, const char* call);
    /// The address of the function in the library that this record lies in; null if it is not
    /// exported there.
    void* Address() const;

private:
    mutable void* address_ = nullptr; // once found
};

/// Ties a type's creation call to the class's own tag names and to one of the host's shared maps
/// (CreationMap_InputControl, CreationMap_PreviewControl).
class MARLOXSCRIPT_EXPORT FFITagMap {
public:
    FFITagMap(FFIType* type, const char* call, const TagMapEntry* own,
              const char* sharedMap) noexcept;
    ~FFITagMap();
    FFITagMap(const FFITagMap&) = delete;
    FFITagMap& operator=(const FFITagMap&) = delete;

    FFIType* type;
    const char* call;
    const TagMapEntry* own;
    const char* sharedMap;
    FFITagMap* next = nullptr;

    static FFITagMap* First();
    static FFITagMap* Find(const FFIType* type, const char* call);
};

/// The host's shared creation map of that name: the host-wide tags of groups 003 and 004 by the
/// names of HostTags.h. Null if there is none.
MARLOXSCRIPT_EXPORT const TagMapEntry* SharedCreationMap(const char* name);

} // namespace Marlox
