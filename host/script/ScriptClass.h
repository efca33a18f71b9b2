#pragma once

#include "script/ScriptCall.h"

#include <deque>
#include <functional>
#include <map>
#include <string>

namespace Marlox {

/// A function that scripts can call.
using ScriptNative = std::function<void(ScriptCall&)>;

/// What scripts can do with the objects of one class: methods (`object:Name(...)`) and properties
/// (`object.name`, `object.name = value`). A class takes over what its base offers. Made by
/// ScriptEngine::AddClass.
class MARLOXSCRIPT_EXPORT ScriptClass {
public:
    /// Whether an object, of which one of the two may be null, belongs to the class.
    using Match = bool (*)(RefObject* host, QObject* qt);

    ScriptClass(std::string name, const ScriptClass* base, Match match);
    ScriptClass(const ScriptClass&) = delete;
    ScriptClass& operator=(const ScriptClass&) = delete;

    ScriptClass& Method(const std::string& name, ScriptNative function);
    /// `set` gets the new value as argument 1; without it the property can only be read.
    ScriptClass& Property(const std::string& name, ScriptNative get, ScriptNative set = {});

    const std::string& Name() const { return name_; }
    bool Matches(RefObject* host, QObject* qt) const { return match_(host, qt); }
    /// Names of everything offered here and by the bases, in alphabetical order.
    std::vector<std::string> MemberNames() const;

    struct Member {
        std::string name; // with the class, for messages
        const ScriptClass* owner;
        ScriptNative method;
        ScriptNative get;
        ScriptNative set;
    };
    /// Null if there is none of that name, here and in the bases.
    const Member* Find(const std::string& name) const;

private:
    Member& Add(const std::string& name);

    std::string name_;
    const ScriptClass* base_;
    Match match_;
    std::map<std::string, Member> members_;
};

} // namespace Marlox
