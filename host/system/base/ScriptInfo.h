#pragma once

namespace Marlox {

class Object;
class ScriptVal;

/// One operation of a class that scripts can call by name through `_Do`.
struct ScriptOperation {
    const char* name;
    bool (*run)(Object& self, const ScriptVal& arguments, ScriptVal& result);
};

/// What scripts are told of a class: made from (1, the class id's text, "", "") and given the
/// class's own table of operations, ended by an entry without a name.
struct ScriptInfo {
    int version = 1;
    const char* name = "";
    const char* help = "";
    const char* category = "";
    const ScriptOperation* operations = nullptr;
};

} // namespace Marlox
