// Controls of the inspector, and the log of what they wrote.

#include "system/controls/ControlWnd.h"
#include "workbench/scripting/Bindings.h"
#include "workbench/scripting/MenuTable.h"
#include "workbench/scripting/ScriptLog.h"
#include "workbench/ui/InspectorPanel.h"
#include "workbench/ui/MainWindow.h"

#include <QCoreApplication>

namespace Marlox {

namespace {

std::vector<const Input*> inputsOf(const ControlWnd& page)
{
    std::vector<const Input*> inputs;
    if (const Operator* tool = page.GetOperator()) {
        for (const Ref<Input>& input : tool->Inputs())
            inputs.push_back(input.Get());
    }
    return inputs;
}

InputControl* findControl(ScriptContext& context, const QString& name)
{
    context.window.Inspector().Page().RecalcSizes();
    QCoreApplication::processEvents(); // rows that are placed later
    const ControlWnd& page = context.window.Inspector().Page();
    for (const Input* input : inputsOf(page)) {
        const bool meant = input->GetID().ToString() == name || input->GetName() == name;
        if (InputControl* control = meant ? page.ControlOf(*input) : nullptr)
            return control;
    }
    return nullptr;
}

void runEntry(ScriptContext& context, ScriptCall& call)
{
    InputControl& control = call.Self<InputControl>();
    Menu menu;
    control.BuildMenu(menu);
    const Menu::Entry& entry = MenuEntryAt(menu.Entries(), call.String(1));
    u64 data = 0;
    TagList tags;
    static_cast<Object&>(control).HandleMenu(entry.id, &data, tags);
    RunEvents(context, 0.0);
}

void listLayout(const LayoutObj* object, ScriptVal& names)
{
    if (!object)
        return;
    if (!object->Name().IsEmpty())
        names.Append(object->Name().c_str());
    for (const LayoutObj* child : object->Children())
        listLayout(child, names);
}

/// The widget of that place, also while another place of the layout has it.
QWidget* layoutWidget(const InputControl& control, const MxID& name)
{
    const LayoutObj* object = control.FindLayoutObj(name);
    if (!object)
        throw ScriptError(std::string("the layout has no object \"") + name.c_str() + "\"");
    return object->Widget() ? object->Widget() : control.findChild<QWidget*>(name.ToString());
}

void addControlClass(ScriptContext& context)
{
    ScriptClass& control = context.engine.AddClass<InputControl>("Control", "Widget");
    control.Method("class", [](ScriptCall& call) {
        call.Return(call.Self<InputControl>().GetRegistry()->ClassID().ToString());
    });
    control.Method("widget", [](ScriptCall& call) {
        call.ReturnObject(layoutWidget(call.Self<InputControl>(), MxID(call.Text(1).c_str())));
    });
    control.Method("layout", [](ScriptCall& call) {
        ScriptVal names = ScriptVal::MakeTable();
        listLayout(call.Self<InputControl>().GetLayout(), names);
        call.Return(names);
    });
    control.Method("inputs", [](ScriptCall& call) {
        const InputControl& self = call.Self<InputControl>();
        const ReadLock lock(self.InputsLock());
        call.ReturnObjects(self.Inputs());
    });
    control.Method("menu", [](ScriptCall& call) {
        Menu menu;
        call.Self<InputControl>().BuildMenu(menu);
        call.Return(MenuTable(menu.Entries()));
    });
    control.Method("run", [&context](ScriptCall& call) { runEntry(context, call); });
    control.Method("fault",
                   [](ScriptCall& call) { call.Return(call.Self<InputControl>().Fault()); });
}

} // namespace

void AddControlBindings(ScriptContext& context)
{
    addControlClass(context);
    context.engine.AddFunction("control", [&context](ScriptCall& call) {
        InputControl* found = call.IsText(1)
                                  ? findControl(context, call.String(1))
                                  : findControl(context, call.Object<Input>(1).GetID().ToString());
        call.ReturnObject(found);
    });
    context.engine.AddFunction("controls", [&context](ScriptCall& call) {
        const ControlWnd& page = context.window.Inspector().Page();
        for (const Input* input : inputsOf(page))
            page.ControlOf(*input); // those of folded rows too
        std::vector<InputControl*> list;
        for (const Ref<InputControl>& control : page.Controls())
            list.push_back(control.Get());
        call.ReturnObjects(list);
    });
    ScriptLog& log = context.log;
    context.engine.AddFunction("log.values",
                               [&log](ScriptCall& call) { call.Return(log.Values()); });
    context.engine.AddFunction("log.undo", [&log](ScriptCall& call) {
        ScriptVal list = ScriptVal::MakeTable();
        for (const QString& text : log.UndoTexts())
            list.Append(text.toStdString());
        call.Return(list);
    });
    context.engine.AddFunction("log.clear", [&log](ScriptCall&) { log.Clear(); });
}

} // namespace Marlox
