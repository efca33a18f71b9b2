#pragma once

#include "system/base/Registry.h"

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace Marlox {

/// A shared library whose static objects register classes while it is loaded. User-interface
/// thread.
class MARLOXSYSTEM_EXPORT PluginLibrary {
public:
    /// Null and `error`, naming the file: there is none, it is no library of this machine's kind,
    /// something that it needs is missing, or it registers nothing (it is unloaded again then).
    static std::unique_ptr<PluginLibrary> Load(const std::string& path, std::string* error);
    /// Leaves the library where it is: what it made may outlive this object.
    ~PluginLibrary();
    PluginLibrary(const PluginLibrary&) = delete;
    PluginLibrary& operator=(const PluginLibrary&) = delete;

    const std::string& Path() const { return path_; }
    /// Its class records, in the order of registration; empty after Unload.
    std::span<Registry* const> Records() const { return records_; }
    /// Classes that could not be registered although others could, a line each.
    std::span<const std::string> Problems() const { return problems_; }

    /// Unloads the library: its records, resources and script types leave the host. Refused (false
    /// and `error`) while objects live that the ClassRegistry made of its classes.
    bool Unload(std::string* error);

private:
    PluginLibrary(std::string path, void* handle, std::vector<Registry*> records);

    std::string path_;
    void* handle_; // null once unloaded
    std::vector<Registry*> records_;
    std::vector<std::string> problems_;
};

} // namespace Marlox
