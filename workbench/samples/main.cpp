// Writes the sample pictures and the sample document into a folder.

#include "script/ScriptSystem.h"
#include "workbench/samples/Samples.h"
#include "workbench/tools/Tools.h"

#include <clocale>
#include <cstdio>

#include <QCoreApplication>
#include <QDir>

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName("Marlox Workbench");
    std::setlocale(LC_NUMERIC, "C");
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2 || arguments[1].startsWith('-')) {
        std::fprintf(stderr, "usage: marlox-make-samples FOLDER\n");
        return 2;
    }
    if (!QDir().mkpath(arguments[1])) {
        std::fprintf(stderr, "%s: the folder cannot be made\n", qUtf8Printable(arguments[1]));
        return 1;
    }
    Marlox::InstallScripting();
    Marlox::RegisterTools();
    QString error;
    const auto tell = [](const QString& path) {
        std::printf("%s\n", qUtf8Printable(path));
        std::fflush(stdout);
    };
    const bool written = Marlox::Samples::WriteAll(arguments[1], true, tell, &error);
    Marlox::UninstallScripting();
    if (written)
        return 0;
    std::fprintf(stderr, "%s\n", qUtf8Printable(error));
    return 1;
}
