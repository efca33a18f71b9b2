#pragma once

#include "script/FFI.h"
#include "system/base/Object.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include <QObject>
#include <QString>

struct lua_State;

namespace Marlox {

class ScriptEngine;
struct ScriptResult;

/// Thrown by native functions that scripts call: ends the script with this message, which gets the
/// place of the call in front.
class MARLOXSCRIPT_EXPORT ScriptError : public std::runtime_error {
public:
    explicit ScriptError(const std::string& message) : std::runtime_error(message) {}
    explicit ScriptError(const char* message) : std::runtime_error(message) {}
    explicit ScriptError(const QString& message) : ScriptError(message.toStdString()) {}
};

/// A function of a script, kept for later (an event). Calling it after its engine is gone, or
/// calling an empty one, fails.
class MARLOXSCRIPT_EXPORT ScriptFunction {
public:
    ScriptFunction() = default;
    explicit operator bool() const { return held_ != nullptr; }
    ScriptResult operator()(const std::vector<ScriptVal>& arguments = {}) const;

    struct Held; // shared by all copies
    explicit ScriptFunction(std::shared_ptr<Held> held) : held_(std::move(held)) {}

private:
    std::shared_ptr<Held> held_;
};

/// One call of a native function by a script: its arguments, counted from 1 (a method's object is
/// not counted), and its results. Reading an argument of the wrong type throws a ScriptError that
/// names the function and the argument. Valid while the function runs.
class MARLOXSCRIPT_EXPORT ScriptCall {
public:
    ScriptEngine& Engine() const { return engine_; }

    int Count() const;
    bool Has(int index) const; // given, and not nil
    double Number(int index) const;
    double Number(int index, double missing) const { return Has(index) ? Number(index) : missing; }
    int Integer(int index) const; // a whole number
    int Integer(int index, int missing) const { return Has(index) ? Integer(index) : missing; }
    bool Flag(int index) const; // a boolean, or a number that is not 0
    bool Flag(int index, bool missing) const { return Has(index) ? Flag(index) : missing; }
    std::string Text(int index) const; // UTF-8; also a number's text
    std::string Text(int index, std::string missing) const;
    QString String(int index) const { return QString::fromStdString(Text(index)); }
    QString String(int index, const QString& missing) const;
    ScriptVal Value(int index) const; // anything that values can hold; nil when not given
    ScriptVal Table(int index) const;
    ScriptFunction Function(int index) const;
    bool IsText(int index) const;
    bool IsNumber(int index) const;
    bool IsTable(int index) const;
    bool IsFunction(int index) const;

    /// An argument that is an object of this class, a host object or a Qt object.
    template <class T>
    T& Object(int index) const
    {
        T* object = Cast<T>(index);
        if (!object)
            ThrowNoObject(index);
        return *object;
    }
    /// The same; null for any other value and for an object that is gone.
    template <class T>
    T* Cast(int index) const
    {
        if constexpr (std::is_base_of_v<RefObject, T> || !std::is_base_of_v<QObject, T>)
            return dynamic_cast<T*>(HostObjectAt(index));
        else
            return dynamic_cast<T*>(QtObjectAt(index));
    }
    /// The object that a method was called on.
    template <class T>
    T& Self() const
    {
        return Object<T>(0);
    }

    // Results, in order. Objects: see ScriptEngine on how long they stay.
    void Return(const ScriptVal& value);
    void Return(const QString& text) { Return(ScriptVal(text.toStdString())); }
    template <class T>
    void ReturnObject(T* object)
    {
        if constexpr (std::is_convertible_v<T*, RefObject*>)
            ReturnHost(object);
        else
            ReturnQt(object);
    }
    /// A list of objects as one table.
    template <class T>
    void ReturnObjects(const std::vector<T*>& objects)
    {
        BeginList();
        for (T* object : objects) {
            ReturnObject(object);
            AppendToList();
        }
    }
    /// A host object together with the caller's reference to it: scripts own it from now on.
    void ReturnOwned(RefObject* object);

private:
    friend class ScriptEngine;
    friend class ScriptObjects;
    ScriptCall(ScriptEngine& engine, lua_State* state, const std::string& name, bool method);
    ~ScriptCall();
    ScriptCall(const ScriptCall&) = delete;
    ScriptCall& operator=(const ScriptCall&) = delete;

    int Results() const; // pushed so far
    int At(int index) const { return method_ ? index + 1 : index; }
    [[noreturn]] void ThrowArgument(int index, const char* expected) const;
    [[noreturn]] void ThrowNoObject(int index) const;
    RefObject* HostObjectAt(int index) const;
    QObject* QtObjectAt(int index) const;
    void ReturnHost(RefObject* object);
    void ReturnQt(QObject* object);
    void BeginList();
    void AppendToList();

    ScriptEngine& engine_;
    lua_State* state_;
    const std::string& name_;
    bool method_;
    int given_;        // values on the stack when the call began
    lua_State* outer_; // the coroutine that ran before
    int list_ = 0;     // entries of the list being returned
};

} // namespace Marlox
