#pragma once

#include "system/base/PluginLibrary.h"

#include <memory>
#include <vector>

#include <QStringList>

namespace Marlox {

/// The plug-ins of this process: the standard controls, which every workbench loads, and those that
/// the user adds.
class PluginHost {
public:
    /// Loads the standard controls: "marloxcontrols.so" in the folders of the environment variable
    /// MARLOX_PLUGINS (separated by colons), beside the program ("../lib"), or where it is
    /// installed. False and `error`, which tells all places looked at.
    bool LoadStandard(QString* error);
    bool Load(const QString& path, QString* error);
    /// Refused while objects of its classes live.
    bool Unload(const PluginLibrary& library, QString* error);

    /// In the order they were loaded.
    std::vector<const PluginLibrary*> Libraries() const;
    static QStringList StandardPlaces();

private:
    std::vector<std::unique_ptr<PluginLibrary>> libraries_;
};

} // namespace Marlox
