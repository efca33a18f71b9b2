#include "script/Expressions.h"
#include "script/LayoutMgr.h"
#include "script/ScriptObjects.h"
#include "script/ScriptSystem.h"
#include "script/ValueText.h"

#include <memory>

namespace Marlox {

namespace {

class Services : public ScriptServices {
public:
    bool ParseValue(const std::string& text, ScriptVal& value, QString* error) override
    {
        std::string reason;
        const bool parsed = ParseValueText(text, value, &reason);
        if (!parsed && error)
            *error = QString::fromStdString(reason);
        return parsed;
    }

    std::string FormatValue(const ScriptVal& value, bool indented) override
    {
        return FormatValueText(value, indented);
    }

    LayoutObj* BuildLayout(const ScriptVal& description, QWidget* parent, LayoutCallback callback,
                           void* context, QString* error) override
    {
        return LayoutMgr::Build(description, parent, callback, context, error);
    }

    Ref<Parameter> Evaluate(const Input& input, const std::string& expression, double time,
                            QString* error) override
    {
        return expressions_.Evaluate(input, expression, time, error);
    }

    bool IsExpression(const QString& text) override { return expressions_.IsExpression(text); }

    int PushObject(lua_State* state, LuaClass& object) override
    {
        return PushScriptObject(state, object);
    }

private:
    Expressions expressions_;
};

std::unique_ptr<Services> services;

} // namespace

void InstallScripting()
{
    if (services)
        return;
    services = std::make_unique<Services>();
    ScriptServices::Install(services.get());
}

void UninstallScripting()
{
    if (ScriptServices::Installed() == services.get())
        ScriptServices::Install(nullptr);
    services.reset();
}

} // namespace Marlox
