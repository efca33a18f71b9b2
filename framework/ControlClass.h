#pragma once

#include "framework/ControlFacts.h"
#include "system/controls/InputControl.h"
#include "system/resources/Resources.h"
#include "system/viewer/PreviewControl.h"

#include <new>
#include <typeinfo>

/// Registration of a control class, written at the end of its source file:
///
///     struct ScrewFacts : InspectorFacts {
///         using Class = ScrewControl;
///         static constexpr char name[] = "ScrewControl";
///         static constexpr RecordFacts records[] = {{"ScrewControl", "ScrewControl"}};
///         static constexpr TagMapEntry tagNames[] = {{"SCRC_TickFreq", SCRC_TickFreq}, {}};
///         struct Resources {
///             ResDIB grip{"Controls.Screw.Grip", 0};
///         };
///     };
///     ...
///     template <>
///     ControlClass<ScrewFacts> controlClass<ScrewFacts>{};
///     MARLOX_SCRIPT_CASTS(ScrewControl)
///
/// The facts stand in an anonymous namespace; the two other statements in namespace Marlox. Methods
/// above that need the resources or shared script values declare a function for them, defined below
/// the declaration. A source file so declared is listed in controls/CMakeLists.txt.
namespace Marlox {

struct InspectorFacts : CommonFacts {
    using Base = InputControl;
    static constexpr ClassKind kind = ClassKind::InputControl;
    static constexpr const MxID* parent = &InputControl::ClassID;
    static constexpr char scriptBase[] = "InputControl"; // name of the script type derived from
    static constexpr const char* creationMap = CreationMap_InputControl;
};

struct OverlayFacts : CommonFacts {
    using Base = PreviewControl;
    static constexpr ClassKind kind = ClassKind::PreviewControl;
    static constexpr const MxID* parent = &PreviewControl::ClassID;
    static constexpr char scriptBase[] = "PreviewControl";
    static constexpr const char* creationMap = CreationMap_PreviewControl;
};

/// The body of all tag mappers: converts by the class's table for the script calls "Create",
/// "GetAttrs", "SetAttrs" and "UserControl"; any other call is left alone (false).
bool MapControlTags(const TagMapEntry* tagNames, const MxID& call, bool toScript, ScriptVal& values,
                    TagList& tags);

/// Makes an instance; null when there is no memory for it. If the constructor throws, the block
/// goes back and the exception on.
template <class Control>
Object* CreateControl(const Registry* record, const ScriptVal& creator, const TagList& attributes)
{
    try {
        return new Control(record, creator, attributes);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

/// Checked downcast of an object that a script holds; null for null and for any other class.
template <class Control>
Control* ScriptCast(void* object)
{
    return dynamic_cast<Control*>(static_cast<ScriptObject*>(object));
}

/// Everything the host is told of one control class. Its one static object is made while the
/// library loads and undone, in reverse, while it is unloaded; the order of its members is the
/// order in which the host learns of them. All tables are constant data.
template <class Facts>
class ControlClass {
    using Class = typename Facts::Class;
    static constexpr std::size_t recordCount = std::size(Facts::records);
    /// Rows with a script type stand before those without.
    static constexpr std::size_t scriptTypeCount =
        std::size_t(std::count_if(std::begin(Facts::records), std::end(Facts::records),
                                  [](const RecordFacts& row) { return row.scriptType; }));
    static_assert(std::is_base_of_v<typename Facts::Base, Class>);
    static_assert(IsTagNameTable(Facts::tagNames));

    struct Ids {
        explicit Ids(const RecordFacts& row) : id(row.id), parent(row.parent) {}
        MxID id;
        MxID parent;
    };
    struct BoundType : FFIType {
        explicit BoundType(const char* scriptName)
            : FFIType(scriptName, Facts::name, Facts::scriptBase, -1, 0, nullptr)
        {
            SetFFIType(typeid(Class), this);
        }
    };
    struct ScriptType {
        explicit ScriptType(const RecordFacts& row)
            : cast(&type, "_cast", castName.data(), castDeclaration.data()),
              uncast(&type, "_uncast", uncastName.data(), uncastDeclaration.data()),
              type(row.scriptType), create(&type, "Create", Facts::tagNames, Facts::creationMap)
        {
        }
        FFIFunc cast;
        FFIFunc uncast;
        BoundType type;
        FFITagMap create;
    };
    struct TypeInfo {
        TypeInfo() { SetTypeInfo(typeid(Class), typeid(typename Facts::Base)); }
        ~TypeInfo() { ResetTypeInfo(typeid(Class)); }
    };

public:
    ControlClass()
        : ControlClass(std::make_index_sequence<recordCount>(),
                       std::make_index_sequence<scriptTypeCount>())
    {
    }
    ControlClass(const ControlClass&) = delete;
    ControlClass& operator=(const ControlClass&) = delete;

private:
    template <std::size_t... row, std::size_t... typeRow>
    ControlClass(std::index_sequence<row...>, std::index_sequence<typeRow...>)
        : ids_{Ids(Facts::records[row])...}, records_{{ids_[row].id, tags<row>.data()}...},
          scriptTypes_{ScriptType(Facts::records[typeRow])...}
    {
        static_assert(((Facts::records[typeRow].scriptType != nullptr) && ...));
    }

    static bool MapTags(const MxID& call, bool toScript, ScriptVal& values, TagList& list)
    {
        return MapControlTags(Facts::tagNames, call, toScript, values, list);
    }

    template <std::size_t row>
    static consteval auto MakeTags();

    static constexpr auto castName = JoinTexts("ffi_", Facts::name, "_cast");
    static constexpr auto uncastName = JoinTexts("ffi_", Facts::name, "_uncast");
    static constexpr auto castDeclaration =
        JoinTexts(Facts::name, " * ffi_", Facts::name, "_cast(void * obj)");
    static constexpr auto uncastDeclaration =
        JoinTexts("ScriptObject * ffi_", Facts::name, "_uncast(", Facts::name, " * self)");
    static constexpr ScriptInfo scriptInfo{1, Facts::records[0].id, "", "", Facts::operations};
    template <std::size_t row>
    static constexpr auto tags = MakeTags<row>();

    Ids ids_[recordCount];
    Registry records_[recordCount];

public:
    typename Facts::Resources resources;

private:
    std::array<ScriptType, scriptTypeCount> scriptTypes_;

public:
    typename Facts::ScriptVals scriptVals;

private:
    TypeInfo typeInfo_;
};

/// The static object of a class; each control's source file defines its own.
template <class Facts>
extern ControlClass<Facts> controlClass;

template <class Facts>
template <std::size_t row>
consteval auto ControlClass<Facts>::MakeTags()
{
    // Only the plain row of a class that scripts know has a mapper: variants use their parent's.
    constexpr bool mapped = row == 0 && scriptTypeCount > 0;
    constexpr bool ownParent = *Facts::records[row].parent != '\0';
    std::array<TagPair, 8 + std::size(Facts::furtherTags) + (mapped ? 1 : 0)> made{};
    auto end = made.begin();
    *end++ = {REG_RegInit, &Class::RegInit};
    *end++ = {REG_RegCleanup, &Class::RegCleanup};
    *end++ = {REG_Kind, u32(Facts::kind)};
    *end++ = {REG_BuildStamp, buildStamp};
    if constexpr (ownParent)
        *end++ = {REG_Parent, static_cast<const void*>(&controlClass<Facts>.ids_[row].parent)};
    else
        *end++ = {REG_Parent, static_cast<const void*>(Facts::parent)};
    *end++ = {REG_ScriptInfo, static_cast<const void*>(&scriptInfo)};
    *end++ = {REG_Create, &CreateControl<Class>};
    if constexpr (mapped)
        *end++ = {REG_TagMapper, &MapTags};
    for (const FurtherTag& further : Facts::furtherTags)
        *end++ = {further.tag, further.value};
    return made;
}

} // namespace Marlox

/// Exports the checked downcast that scripts call. Its counterpart, ffi_<class>_uncast, is the same
/// address for all classes (a host object begins with its ScriptObject) and is given its names when
/// the library is linked.
#define MARLOX_SCRIPT_CASTS(Class)                                                                 \
    extern "C" Q_DECL_EXPORT Class* ffi_##Class##_cast(void* obj)                                  \
    {                                                                                              \
        return ScriptCast<Class>(obj);                                                             \
    }
