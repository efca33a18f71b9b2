// The workbench's program: what the command line asks for, with or without a window.

#include "script/ScriptSystem.h"
#include "workbench/cli/BatchRender.h"
#include "workbench/cli/Listing.h"
#include "workbench/cli/Options.h"
#include "workbench/plugins/PluginHost.h"
#include "workbench/tools/Tools.h"
#include "workbench/ui/Interface.h"

#include <clocale>
#include <cstdio>
#include <memory>

#include <QApplication>

namespace {

using namespace Marlox;

enum Status { Done = 0, Failed = 1, BadUsage = 2 };

int complain(const QString& text, int status)
{
    std::fprintf(stderr, "marlox-workbench: %s\n", qUtf8Printable(text));
    return status;
}

/// Only the window needs a display. The list of controls makes one of each, if only to ask it.
/// Of the arguments Qt gets the program's name alone: it would take --plugin and others as its own.
std::unique_ptr<QCoreApplication> makeApplication(char** argv, Options::Action action)
{
    static int argc = 1; // referred to as long as the application lives
    const bool listsControls = action == Options::Action::ListControls;
    if (action != Options::Action::Interface && !listsControls)
        return std::make_unique<QCoreApplication>(argc, argv);
    if (listsControls)
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    return std::make_unique<QApplication>(argc, argv);
}

bool hasDisplay()
{
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
           qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
}

bool loadPlugins(PluginHost& plugins, const Options& options, QString* error)
{
    if (!plugins.LoadStandard(error))
        return false;
    for (const QString& plugin : options.plugins) {
        if (!plugins.Load(plugin, error))
            return false;
    }
    return true;
}

/// A broken plug-in is no reason to keep the window shut: tools and documents work without it.
void loadPluginsForInterface(PluginHost& plugins, const Options& options)
{
    QString error;
    if (!plugins.LoadStandard(&error))
        complain(error, Failed);
    for (const QString& plugin : options.plugins) {
        if (!plugins.Load(plugin, &error))
            complain(error, Failed);
    }
    for (const PluginLibrary* library : plugins.Libraries()) {
        for (const std::string& problem : library->Problems())
            complain(QString::fromStdString(library->Path() + ": " + problem), Failed);
    }
}

int print(const std::string& text)
{
    std::fputs(text.c_str(), stdout);
    return Done;
}

int run(QCoreApplication& application, const Options& options)
{
    PluginHost plugins;
    QString error;
    switch (options.action) {
    case Options::Action::Help:
        return print(Options::HelpText().toStdString());
    case Options::Action::Version:
        return print("marlox-workbench " + application.applicationVersion().toStdString() + "\n");
    case Options::Action::ListControls:
    case Options::Action::ListResources:
        if (!loadPlugins(plugins, options, &error))
            return complain(error, Failed);
        return print(options.action == Options::Action::ListControls
                         ? ListControls(plugins.Libraries())
                         : ListResources());
    case Options::Action::Render:
        // The standard controls have no part in it, but further plug-ins may bring tools.
        for (const QString& plugin : options.plugins) {
            if (!plugins.Load(plugin, &error))
                return complain(error, Failed);
        }
        return RenderFrames(options);
    case Options::Action::Interface:
        break;
    }
    loadPluginsForInterface(plugins, options);
    InterfaceOptions interface;
    interface.files = options.files;
    interface.script = options.script;
    interface.scriptArguments = options.scriptArguments;
    interface.plugins = &plugins;
    interface.offerRecovery = options.recovery;
    return RunInterface(static_cast<QApplication&>(application), interface);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication::setApplicationName("Marlox Workbench");
    QCoreApplication::setApplicationVersion(MARLOX_VERSION);
    QCoreApplication::setOrganizationName("Marlox");
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    QString error;
    const std::optional<Options> options = Options::Parse(arguments, &error);
    if (!options)
        return complain(error + " (--help tells the usage)", BadUsage);
    if (options->action == Options::Action::Interface && !hasDisplay())
        return complain("there is no display to open a window on; --render and the lists work "
                        "without one",
                        Failed);
    const auto application = makeApplication(argv, options->action);
    std::setlocale(LC_NUMERIC, "C"); // files and scripts are the same everywhere
    InstallScripting();
    RegisterTools();
    const int status = run(*application, *options);
    UninstallScripting();
    return status;
}
