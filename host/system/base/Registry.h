#pragma once

#include "system/base/MxID.h"
#include "system/base/Object.h"
#include "system/base/TagList.h"

#include <atomic>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace Marlox {

struct ScriptInfo;

// Tags of a class-registration record.
inline constexpr u32 REG_Kind = 0x10000000;       // family, see ClassKind
inline constexpr u32 REG_BuildStamp = 0x30000008; // "Built: Mar  5 2020"
inline constexpr u32 REG_DisplayName = 0x30000012;
inline constexpr u32 REG_Category = 0x30000013;   // "Controls\Spline"
inline constexpr u32 REG_Create = 0x60000000;     // CreateFunction
inline constexpr u32 REG_RegInit = 0x60000001;    // RegInitFunction
inline constexpr u32 REG_RegCleanup = 0x60000002; // RegCleanupFunction
inline constexpr u32 REG_ParentName = 0x60000004; // carries a string, though its digit says pointer
inline constexpr u32 REG_ScriptInfo = 0x60000005; // const ScriptInfo*
inline constexpr u32 REG_Parent = 0x60000010;     // const MxID*: class inherited from
inline constexpr u32 REG_TagMapper = 0x60000014;  // TagMapFunction

/// Values of REG_Kind.
enum class ClassKind : u32 {
    Tool = 0x100000,
    Parameter = 0x110000,
    InputControl = 0x1a0000,
    PreviewControl = 0x1b0000,
};

class ClassRegistry;

/// One class-registration record. As a static object it enters the global ClassRegistry when its
/// library is loaded and leaves it at unload; the tags stay where they are and must outlive it.
class MARLOXSYSTEM_EXPORT Registry {
public:
    Registry(const MxID& classID, const TagPair* tags);
    ~Registry();
    Registry(const Registry&) = delete;
    Registry& operator=(const Registry&) = delete;

    /// Enters the record into `list` under `classID`: calls the class's RegInit and refuses (false,
    /// with a line in ClassRegistry::Problems) when it fails or the id is taken.
    bool _Init(ClassRegistry& list, const MxID& classID, const TagPair* tags);

    const MxID& ClassID() const { return classID_; }
    bool IsRegistered() const { return list_ != nullptr; }
    /// The pairs in their order, ended by tag 0.
    const TagPair* Tags() const { return tags_; }
    const TagPair* Find(u32 tag) const;
    ClassKind Kind() const;
    MxID Parent() const; // read late: parents may register after their children
    const ScriptInfo* GetScriptInfo() const;
    /// The class's tag mapper; a record without one uses its parent's.
    TagMapFunction TagMapper() const;
    /// How many objects live that ClassRegistry::Create made from this record.
    int LiveObjects() const { return liveObjects_ ? liveObjects_->load() : 0; }

private:
    friend class ClassRegistry;

    MxID classID_;
    const TagPair* tags_ = nullptr;
    ClassRegistry* list_ = nullptr;
    /// Made with the first object; shared with the objects, which may outlive the record at exit.
    mutable std::shared_ptr<std::atomic<int>> liveObjects_;
};

/// The host's list of classes, in registration order. User-interface thread only.
class MARLOXSYSTEM_EXPORT ClassRegistry {
public:
    static ClassRegistry& Global();

    std::span<Registry* const> Records() const { return records_; }
    Registry* Find(const MxID& classID) const;
    /// Whether `classID` is `ancestor` or inherits from it through the records' parents.
    bool IsKindOf(const MxID& classID, const MxID& ancestor) const;
    /// Makes an instance through the record's creation function; the caller owns the reference.
    /// Null if there is no such class or it could not be made.
    Object* Create(const MxID& classID, const ScriptVal& creator = {},
                   const TagList& attributes = {}) const;
    /// What went wrong during registrations since the last call, a line each.
    std::vector<std::string> TakeProblems();

private:
    friend class Registry;
    bool Enter(Registry* record);
    void Leave(Registry* record);

    std::vector<Registry*> records_;
    std::vector<std::string> problems_;
};

} // namespace Marlox
