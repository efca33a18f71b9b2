#include "script/ScriptClass.h"

#include <set>

namespace Marlox {

ScriptClass::ScriptClass(std::string name, const ScriptClass* base, Match match)
    : name_(std::move(name)), base_(base), match_(match)
{
}

ScriptClass::Member& ScriptClass::Add(const std::string& name)
{
    Member& member = members_[name];
    member = Member{name_ + "." + name, this, {}, {}, {}};
    return member;
}

ScriptClass& ScriptClass::Method(const std::string& name, ScriptNative function)
{
    Member& member = Add(name);
    member.name = name_ + ":" + name;
    member.method = std::move(function);
    return *this;
}

ScriptClass& ScriptClass::Property(const std::string& name, ScriptNative get, ScriptNative set)
{
    Member& member = Add(name);
    member.get = std::move(get);
    member.set = std::move(set);
    return *this;
}

const ScriptClass::Member* ScriptClass::Find(const std::string& name) const
{
    for (const ScriptClass* at = this; at; at = at->base_) {
        if (const auto found = at->members_.find(name); found != at->members_.end())
            return &found->second;
    }
    return nullptr;
}

std::vector<std::string> ScriptClass::MemberNames() const
{
    std::set<std::string> names;
    for (const ScriptClass* at = this; at; at = at->base_) {
        for (const auto& [ignored, member] : at->members_)
            names.insert(member.name);
    }
    return {names.begin(), names.end()};
}

} // namespace Marlox
