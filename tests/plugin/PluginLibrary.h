#pragma once

#include <dlfcn.h>

#include <QByteArray>
#include <QFile>

/// The built control library, loaded at run time as any host loads it: no test links it. Loaded
/// while the object lives.
class PluginLibrary {
public:
    PluginLibrary() { Load(); }
    ~PluginLibrary() { Unload(); }
    PluginLibrary(const PluginLibrary&) = delete;
    PluginLibrary& operator=(const PluginLibrary&) = delete;

    static QByteArray Path() { return MARLOX_BINARY_DIR "/lib/marloxcontrols.so"; }

    bool Load()
    {
        handle_ = dlopen(Path().constData(), RTLD_NOW | RTLD_LOCAL);
        error_ = handle_ ? QByteArray() : QByteArray(dlerror());
        return handle_;
    }

    void Unload()
    {
        if (handle_)
            dlclose(handle_);
        handle_ = nullptr;
    }

    bool IsLoaded() const { return handle_; }
    const QByteArray& Error() const { return error_; }

    /// Whether the library is mapped into this process, whoever loaded it.
    static bool IsMapped()
    {
        QFile maps("/proc/self/maps");
        return maps.open(QIODevice::ReadOnly) && maps.readAll().contains(Path());
    }

    template <class Function>
    Function* Find(const char* name) const
    {
        return reinterpret_cast<Function*>(dlsym(handle_, name));
    }

private:
    void* handle_ = nullptr;
    QByteArray error_;
};
