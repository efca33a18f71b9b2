#include "workbench/plugins/PluginHost.h"

#include <algorithm>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace Marlox {

namespace {

constexpr char standardName[] = "marloxcontrols.so";

} // namespace

QStringList PluginHost::StandardPlaces()
{
    QStringList folders = QString::fromLocal8Bit(qgetenv("MARLOX_PLUGINS"))
                              .split(QDir::listSeparator(), Qt::SkipEmptyParts);
    const QDir program(QCoreApplication::applicationDirPath());
    folders << program.filePath("../lib") << program.filePath(MARLOX_PLUGIN_PATH);
    QStringList places;
    for (const QString& folder : folders)
        places << QDir::cleanPath(QDir(folder).filePath(standardName));
    places.removeDuplicates();
    return places;
}

bool PluginHost::LoadStandard(QString* error)
{
    const QStringList places = StandardPlaces();
    const auto found = std::find_if(places.begin(), places.end(),
                                    [](const QString& place) { return QFileInfo(place).isFile(); });
    if (found != places.end())
        return Load(*found, error);
    if (error)
        *error = QString("the controls were not found; looked for %1").arg(places.join(", "));
    return false;
}

bool PluginHost::Load(const QString& path, QString* error)
{
    std::string reason;
    auto library = PluginLibrary::Load(path.toStdString(), &reason);
    if (!library) {
        if (error)
            *error = QString::fromStdString(reason);
        return false;
    }
    libraries_.push_back(std::move(library));
    return true;
}

bool PluginHost::Unload(const PluginLibrary& library, QString* error)
{
    const auto found =
        std::find_if(libraries_.begin(), libraries_.end(),
                     [&library](const auto& held) { return held.get() == &library; });
    std::string reason;
    const bool unloaded = found != libraries_.end() && (*found)->Unload(&reason);
    if (!unloaded) {
        if (error)
            *error = QString::fromStdString(reason);
        return false;
    }
    libraries_.erase(found);
    return true;
}

std::vector<const PluginLibrary*> PluginHost::Libraries() const
{
    std::vector<const PluginLibrary*> result;
    for (const auto& library : libraries_)
        result.push_back(library.get());
    return result;
}

} // namespace Marlox
