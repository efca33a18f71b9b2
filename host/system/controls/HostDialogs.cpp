#include "system/controls/HostDialogs.h"

#include "system/controls/HostDialogs_p.h"
#include "system/document/Preferences.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

namespace Marlox {

namespace {

HostDialogs* installed = nullptr;

QString documentsFolder()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QFileInfo(folder).isDir() ? folder : QDir::homePath();
}

QString preferenceOf(const QString& pathId)
{
    return QStringLiteral("Paths.") + pathId;
}

} // namespace

HostDialogs::~HostDialogs() = default;

HostDialogs& HostDialogs::Get()
{
    static QtHostDialogs dialogs;
    return installed ? *installed : dialogs;
}

HostDialogs* HostDialogs::Install(HostDialogs* service)
{
    return std::exchange(installed, service);
}

QStringList HostDialogs::QtFilters(const QString& filter)
{
    // Qt takes what stands in the last brackets for the patterns, and blanks separate them.
    static const QRegularExpression ownPatterns(QStringLiteral("\\s*\\(\\s*\\*[^()]*\\)\\s*$"));
    QStringList filters;
    const QStringList parts = filter.split(u'|');
    for (int i = 0; i + 1 < parts.size(); i += 2) {
        while (i + 2 < parts.size() && parts[i].isEmpty()) // the end of a list before another one
            ++i;
        const QStringList patterns = parts[i + 1].split(u';', Qt::SkipEmptyParts);
        if (patterns.isEmpty())
            continue;
        QString description = parts[i];
        description.remove(ownPatterns);
        filters += QStringLiteral("%1 (%2)").arg(description.trimmed(), patterns.join(u' '));
    }
    return filters;
}

QString HostDialogs::WithDefaultExtension(const QString& path, const QString& extension)
{
    const QString name = QFileInfo(path).fileName();
    return name.isEmpty() || name.contains(u'.') ? path : path + extension;
}

QString HostDialogs::ValidFileName(const QString& text)
{
    static const QRegularExpression refused(QStringLiteral("[\\x{0}-\\x{1f}\\x{7f}<>:\"/\\\\|?*]"));
    QString name = text.trimmed();
    name.replace(refused, QStringLiteral("_"));
    while (name.endsWith(u'.'))
        name.chop(1);
    return name.isEmpty() ? QStringLiteral("_") : name;
}

QString HostDialogs::FolderOf(const QString& pathId)
{
    Preferences& preferences = Preferences::Global();
    const QString name = preferenceOf(pathId);
    const QString kept = preferences.Get(name).toString();
    if (!kept.isEmpty() && QFileInfo(kept).isDir())
        return kept;
    const QString folder = documentsFolder();
    if (kept.isEmpty()) // else a drive that comes back may have it
        preferences.Set(name, folder);
    return folder;
}

void HostDialogs::KeepFolderOf(const QString& pathId, const QString& file)
{
    if (!pathId.isEmpty() && !file.isEmpty())
        Preferences::Global().Set(preferenceOf(pathId), QFileInfo(file).absolutePath());
}

} // namespace Marlox
