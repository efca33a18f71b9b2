// Control libraries.

#include "system/controls/ControlWnd.h"
#include "system/viewer/OverlayStage.h"
#include "workbench/plugins/PluginHost.h"
#include "workbench/scripting/Bindings.h"
#include "workbench/ui/Session.h"

#include <QFileInfo>

namespace Marlox {

namespace {

PluginHost& plugins(ScriptContext& context)
{
    if (!context.session.Plugins())
        throw ScriptError("this application loads no plug-ins");
    return *context.session.Plugins();
}

void unload(ScriptContext& context, const QString& path)
{
    const QString wanted = QFileInfo(path).canonicalFilePath();
    for (const PluginLibrary* library : plugins(context).Libraries()) {
        const QString loaded = QString::fromStdString(library->Path());
        if (loaded != path && QFileInfo(loaded).canonicalFilePath() != wanted)
            continue;
        // Inspector pages and scripts let go of its controls first.
        ControlWnd::ReleaseAll();
        OverlayStage::ReleaseAll();
        context.engine.ReleaseObjects();
        QString error;
        const bool unloaded = plugins(context).Unload(*library, &error);
        ControlWnd::ReopenAll();
        OverlayStage::ReopenAll();
        if (!unloaded)
            throw ScriptError(error);
        return;
    }
    throw ScriptError(QString("%1 is not loaded").arg(path));
}

} // namespace

void AddPluginBindings(ScriptContext& context)
{
    ScriptEngine& engine = context.engine;
    engine.AddFunction("plugins.load", [&context](ScriptCall& call) {
        QString error;
        if (!plugins(context).Load(call.String(1), &error))
            throw ScriptError(error);
        ControlWnd::ReleaseAll(); // inputs may find their class now
        ControlWnd::ReopenAll();
        OverlayStage::ReleaseAll();
        OverlayStage::ReopenAll();
    });
    engine.AddFunction("plugins.unload",
                       [&context](ScriptCall& call) { unload(context, call.String(1)); });
    engine.AddFunction("plugins.list", [&context](ScriptCall& call) {
        ScriptVal list = ScriptVal::MakeTable();
        for (const PluginLibrary* library : plugins(context).Libraries())
            list.Append(library->Path());
        call.Return(list);
    });
}

} // namespace Marlox
