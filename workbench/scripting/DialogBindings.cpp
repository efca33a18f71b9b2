// Answers to modal dialogs.

#include "system/widgets/TimeCodeEdit.h"
#include "workbench/scripting/Bindings.h"
#include "workbench/scripting/DialogAnswers.h"
#include "workbench/scripting/MenuTable.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>

namespace Marlox {

namespace {

bool isField(const QWidget& widget)
{
    return !widget.objectName().isEmpty() && !widget.objectName().startsWith("qt_") &&
           (qobject_cast<const QLineEdit*>(&widget) ||
            qobject_cast<const QPlainTextEdit*>(&widget) ||
            qobject_cast<const TimeCodeEdit*>(&widget) || qobject_cast<const QComboBox*>(&widget) ||
            qobject_cast<const QAbstractSpinBox*>(&widget) ||
            (qobject_cast<const QAbstractButton*>(&widget) &&
             static_cast<const QAbstractButton&>(widget).isCheckable()));
}

/// Sets a field as a user would: what listens to edits hears of it.
void fill(QWidget& field, const ScriptVal& value)
{
    const QString text = value.IsNumber() ? QString::number(value.ToNumber(), 'g', 17)
                                          : QString::fromStdString(value.ToString());
    if (auto* edit = qobject_cast<QLineEdit*>(&field)) {
        edit->setText(text);
        emit edit->textEdited(text);
    } else if (auto* lines = qobject_cast<QPlainTextEdit*>(&field)) {
        lines->setPlainText(text);
    } else if (auto* number = qobject_cast<TimeCodeEdit*>(&field)) {
        number->setText(text);
        number->Commit();
    } else if (auto* combo = qobject_cast<QComboBox*>(&field)) {
        const int index = value.IsNumber() ? int(value.ToNumber()) - 1 : combo->findText(text);
        if (index < 0 || index >= combo->count())
            throw ScriptError(QString("\"%1\" has no choice \"%2\"").arg(field.objectName(), text));
        combo->setCurrentIndex(index);
        emit combo->activated(index);
    } else if (auto* spin = qobject_cast<QSpinBox*>(&field)) {
        spin->setValue(int(value.ToNumber()));
    } else if (auto* real = qobject_cast<QDoubleSpinBox*>(&field)) {
        real->setValue(value.ToNumber());
    } else if (auto* button = qobject_cast<QAbstractButton*>(&field)) {
        if (button->isChecked() != value.ToBool())
            button->click();
    }
}

QLineEdit* nameField(const QFileDialog& files)
{
    return files.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
}

/// As typed: the dialog leaves its field alone while that has the focus.
void chooseFile(QFileDialog& files, const QString& path)
{
    files.selectFile(path);
    if (QLineEdit* name = nameField(files))
        name->setText(QFileInfo(path).fileName()); // in the folder that selectFile went to
}

/// A dialog for files lists the folder in the background, and takes no file before it is listed.
void waitForListing(const QFileDialog& files, const QAbstractButton& button)
{
    constexpr int longest = 3000; // ms
    QLineEdit* name = nameField(files);
    QElapsedTimer waited;
    waited.start();
    while (name && !name->text().isEmpty() && !button.isEnabled() && !waited.hasExpired(longest)) {
        QEventLoop wait;
        QTimer::singleShot(20, &wait, &QEventLoop::quit);
        wait.exec();
        emit name->textChanged(name->text()); // it looks again
    }
}

/// Takes what the dialog says as its button does, for there may be more to it than closing.
void accept(QDialog& dialog)
{
    QAbstractButton* button = nullptr;
    if (const auto* message = qobject_cast<QMessageBox*>(&dialog)) {
        button = message->defaultButton();
        if (!button && message->buttons().size() == 1)
            button = message->buttons().front();
    } else if (const auto* box = dialog.findChild<QDialogButtonBox*>()) {
        for (QAbstractButton* at : box->buttons()) {
            const auto role = box->buttonRole(at);
            if (role == QDialogButtonBox::AcceptRole || role == QDialogButtonBox::YesRole)
                button = at;
        }
    }
    if (!button)
        return dialog.accept();
    if (auto* files = qobject_cast<QFileDialog*>(&dialog))
        waitForListing(*files, *button);
    if (!button->isEnabled())
        throw ScriptError(QString("the button \"%1\" is disabled").arg(button->text().remove('&')));
    button->click();
}

/// A submenu as it is once the pointer has opened it: some are filled only then.
QMenu& openedMenu(const QAction& action)
{
    if (!action.menu()->isVisible())
        emit action.menu()->aboutToShow();
    return *action.menu();
}

ScriptVal entriesOf(const QMenu& menu)
{
    ScriptVal list = ScriptVal::MakeTable();
    for (const QAction* action : menu.actions()) {
        if (action->isSeparator())
            continue;
        ScriptVal row = ScriptVal::MakeTable();
        row.Set("text", MenuEntryText(action->text()).toStdString());
        row.Set("enabled", action->isEnabled());
        row.Set("checked", action->isChecked());
        if (menu.toolTipsVisible() && action->toolTip() != MenuEntryText(action->text()))
            row.Set("tip", action->toolTip().toStdString());
        if (action->menu())
            row.Set("children", entriesOf(openedMenu(*action)));
        list.Append(row);
    }
    return list;
}

QAction* findAction(const QMenu& menu, const QString& path)
{
    for (QAction* action : menu.actions()) {
        const QString text = MenuEntryText(action->text());
        if (!action->menu() && text == path)
            return action;
        if (action->menu() && path.startsWith(text + '/')) {
            if (QAction* found = findAction(openedMenu(*action), path.mid(text.size() + 1)))
                return found;
        }
    }
    return nullptr;
}

/// Popup menus, which windows and widgets open on a click.
void addMenuClass(ScriptContext& context)
{
    ScriptClass& menu = context.engine.AddClass<QMenu>("Menu", "Widget");
    menu.Method("entries", [](ScriptCall& call) { call.Return(entriesOf(call.Self<QMenu>())); });
    menu.Method("run", [](ScriptCall& call) {
        QMenu& self = call.Self<QMenu>();
        const QString path = call.String(1);
        QAction* action = findAction(self, path);
        if (!action || !action->isEnabled())
            throw ScriptError(QString(action ? "the menu entry \"%1\" is disabled"
                                             : "the menu has no entry \"%1\"")
                                  .arg(path));
        self.close();
        action->trigger();
    });
    menu.Method("cancel", [](ScriptCall& call) { call.Self<QMenu>().close(); });
}

void addDialogClass(ScriptContext& context)
{
    ScriptClass& dialog = context.engine.AddClass<QDialog>("Dialog", "Widget");
    dialog.Method("text", [](ScriptCall& call) { call.Return(DialogText(call.Self<QDialog>())); });
    dialog.Method("title",
                  [](ScriptCall& call) { call.Return(call.Self<QDialog>().windowTitle()); });
    dialog.Method("fields", [](ScriptCall& call) {
        ScriptVal names = ScriptVal::MakeTable();
        for (const QWidget* child : call.Self<QDialog>().findChildren<QWidget*>()) {
            if (isField(*child))
                names.Append(child->objectName().toStdString());
        }
        call.Return(names);
    });
    dialog.Method("fill", [](ScriptCall& call) {
        QDialog& self = call.Self<QDialog>();
        const QString name = call.String(1);
        if (auto* files = qobject_cast<QFileDialog*>(&self); files && name == "file")
            return chooseFile(*files, call.String(2));
        QWidget* field = self.findChild<QWidget*>(name);
        if (!field)
            throw ScriptError(QString("the dialog has no field \"%1\"").arg(name));
        fill(*field, call.Value(2));
    });
    dialog.Method("accept", [](ScriptCall& call) { accept(call.Self<QDialog>()); });
    dialog.Method("cancel", [](ScriptCall& call) { call.Self<QDialog>().reject(); });
    dialog.Method("press", [](ScriptCall& call) {
        const QString text = call.String(1);
        for (QAbstractButton* button : call.Self<QDialog>().findChildren<QAbstractButton*>()) {
            if (button->text().remove('&') == text)
                return button->click();
        }
        throw ScriptError(QString("the dialog has no button \"%1\"").arg(text));
    });
}

} // namespace

void AddDialogBindings(ScriptContext& context)
{
    addDialogClass(context);
    addMenuClass(context);
    context.engine.AddFunction(
        "dialogs.queue", [&context](ScriptCall& call) { context.answers.Queue(call.Function(1)); });
    context.engine.AddFunction("dialogs.current", [&context](ScriptCall& call) {
        call.ReturnObject(context.answers.Current());
    });
    context.engine.RunText("function answer(run)\n"
                           "  dialogs.queue(function() run(dialogs.current()) end)\n"
                           "end",
                           "answer");
}

} // namespace Marlox
