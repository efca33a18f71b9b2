#include "workbench/ui/Interface.h"

#include "system/resources/LookStyle.h"
#include "workbench/samples/Samples.h"
#include "workbench/scripting/ScriptHost.h"
#include "workbench/ui/Icons.h"
#include "workbench/ui/MainWindow.h"

#include <cstdio>

#include <QApplication>
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

} // namespace

int RunInterface(QApplication& application, const InterfaceOptions& options)
{
    ApplyLook(application);
    application.setWindowIcon(WorkbenchIcon("Application"));
    MainWindow window;
    window.GetSession().SetPlugins(options.plugins);
    window.show();
    if (options.script.isEmpty()) {
        QTimer::singleShot(0, &window, [&window, &options] {
            if (!options.files.isEmpty())
                return window.OpenPath(options.files.first());
            OpenSample(window);
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
        application.exit(status);
    });
    application.exec();
    return status;
}

} // namespace Marlox
