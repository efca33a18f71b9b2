#include "system/base/Registry.h"

#include <algorithm>

namespace Marlox {

Registry::Registry(const MxID& classID, const TagPair* tags)
{
    _Init(ClassRegistry::Global(), classID, tags);
}

Registry::~Registry()
{
    if (!list_)
        return;
    if (const TagPair* cleanup = Find(REG_RegCleanup))
        cleanup->value.regCleanup(this);
    list_->Leave(this);
}

bool Registry::_Init(ClassRegistry& list, const MxID& classID, const TagPair* tags)
{
    static constexpr TagPair noTags;
    classID_ = classID;
    tags_ = tags ? tags : &noTags;
    if (!list.Enter(this))
        return false;
    list_ = &list;
    const TagPair* init = Find(REG_RegInit);
    if (init && !init->value.regInit(this)) {
        list.problems_.push_back(std::string("class ") + classID.c_str() +
                                 " refused to be registered");
        list.Leave(this);
        list_ = nullptr;
        return false;
    }
    return true;
}

const TagPair* Registry::Find(u32 tag) const
{
    for (const TagPair* pair = tags_; pair->tag != 0; ++pair) {
        if (pair->tag == tag)
            return pair;
    }
    return nullptr;
}

ClassKind Registry::Kind() const
{
    const TagPair* kind = Find(REG_Kind);
    return kind ? ClassKind(kind->Bits()) : ClassKind(0);
}

MxID Registry::Parent() const
{
    const TagPair* parent = Find(REG_Parent);
    return parent ? *static_cast<const MxID*>(parent->value.pointer) : MxID();
}

const ScriptInfo* Registry::GetScriptInfo() const
{
    const TagPair* info = Find(REG_ScriptInfo);
    return info ? static_cast<const ScriptInfo*>(info->value.pointer) : nullptr;
}

TagMapFunction Registry::TagMapper() const
{
    const Registry* record = this;
    const std::size_t most = list_ ? list_->Records().size() : 0;
    for (std::size_t depth = 0; record && depth <= most; ++depth) { // a loop of parents ends too
        if (const TagPair* mapper = record->Find(REG_TagMapper))
            return mapper->value.tagMap;
        record = list_ ? list_->Find(record->Parent()) : nullptr;
    }
    return nullptr;
}

ClassRegistry& ClassRegistry::Global()
{
    // Never destroyed: records of libraries still loaded at exit leave it then.
    static auto* registry = [] {
        auto* made = new ClassRegistry;
        made->records_.reserve(128);
        return made;
    }();
    return *registry;
}

Registry* ClassRegistry::Find(const MxID& classID) const
{
    const auto found =
        std::find_if(records_.begin(), records_.end(),
                     [&classID](const Registry* record) { return record->ClassID() == classID; });
    return found != records_.end() ? *found : nullptr;
}

bool ClassRegistry::IsKindOf(const MxID& classID, const MxID& ancestor) const
{
    MxID id = classID;
    for (std::size_t depth = 0; depth <= records_.size(); ++depth) { // a loop of parents ends too
        if (id == ancestor)
            return true;
        const Registry* record = Find(id);
        if (!record)
            return false;
        id = record->Parent();
    }
    return false;
}

Object* ClassRegistry::Create(const MxID& classID, const ScriptVal& creator,
                              const TagList& attributes) const
{
    const Registry* record = Find(classID);
    const TagPair* create = record ? record->Find(REG_Create) : nullptr;
    if (!create || !create->value.create)
        return nullptr;
    Object* made = create->value.create(record, creator, attributes);
    if (!made)
        return nullptr;
    if (!made->GetScriptInfo())
        made->SetScriptInfo(record->GetScriptInfo());
    if (!record->liveObjects_)
        record->liveObjects_ = std::make_shared<std::atomic<int>>(0);
    made->CountIn(record->liveObjects_);
    return made;
}

std::vector<std::string> ClassRegistry::TakeProblems()
{
    return std::exchange(problems_, {});
}

bool ClassRegistry::Enter(Registry* record)
{
    if (Find(record->ClassID())) {
        problems_.push_back(std::string("class id ") + record->ClassID().c_str() +
                            " is registered already");
        return false;
    }
    records_.push_back(record);
    return true;
}

void ClassRegistry::Leave(Registry* record)
{
    std::erase(records_, record);
}

} // namespace Marlox
