#pragma once

#include "system/base/ScriptVal.h"
#include "system/base/Types.h"

#include <string>

#include <QString>

class QWidget;
struct lua_State;

namespace Marlox {

class Input;
class LayoutObj;
class LuaClass;
class Parameter;
template <class T>
class Ref;

/// Called for each layout object as it is created, in the order of the description, so that a
/// control can attach its own widgets (LayoutObj::SetWidget). `manager` is opaque to controls.
using LayoutCallback = void (*)(void* manager, LayoutObj& object, const ScriptVal& description,
                                void* context);

/// What the system library asks of the scripting library above it: script values from and to text,
/// widgets from layout descriptions, expressions. The scripting library installs the one
/// implementation; without it the askers report that scripting is missing and carry on.
/// All calls on the user-interface thread.
class MARLOXSYSTEM_EXPORT ScriptServices {
public:
    virtual ~ScriptServices();

    static ScriptServices* Installed();
    /// Null uninstalls. Not owned.
    static void Install(ScriptServices* services);

    /// Reads a value written as a script table or literal. False: `error` names line and fault.
    virtual bool ParseValue(const std::string& text, ScriptVal& value, QString* error) = 0;
    /// Writes a value so that ParseValue reads it back equal (C locale, 17 digits).
    virtual std::string FormatValue(const ScriptVal& value, bool indented) = 0;
    /// Builds the layout tree below `parent` and returns its root, owned by `parent`; null and
    /// `error` if the description is broken.
    virtual LayoutObj* BuildLayout(const ScriptVal& description, QWidget* parent,
                                   LayoutCallback callback, void* context, QString* error) = 0;
    /// Evaluates the expression of an input at a time (frames). Null and `error` on failure;
    /// ends after a time limit, so that no expression can hang the interface.
    virtual Ref<Parameter> Evaluate(const Input& input, const std::string& expression, double time,
                                    QString* error) = 0;
    /// Whether text that was typed into a number field is meant as an expression on time or other
    /// inputs rather than as a number or plain arithmetic.
    virtual bool IsExpression(const QString& text) = 0;
    virtual int PushObject(lua_State* state, LuaClass& object) = 0;
};

} // namespace Marlox
