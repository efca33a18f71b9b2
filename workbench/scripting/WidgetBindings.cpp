// Widgets and menu entries.

#include "script/ScriptQt.h"
#include "workbench/scripting/Bindings.h"
#include "workbench/ui/InspectorPanel.h"
#include "workbench/ui/MainWindow.h"
#include "workbench/viewer/ViewerWidget.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QAction>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMetaEnum>
#include <QMetaProperty>
#include <QPlainTextEdit>

namespace Marlox {

namespace {

QString textOf(const QWidget& widget)
{
    if (const auto* edit = qobject_cast<const QPlainTextEdit*>(&widget))
        return edit->toPlainText();
    if (const auto* combo = qobject_cast<const QComboBox*>(&widget))
        return combo->currentText();
    for (const char* name : {"text", "title", "windowTitle"}) {
        const QVariant text = widget.property(name);
        if (text.isValid())
            return text.toString();
    }
    return {};
}

void geometry(ScriptCall& call)
{
    QWidget& widget = call.Self<QWidget>();
    const QPoint origin = widget.mapTo(widget.window(), QPoint());
    ScriptVal table = ScriptVal::MakeTable();
    table.Set("x", origin.x());
    table.Set("y", origin.y());
    table.Set("width", widget.width());
    table.Set("height", widget.height());
    call.Return(table);
}

void property(ScriptCall& call)
{
    QWidget& widget = call.Self<QWidget>();
    const std::string name = call.Text(1);
    if (call.Has(2)) {
        if (const char* reason = WriteQtProperty(widget, name.c_str(), call.Value(2)))
            throw ScriptError("property \"" + name + "\": " + reason);
    }
    const std::optional<ScriptVal> value = ReadQtProperty(widget, name.c_str());
    if (!value)
        throw ScriptError("there is no property \"" + name + "\"");
    call.Return(*value);
}

void properties(ScriptCall& call)
{
    const QMetaObject* meta = call.Self<QWidget>().metaObject();
    ScriptVal list = ScriptVal::MakeTable();
    for (int i = 0; i < meta->propertyCount(); ++i)
        list.Append(meta->property(i).name());
    call.Return(list);
}

void accessible(ScriptCall& call)
{
    QAccessibleInterface* face = QAccessible::queryAccessibleInterface(&call.Self<QWidget>());
    if (!face)
        return call.Return(ScriptVal());
    ScriptVal table = ScriptVal::MakeTable();
    const QMetaEnum roles = QMetaEnum::fromType<QAccessible::Role>();
    const char* role = roles.valueToKey(face->role());
    table.Set("role", role ? role : "");
    table.Set("name", face->text(QAccessible::Name).toStdString());
    table.Set("value", face->text(QAccessible::Value).toStdString());
    table.Set("description", face->text(QAccessible::Description).toStdString());
    if (QAccessibleValueInterface* value = face->valueInterface()) {
        table.Set("value", value->currentValue().toDouble());
        table.Set("minimum", value->minimumValue().toDouble());
        table.Set("maximum", value->maximumValue().toDouble());
    }
    call.Return(table);
}

void addWidgetClass(ScriptEngine& engine)
{
    ScriptClass& widget = engine.AddClass<QWidget>("Widget");
    widget.Method("geometry", geometry);
    widget.Method("property", property);
    widget.Method("properties", properties);
    widget.Method("accessible", accessible);
    widget.Method("size", [](ScriptCall& call) {
        QWidget& self = call.Self<QWidget>();
        if (call.Has(1))
            self.resize(call.Integer(1), call.Integer(2));
        call.Return(self.width());
        call.Return(self.height());
    });
    widget.Method("visible",
                  [](ScriptCall& call) { call.Return(call.Self<QWidget>().isVisible()); });
    widget.Method("enabled",
                  [](ScriptCall& call) { call.Return(call.Self<QWidget>().isEnabled()); });
    widget.Method("focused",
                  [](ScriptCall& call) { call.Return(call.Self<QWidget>().hasFocus()); });
    widget.Method("focus", [](ScriptCall& call) {
        QWidget& self = call.Self<QWidget>();
        self.window()->activateWindow();
        self.setFocus(Qt::OtherFocusReason);
    });
    widget.Method("text", [](ScriptCall& call) { call.Return(textOf(call.Self<QWidget>())); });
    widget.Method("name", [](ScriptCall& call) { call.Return(call.Self<QWidget>().objectName()); });
    widget.Method("class", [](ScriptCall& call) {
        call.Return(QString(call.Self<QWidget>().metaObject()->className()).section("::", -1));
    });
    widget.Method("find", [](ScriptCall& call) {
        call.ReturnObject(call.Self<QWidget>().findChild<QWidget*>(call.String(1)));
    });
}

void addActions(ScriptContext& context)
{
    MainWindow& window = context.window;
    context.engine.AddFunction("action", [&context, &window](ScriptCall& call) {
        const QString name = call.String(1);
        QAction* action = window.findChild<QAction*>(name);
        if (!action)
            throw ScriptError(QString("no menu entry is named \"%1\"").arg(name));
        if (!action->isEnabled())
            return call.Return(false);
        action->trigger();
        RunEvents(context, 0.0);
        call.Return(true);
    });
    context.engine.AddFunction("actions", [&window](ScriptCall& call) {
        ScriptVal list = ScriptVal::MakeTable();
        for (const QAction* action : window.findChildren<QAction*>()) {
            if (!action->objectName().isEmpty())
                list.Append(action->objectName().toStdString());
        }
        call.Return(list);
    });
}

} // namespace

void AddWidgetBindings(ScriptContext& context)
{
    ScriptEngine& engine = context.engine;
    MainWindow& window = context.window;
    addWidgetClass(engine);
    addActions(context);
    engine.AddFunction("window", [&window](ScriptCall& call) {
        call.ReturnObject(static_cast<QWidget*>(&window));
    });
    engine.AddFunction("inspector", [&window](ScriptCall& call) {
        call.ReturnObject(static_cast<QWidget*>(&window.Inspector()));
    });
    engine.AddFunction("widget", [&window](ScriptCall& call) {
        QWidget* found = window.findChild<QWidget*>(call.String(1));
        if (!found)
            throw ScriptError(QString("no widget is named \"%1\"").arg(call.String(1)));
        call.ReturnObject(found);
    });
}

} // namespace Marlox
