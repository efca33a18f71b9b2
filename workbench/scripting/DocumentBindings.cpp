// document.*, tools, undo.*, preferences.*

#include "system/base/Registry.h"
#include "system/document/MarloxDoc.h"
#include "system/document/Preferences.h"
#include "workbench/scripting/Bindings.h"
#include "workbench/ui/Session.h"

#include <QFileInfo>

namespace Marlox {

namespace {

/// A tool of the open document; an error for one that was removed.
Operator& toolAt(const ScriptCall& call, int index)
{
    Operator& tool = call.Object<Operator>(index);
    if (!tool.GetDoc())
        throw ScriptError(QString("the tool \"%1\" was removed").arg(tool.GetName()));
    return tool;
}

ScriptVal listOf(const QStringList& texts)
{
    ScriptVal list = ScriptVal::MakeTable();
    for (const QString& text : texts)
        list.Append(ScriptVal(text.toStdString()));
    return list;
}

QStringList textsOf(const ScriptVal& list)
{
    QStringList texts;
    for (const ScriptVal& element : list.Elements()) {
        if (!element.IsString())
            throw ScriptError("preferences.set: a list holds texts only");
        texts << QString::fromStdString(element.ToString());
    }
    return texts;
}

void require(bool done, const QString& error)
{
    if (!done)
        throw ScriptError(error);
}

void addFiles(ScriptContext& context)
{
    ScriptEngine& engine = context.engine;
    Session& session = context.session;
    engine.AddFunction("document.new", [&session](ScriptCall&) { session.New(); });
    engine.AddFunction("document.open", [&session](ScriptCall& call) {
        QString error;
        require(session.Open(call.String(1), &error), error);
    });
    engine.AddFunction("document.save", [&session](ScriptCall& call) {
        QString error;
        const QString path = call.String(1, session.Document().FilePath());
        require(!path.isEmpty(), "document.save: the document has no path yet");
        require(session.Save(path, &error), error);
    });
    engine.AddFunction("document.path", [&session](ScriptCall& call) {
        call.Return(session.Document().FilePath());
    });
    engine.AddFunction("document.modified", [&session](ScriptCall& call) {
        call.Return(session.Document().IsModified());
    });
    engine.AddFunction("document.text",
                       [&session](ScriptCall& call) { call.Return(session.Document().ToText()); });
}

void addTime(ScriptContext& context)
{
    ScriptEngine& engine = context.engine;
    MarloxDoc& document = context.session.Document();
    engine.AddFunction("document.range", [&document](ScriptCall& call) {
        if (call.Has(1))
            require(document.SetFrameRange(call.Number(1), call.Number(2)),
                    "document.range: the last frame lies before the first");
        call.Return(document.FirstFrame());
        call.Return(document.LastFrame());
    });
    engine.AddFunction("document.time", [&document](ScriptCall& call) {
        if (call.Has(1))
            document.SetCurrentTime(call.Number(1));
        call.Return(document.CurrentTime());
    });
    engine.AddFunction("document.rate", [&document](ScriptCall& call) {
        if (call.Has(1))
            require(document.SetFrameRate(call.Number(1)), "document.rate: not a frame rate");
        call.Return(document.FrameRate());
    });
}

void addToolList(ScriptContext& context)
{
    ScriptEngine& engine = context.engine;
    Session& session = context.session;
    MarloxDoc& document = session.Document();
    engine.AddFunction("document.tools", [&document](ScriptCall& call) {
        std::vector<Operator*> tools;
        for (const Ref<Operator>& tool : document.Tools())
            tools.push_back(tool.Get());
        call.ReturnObjects(tools);
    });
    engine.AddFunction("document.tool", [&document](ScriptCall& call) {
        call.ReturnObject(document.FindTool(call.String(1)));
    });
    engine.AddFunction("document.add", [&session](ScriptCall& call) {
        QString error;
        const MxID type(call.Text(1).c_str());
        std::optional<int> position;
        if (call.Has(2))
            position = call.Integer(2) - 1;
        Operator* tool = session.AddTool(type, &error, position);
        require(tool, error);
        call.ReturnObject(tool);
    });
    engine.AddFunction("document.select", [&session](ScriptCall& call) {
        session.SelectTool(call.Has(1) ? &toolAt(call, 1) : nullptr);
    });
    engine.AddFunction("document.selected",
                       [&session](ScriptCall& call) { call.ReturnObject(session.SelectedTool()); });
    engine.AddFunction("toolclasses", [](ScriptCall& call) {
        ScriptVal list = ScriptVal::MakeTable();
        for (const Registry* record : ClassRegistry::Global().Records()) {
            if (record->Kind() == ClassKind::Tool)
                list.Append(record->ClassID().c_str());
        }
        call.Return(list);
    });
}

void addToolClass(ScriptContext& context)
{
    MarloxDoc& document = context.session.Document();
    ScriptClass& tool = context.engine.AddClass<Operator>("Tool");
    tool.Method("name", [](ScriptCall& call) {
        Operator& self = toolAt(call, 0);
        if (call.Has(1))
            require(self.SetName(call.String(1)), "tool:name: empty, or the tool is locked");
        call.Return(self.GetName());
    });
    tool.Method("class", [](ScriptCall& call) {
        call.Return(call.Self<Operator>().GetToolType().ToString());
    });
    tool.Method("inputs", [](ScriptCall& call) {
        std::vector<Input*> inputs;
        for (const Ref<Input>& input : toolAt(call, 0).Inputs())
            inputs.push_back(input.Get());
        call.ReturnObjects(inputs);
    });
    tool.Method("input", [](ScriptCall& call) {
        call.ReturnObject(toolAt(call, 0).FindInput(MxID(call.Text(1).c_str())));
    });
    tool.Method("enabled", [](ScriptCall& call) {
        Operator& self = toolAt(call, 0);
        if (call.Has(1))
            self.DisableTool(!call.Flag(1));
        call.Return(!self.IsDisabled());
    });
    tool.Method("locked", [](ScriptCall& call) {
        Operator& self = toolAt(call, 0);
        if (call.Has(1))
            self.SetLocked(call.Flag(1));
        call.Return(self.IsLocked());
    });
    tool.Method("position", [&document](ScriptCall& call) {
        call.Return(document.IndexOf(toolAt(call, 0)) + 1);
    });
    tool.Method("move", [&document](ScriptCall& call) {
        require(document.MoveTool(toolAt(call, 0), call.Integer(1) - 1),
                "tool:move: the tool is locked, or the flow would run in a loop");
    });
    tool.Method("remove", [&document](ScriptCall& call) {
        require(document.RemoveTool(toolAt(call, 0)), "tool:remove: the tool is locked");
    });
}

} // namespace

void AddDocumentBindings(ScriptContext& context)
{
    addFiles(context);
    addTime(context);
    addToolList(context);
    addToolClass(context);
}

void AddHistoryBindings(ScriptContext& context)
{
    ScriptEngine& engine = context.engine;
    UndoHistory& history = context.session.Document().Undo();
    engine.AddFunction("undo.text",
                       [&history](ScriptCall& call) { call.Return(history.UndoText()); });
    engine.AddFunction("undo.redotext",
                       [&history](ScriptCall& call) { call.Return(history.RedoText()); });
    engine.AddFunction("undo.texts", [&history](ScriptCall& call) {
        ScriptVal list = ScriptVal::MakeTable();
        for (int i = 0; i < history.Stack().index(); ++i)
            list.Append(history.Stack().text(i).toStdString());
        call.Return(list);
    });
    engine.AddFunction("undo.undo", [&history](ScriptCall& call) {
        const bool can = history.CanUndo();
        history.Undo();
        call.Return(can);
    });
    engine.AddFunction("undo.redo", [&history](ScriptCall& call) {
        const bool can = history.CanRedo();
        history.Redo();
        call.Return(can);
    });
    engine.AddFunction("undo.start",
                       [&history](ScriptCall& call) { history.Begin(call.String(1)); });
    engine.AddFunction("undo.finish",
                       [&history](ScriptCall& call) { history.End(call.Flag(1, true)); });
    engine.AddFunction("undo.depth",
                       [&history](ScriptCall& call) { call.Return(history.Depth()); });

    engine.AddFunction("preferences.get", [](ScriptCall& call) {
        const QVariant value = MarloxDoc::GetPreferences().Get(call.String(1));
        const ScriptVal missing = call.Value(2);
        if (!value.isValid())
            return call.Return(missing);
        // The file tells a list of one text from a text no more.
        if (value.type() == QVariant::StringList || missing.IsTable())
            return call.Return(listOf(value.toStringList()));
        bool isNumber = false;
        const double number = value.toDouble(&isNumber);
        if (value.type() == QVariant::Bool)
            call.Return(value.toBool());
        else if (isNumber)
            call.Return(number);
        else
            call.Return(value.toString());
    });
    engine.AddFunction("preferences.set", [](ScriptCall& call) {
        const ScriptVal value = call.Value(2);
        Preferences& preferences = MarloxDoc::GetPreferences();
        switch (value.GetType()) {
        case ScriptVal::Type::Nil:
            return preferences.Remove(call.String(1));
        case ScriptVal::Type::Boolean:
            return preferences.Set(call.String(1), value.ToBool());
        case ScriptVal::Type::Number:
            return preferences.Set(call.String(1), value.ToNumber());
        case ScriptVal::Type::String:
            return preferences.Set(call.String(1), QString::fromStdString(value.ToString()));
        case ScriptVal::Type::Table:
            return preferences.Set(call.String(1), textsOf(value));
        default:
            throw ScriptError(
                "preferences.set: a value is a boolean, a number, a text or a list of texts");
        }
    });
}

} // namespace Marlox
