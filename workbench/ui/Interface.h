#pragma once

#include <QStringList>

class QApplication;

namespace Marlox {

class PluginHost;

/// What the command line wants of the window.
struct InterfaceOptions {
    QStringList files; // the first is opened
    QString script;    // run once the window is up; then the process ends with its status
    QStringList scriptArguments;
    bool offerRecovery = true;
    PluginHost* plugins = nullptr; // loaded already; for scripts
};

/// Opens the workbench's window and runs until it is closed (or the script has ended). Returns the
/// exit status: 0, or 1 when the script failed.
int RunInterface(QApplication& application, const InterfaceOptions& options);

} // namespace Marlox
