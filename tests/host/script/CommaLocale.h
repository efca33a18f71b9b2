#pragma once

#include <clocale>
#include <cstdlib>
#include <string>

#include <QProcess>
#include <QTemporaryDir>

/// While it lives, the process runs in a locale with a decimal comma: one of the system's, or one
/// compiled for the occasion. IsActive is false where neither can be had.
class CommaLocale {
public:
    CommaLocale() : before_(std::setlocale(LC_ALL, nullptr))
    {
        active_ = Try() || (Compile() && Try());
    }
    ~CommaLocale() { std::setlocale(LC_ALL, before_.c_str()); }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

    bool IsActive() const { return active_; }

private:
    static bool Try()
    {
        for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "nl_NL.UTF-8", "es_ES.UTF-8"}) {
            if (std::setlocale(LC_ALL, name) && *std::localeconv()->decimal_point == ',')
                return true;
        }
        return false;
    }

    bool Compile()
    {
        const QString target = folder_.filePath(QStringLiteral("de_DE.UTF-8"));
        QProcess::execute(QStringLiteral("localedef"),
                          {QStringLiteral("-i"), QStringLiteral("de_DE"), QStringLiteral("-f"),
                           QStringLiteral("UTF-8"), target});
        return setenv("LOCPATH", qPrintable(folder_.path()), 1) == 0;
    }

    QTemporaryDir folder_;
    std::string before_;
    bool active_ = false;
};
