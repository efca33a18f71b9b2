#pragma once

#include "script/ScriptEngine.h"

namespace Marlox {

class DialogAnswers;
class MainWindow;
class Parameter;
class ScriptLog;
class Session;
class Synthesizer;

/// What the functions that scripts call work on. Everything lives as long as the engine.
struct ScriptContext {
    ScriptEngine& engine;
    MainWindow& window;
    Session& session;
    Synthesizer& events;
    DialogAnswers& answers;
    ScriptLog& log;
};

// Each adds the functions and classes of one chapter of docs/script-the-workbench.md.
void AddDocumentBindings(ScriptContext& context);
void AddInputBindings(ScriptContext& context);
void AddHistoryBindings(ScriptContext& context);
void AddWidgetBindings(ScriptContext& context);
void AddControlBindings(ScriptContext& context);
void AddEventBindings(ScriptContext& context);
void AddDialogBindings(ScriptContext& context);
void AddPictureBindings(ScriptContext& context);
void AddViewerBindings(ScriptContext& context); // behind the widgets
void AddPluginBindings(ScriptContext& context);

/// Values as scripts have them: points as {x=, y=}, the rest as documents store it; null is nil.
ScriptVal ValueForScript(const Parameter* value);

/// Runs the event loop for a time (seconds), then throws what dialogs left unanswered.
void RunEvents(ScriptContext& context, double seconds);

} // namespace Marlox
