#include "workbench/ui/Interface.h"

#include "system/resources/LookStyle.h"
#include "system/resources/Resources.h"
#include "workbench/samples/Samples.h"
#include "workbench/scripting/ScriptHost.h"
#include "workbench/ui/ConsolePanel.h"
#include "workbench/ui/Icons.h"
#include "workbench/ui/MainWindow.h"

#include <cstdio>

#include <QApplication>
#include <QStatusBar>
#include <QTimer>

namespace Marlox {

namespace {

/// Something to try the controls on; without samples the document stays empty.
void OpenSample(MainWindow& window)
{
    const QString folder = Samples::Folder();
    QString error;
    if (!folder.isEmpty())
        window.GetSession().Open(folder + '/' + Samples::documentName, &error);
}

/// Faults of the look show when something is drawn with it, at any time.
void TellLookProblems(MainWindow& window)
{
    for (const QString& problem : LookPack::Global().TakeProblems()) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(problem));
        window.Console().Append(problem, true);
        window.statusBar()->showMessage(problem, 10000); // milliseconds
    }
}

} // namespace

int RunInterface(QApplication& application, const InterfaceOptions& options)
{
    ApplyLook(application);
    application.setWindowIcon(WorkbenchIcon("Application"));
    MainWindow window;
    window.GetSession().SetPlugins(options.plugins);
    window.show();
    QTimer lookWatch;
    QObject::connect(&lookWatch, &QTimer::timeout, &window,
                     [&window] { TellLookProblems(window); });
    lookWatch.start(500); // milliseconds
    if (options.script.isEmpty()) {
        QTimer::singleShot(0, &window, [&window, &options] {
            if (options.files.isEmpty())
                OpenSample(window);
            else
                window.OpenPath(options.files.first());
            if (options.offerRecovery)
                window.OfferRecovery();
        });
        return application.exec();
    }

    int status = 0;
    QTimer::singleShot(0, &window, [&] {
        QObject::connect(&window.Scripts(), &ScriptHost::Printed, &window, [](const QString& line) {
            std::printf("%s\n", qUtf8Printable(line));
            std::fflush(stdout);
        });
        QString error;
        if (!options.files.isEmpty() && !window.GetSession().Open(options.files.first(), &error)) {
            std::fprintf(stderr, "%s\n", qUtf8Printable(error));
            status = 1;
        } else if (!window.Scripts().RunFile(options.script, options.scriptArguments, &error)) {
            std::fprintf(stderr, "%s\n", qUtf8Printable(error));
            status = 1;
        } else {
            status = window.Scripts().ExitCode();
        }
        TellLookProblems(window);
        application.exit(status);
    });
    application.exec();
    return status;
}

} // namespace Marlox
