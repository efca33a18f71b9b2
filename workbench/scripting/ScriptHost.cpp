#include "workbench/scripting/ScriptHost.h"

#include "workbench/scripting/Bindings.h"
#include "workbench/scripting/DialogAnswers.h"
#include "workbench/scripting/ScriptLog.h"
#include "workbench/scripting/Synthesizer.h"
#include "workbench/ui/InspectorPanel.h"
#include "workbench/ui/MainWindow.h"

#include <algorithm>

#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QThread>
#include <QTimer>

namespace Marlox {

class ScriptHost::Private {
public:
    Private(ScriptHost& host, MainWindow& window)
        : log(window.GetSession().Document(), window.Inspector().Page()),
          context{engine, window, window.GetSession(), events, answers, log}
    {
        QObject::connect(&window, &MainWindow::OverlayWrote, &log, &ScriptLog::OnValueWritten);
        engine.SetPrint([&host](const QString& line) { emit host.Printed(line); });
        AddDocumentBindings(context);
        AddInputBindings(context);
        AddHistoryBindings(context);
        AddWidgetBindings(context);
        AddControlBindings(context);
        AddEventBindings(context);
        AddDialogBindings(context);
        AddViewerBindings(context);
        AddPictureBindings(context);
        AddPluginBindings(context);
        AddHelp();
    }

    ScriptResult Run(const std::function<ScriptResult()>& run)
    {
        const bool native = !QApplication::testAttribute(Qt::AA_DontUseNativeDialogs);
        QApplication::setAttribute(Qt::AA_DontUseNativeDialogs); // scripts answer Qt's own
        answers.Start();
        ScriptResult result = run();
        const QString problem = answers.Stop();
        if (result.ok && !problem.isEmpty()) {
            result.ok = false;
            result.message = problem;
        }
        events.Reset();
        QApplication::setAttribute(Qt::AA_DontUseNativeDialogs, !native);
        return result;
    }

    void AddHelp()
    {
        engine.AddFunction("help", [this](ScriptCall& call) {
            const std::string part = call.Text(1, "");
            ScriptVal list = ScriptVal::MakeTable();
            std::vector<std::string> names = engine.Names();
            names.emplace_back("answer"); // the one that is written in Lua
            std::sort(names.begin(), names.end());
            for (const std::string& name : names) {
                if (name.find(part) != std::string::npos)
                    list.Append(name);
            }
            call.Return(list);
        });
    }

    ScriptEngine engine;
    Synthesizer events;
    DialogAnswers answers;
    ScriptLog log;
    ScriptContext context;
};

void RunEvents(ScriptContext& context, double seconds)
{
    QElapsedTimer clock;
    clock.start();
    do {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        if (seconds > 0.0)
            QThread::usleep(500);
    } while (double(clock.elapsed()) < seconds * 1000.0);
    context.answers.Look();
    const QString problem = context.answers.TakeProblem();
    if (!problem.isEmpty())
        throw ScriptError(problem);
}

ScriptHost::ScriptHost(MainWindow& window) : d_(std::make_unique<Private>(*this, window)) {}

ScriptHost::~ScriptHost() = default;

bool ScriptHost::RunFile(const QString& path, const QStringList& arguments, QString* error)
{
    if (d_->engine.IsRunning()) {
        *error = tr("A script is running already.");
        return false;
    }
    ScriptVal values = ScriptVal::MakeTable();
    for (const QString& argument : arguments)
        values.Append(argument.toStdString());
    values.Set("file", path.toStdString());
    d_->engine.SetGlobal("arg", values);
    d_->engine.SetGlobal("script_folder", QFileInfo(path).absolutePath().toStdString());
    const ScriptResult result = d_->Run([&] { return d_->engine.RunFile(path); });
    exitCode_ = result.exitCode.value_or(result.ok ? 0 : 1);
    if (result.exitCode)
        return true; // the script chose its status
    *error = result.Error();
    if (!result.ok && !result.traceback.isEmpty())
        *error += '\n' + result.traceback;
    return result.ok;
}

bool ScriptHost::RunText(const QString& text, QString* error)
{
    if (d_->engine.IsRunning()) {
        *error = tr("A script is running already.");
        return false;
    }
    const ScriptResult result = d_->Run([&] { return d_->engine.RunText(text); });
    if (result.exitCode) {
        // The user is there and may have unsaved work: ends as the menu would.
        QTimer::singleShot(0, &d_->context.window, &QWidget::close);
        return true;
    }
    *error = result.Error();
    for (const QString& shown : result.texts)
        emit Printed(shown);
    return result.ok;
}

bool ScriptHost::IsRunning() const
{
    return d_->engine.IsRunning();
}

void ScriptHost::Interrupt()
{
    d_->engine.Interrupt();
}

} // namespace Marlox
