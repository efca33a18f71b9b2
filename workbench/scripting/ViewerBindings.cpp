// Viewers and the overlays in them.

#include "system/viewer/OverlayPainter.h"
#include "system/viewer/ToolbarEvents.h"
#include "workbench/scripting/Bindings.h"
#include "workbench/scripting/MenuTable.h"
#include "workbench/ui/MainWindow.h"
#include "workbench/viewer/ViewerWidget.h"

namespace Marlox {

namespace {

OverlayStage& stageOf(const ScriptCall& call)
{
    return call.Self<ViewerWidget>().Overlays();
}

void returnPlace(ScriptCall& call, QPointF normalised)
{
    const QPointF at = call.Self<ViewerWidget>().ImageToWidget(normalised);
    call.Return(at.x());
    call.Return(at.y());
}

/// The selected tool's input of an id or name, or the input itself.
Input& inputOf(ScriptContext& context, const ScriptCall& call)
{
    if (!call.IsText(1))
        return call.Object<Input>(1);
    const Operator* tool = context.session.SelectedTool();
    for (const Ref<Input>& input : tool ? tool->Inputs() : std::vector<Ref<Input>>()) {
        if (input->GetID().ToString() == call.String(1) || input->GetName() == call.String(1))
            return *input;
    }
    throw ScriptError(QString("the selected tool has no input \"%1\"").arg(call.String(1)));
}

ScriptVal cursorOf(const PreviewInfo& view)
{
    static constexpr const char* shapes[] = {"arrow", "move",      "movex", "movey", "turn",
                                             "hand",  "forbidden", "cross", "pen"};
    ScriptVal table = ScriptVal::MakeTable();
    table.Set("x", view.cursorX);
    table.Set("y", view.cursorY);
    table.Set("shape", shapes[std::size_t(view.cursorShape)]);
    return table;
}

void addOverlayClass(ScriptEngine& engine)
{
    ScriptClass& overlay = engine.AddClass<PreviewControl>("Overlay", "Object");
    overlay.Method("class", [](ScriptCall& call) {
        call.Return(call.Self<PreviewControl>().GetRegistry()->ClassID().ToString());
    });
    overlay.Method("inputs", [](ScriptCall& call) {
        call.ReturnObjects(call.Self<PreviewControl>().Inputs());
    });
    overlay.Method("drag", [](ScriptCall& call) {
        static const QString states[] = {"idle", "driven", "dragged"};
        call.Return(states[std::size_t(call.Self<PreviewControl>().DragState())]);
    });
    overlay.Method("active",
                   [](ScriptCall& call) { call.Return(call.Self<PreviewControl>().IsActive()); });
    overlay.Method("condition", [](ScriptCall& call) {
        static const QString conditions[] = {"plain", "animated", "keyed", "expression", "locked"};
        call.Return(conditions[std::size_t(call.Self<PreviewControl>().Condition())]);
    });
    overlay.Method("editable",
                   [](ScriptCall& call) { call.Return(call.Self<PreviewControl>().IsEditable()); });
}

std::vector<ToolbarButton> toolbarOf(const OverlayStage& stage)
{
    PreviewControl* owner = stage.ToolbarOwner();
    return owner ? ToolbarOf(*owner) : std::vector<ToolbarButton>();
}

u32 buttonOf(const OverlayStage& stage, const QString& text)
{
    for (const ToolbarButton& button : toolbarOf(stage)) {
        if (button.text == text)
            return button.event;
    }
    throw ScriptError(QString("the toolbar has no button \"%1\"").arg(text));
}

ScriptVal toolbarTable(const OverlayStage& stage)
{
    ScriptVal list = ScriptVal::MakeTable();
    for (const ToolbarButton& button : toolbarOf(stage)) {
        ScriptVal row = ScriptVal::MakeTable();
        row.Set("text", button.text.toStdString());
        row.Set("tip", button.tip.toStdString());
        row.Set("icon", button.icon.toStdString());
        row.Set("group", button.group.toStdString());
        row.Set("reason", button.reason.toStdString());
        row.Set("event", int(button.event));
        row.Set("enabled", button.enabled);
        row.Set("checked", button.checked);
        row.Set("popdown", button.popDown);
        list.Append(row);
    }
    return list;
}

/// The context menu or, with the text of a button at `index`, what that opens.
void fillMenu(const ScriptCall& call, int index, Menu& menu)
{
    OverlayStage& stage = stageOf(call);
    stage.FillMenu(menu, call.Has(index) ? buttonOf(stage, call.String(index)) : 0);
}

void addMenuMethods(ScriptContext& context, ScriptClass& viewer)
{
    viewer.Method("toolbar", [](ScriptCall& call) { call.Return(toolbarTable(stageOf(call))); });
    viewer.Method("press_button", [&context](ScriptCall& call) {
        OverlayStage& stage = stageOf(call);
        if (!stage.ClickButton(buttonOf(stage, call.String(1))))
            throw ScriptError(QString("the button \"%1\" can't be clicked").arg(call.String(1)));
        RunEvents(context, 0.0);
    });
    viewer.Method("menu", [](ScriptCall& call) {
        Menu menu;
        fillMenu(call, 1, menu);
        call.Return(MenuTable(menu.Entries()));
    });
    viewer.Method("menu_text", [](ScriptCall& call) {
        Menu menu;
        fillMenu(call, 1, menu);
        call.Return(MenuOutline(menu.Entries()));
    });
    viewer.Method("popdown", [](ScriptCall& call) {
        Menu menu;
        stageOf(call).FillMenu(menu, buttonOf(stageOf(call), call.String(1)));
        call.Return(MenuTable(menu.Entries()));
    });
    viewer.Method("run_menu", [&context](ScriptCall& call) {
        Menu menu;
        fillMenu(call, 2, menu);
        stageOf(call).RunMenu(MenuEntryAt(menu.Entries(), call.String(1)).id);
        RunEvents(context, 0.0);
    });
}

void addViewerClass(ScriptContext& context)
{
    ScriptClass& viewer = context.engine.AddClass<ViewerWidget>("Viewer", "Widget");
    viewer.Method("normalised", [](ScriptCall& call) {
        returnPlace(call, {call.Number(1), call.Number(2)});
    });
    viewer.Method("image", [](ScriptCall& call) {
        const PreviewInfo& info = call.Self<ViewerWidget>().GetPreviewInfo();
        if (info.pixelWidth <= 0 || info.pixelHeight <= 0)
            throw ScriptError("there is no picture");
        returnPlace(call, {call.Number(1) / info.pixelWidth, call.Number(2) / info.pixelHeight});
    });
    viewer.Method("message",
                  [](ScriptCall& call) { call.Return(call.Self<ViewerWidget>().Message()); });
    viewer.Method("overlays",
                  [](ScriptCall& call) { call.ReturnObjects(stageOf(call).Overlays()); });
    viewer.Method("overlay", [&context](ScriptCall& call) {
        call.ReturnObject(stageOf(call).OverlayOf(inputOf(context, call)));
    });
    viewer.Method("current",
                  [](ScriptCall& call) { call.ReturnObject(stageOf(call).View().currentControl); });
    viewer.Method("focusedoverlay",
                  [](ScriptCall& call) { call.ReturnObject(stageOf(call).Focus()); });
    viewer.Method("cursor", [](ScriptCall& call) { call.Return(cursorOf(stageOf(call).View())); });
    viewer.Method("tip", [](ScriptCall& call) { call.Return(stageOf(call).Tip()); });
    addMenuMethods(context, viewer);
    viewer.Method("drawn", [](ScriptCall& call) {
        OverlayRecorder recorder;
        stageOf(call).Draw(recorder);
        call.Return(recorder.Text());
    });
}

} // namespace

void AddViewerBindings(ScriptContext& context)
{
    addOverlayClass(context.engine);
    addViewerClass(context);
    MainWindow& window = context.window;
    context.engine.AddFunction("viewer", [&window](ScriptCall& call) {
        const std::vector<ViewerWidget*> viewers = window.Viewers();
        const double number = call.Has(1) ? call.Number(1) : 1.0;
        if (!(number >= 1.0 && number <= double(viewers.size())))
            throw ScriptError(QString("there is no viewer %1").arg(number));
        call.ReturnObject(static_cast<QWidget*>(viewers[std::size_t(number) - 1]));
    });
}

} // namespace Marlox
