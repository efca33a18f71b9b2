#pragma once

#include "script/ScriptClass.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QString>

namespace Marlox {

class ScriptObjects;

/// How a run of a script ended.
struct MARLOXSCRIPT_EXPORT ScriptResult {
    bool ok = true;
    QString message;               // the reason, without the place
    QString file;                  // where it failed: a file or the name given to the text
    int line = 0;                  // 0: nowhere in a script
    QString traceback;             // the calls that led there, a line each, innermost first
    std::optional<int> exitCode;   // the script asked to end the program (os.exit)
    std::vector<ScriptVal> values; // results; nil for what values can't hold, objects not owned
    QStringList texts;             // the same as `print` shows them

    /// "file:12: reason", or "" when all went well.
    QString Error() const;
};

/// An interpreter for an application's scripts: Lua 5.1 with its standard libraries, the functions
/// and classes that the application adds, and access to all registered control classes:
///
/// - classes(): a list of {id, class, parent, kind, type, specified, name}: class id, C++ class,
/// class
///   id of the parent, family ("InputControl"), script type (none: nil), whether it has a behaviour
///   of its own, and the name for people, if it has one;
/// - create(class, {Attribute = value, ...}): a control, by class id or script type;
/// - usercontrol{Control = class, Name = text, Attribute = value, ...}: a control as users describe
///   one, with the name that is shown for it;
/// - control:GetAttrs{"Attribute", ...}, control:SetAttrs{Attribute = value, ...};
/// - cast(object, "SliderControl"): the object if it is of that script type, or nil;
/// uncast(object);
/// - isvalid(object): whether the object is still there.
///
/// Host objects that are no Qt objects are kept alive by the scripts that hold them. Qt objects
/// (documents, widgets, inspector controls) are not: they live as long as the application wants,
/// and scripts that still hold one get an error. Only what scripts create themselves they also own.
///
/// Scripts run in the C locale. Runs nest: native functions may run further scripts. User-interface
/// thread, except for Interrupt.
class MARLOXSCRIPT_EXPORT ScriptEngine {
public:
    ScriptEngine();
    ~ScriptEngine();
    ScriptEngine(const ScriptEngine&) = delete;
    ScriptEngine& operator=(const ScriptEngine&) = delete;

    /// Runs text: statements, or one expression, whose value is the result. `name` stands for a
    /// file in messages.
    ScriptResult RunText(const QString& text, const QString& name = QStringLiteral("console"));
    ScriptResult RunFile(const QString& path);
    bool IsRunning() const;
    /// Ends the running script with an error at its next instruction; catching it does not help.
    /// Any thread.
    void Interrupt();
    /// The longest that a run may take, waiting included; 0: any time.
    void SetTimeLimit(std::chrono::milliseconds limit);
    /// Called every thousand instructions of a running script. One that throws stops the script.
    void SetIdle(std::function<void()> idle);
    /// What `print` writes, a line each; to the standard output unless set.
    void SetPrint(std::function<void(const QString&)> print);

    /// Adds a global function; "app.Open" puts it in the global table "app".
    void AddFunction(const std::string& name, ScriptNative function);
    void SetGlobal(const std::string& name, const ScriptVal& value);
    template <class T>
    void SetGlobalObject(const std::string& name, T* object)
    {
        if constexpr (std::is_convertible_v<T*, RefObject*>)
            SetGlobalHost(name, object);
        else
            SetGlobalQt(name, object);
    }
    /// Nil for what values can't hold.
    ScriptVal GetGlobal(const std::string& name);

    /// Adds the class T, a host class or a Qt class, for scripts. An object is of the class added
    /// last that it belongs to: add bases first. A name taken already is extended, its T stays.
    template <class T>
    ScriptClass& AddClass(const std::string& name, const std::string& base = {})
    {
        return AddClass(name, base, &BelongsTo<T>);
    }
    /// Everything added, as scripts write it: "app.Open", "Tool:SetName", "Tool.name".
    std::vector<std::string> Names() const;

    /// Lets go of all objects that scripts hold, before the library of their classes is unloaded.
    /// Scripts that still use one get an error.
    void ReleaseObjects();

    class Private;

private:
    friend class ScriptCall;
    friend class ScriptFunction;
    friend class ScriptObjects;

    template <class T>
    static bool BelongsTo(RefObject* host, QObject* qt)
    {
        if constexpr (std::is_base_of_v<QObject, T> && !std::is_base_of_v<RefObject, T>)
            return (void(host), dynamic_cast<T*>(qt) != nullptr);
        else
            return (void(qt), dynamic_cast<T*>(host) != nullptr);
    }
    ScriptClass& AddClass(const std::string& name, const std::string& base,
                          ScriptClass::Match match);
    void SetGlobalHost(const std::string& name, RefObject* object);
    void SetGlobalQt(const std::string& name, QObject* object);

    std::unique_ptr<Private> d_;
};

} // namespace Marlox
