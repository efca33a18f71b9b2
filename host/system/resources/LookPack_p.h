#pragma once

#include "system/resources/Resources.h"
#include "system/resources/VectorBitmap.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace Marlox {

struct NameHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view name) const
    {
        return std::hash<std::string_view>{}(name);
    }
};

template <class T>
using ByName = std::unordered_map<std::string, T, NameHash, std::equal_to<>>;

/// A colour of the pack; without a second one the declaration's second default counts.
struct LookColor {
    MxColor first;
    std::optional<MxColor> second;
};

/// What was loaded from the look pack in use. Everything is kept by name for as long as the pack is
/// used; what could not be loaded is kept as such, so that each fault is told once.
class LookPack::Private {
public:
    struct Bitmap {
        VectorBitmap drawing;
        QSize size;
        std::map<double, QPixmap> pixmaps; // by ratio; a map, because references are handed out
    };
    /// Adopts a folder, or fails with a reason.
    bool Adopt(const QString& folder, QString* error);
    void AdoptFirstFound();
    bool Has(Resource::Kind kind, const char* name);
    Bitmap& BitmapNamed(const char* name);
    const QPixmap& PixmapNamed(const char* name, double ratio);
    const LookColor* ColorNamed(const char* name);
    ScriptVal DataNamed(const char* name);
    std::string TextNamed(const char* name) const;

    QString folder;
    unsigned generation = 0;
    std::vector<QString> problems;

private:
    QString PathOf(Resource::Kind kind, const char* name) const;
    void Tell(const QString& path, const QString& fault);
    ScriptVal ReadTable(const QString& path);
    void ReadColors();
    /// Tables can't be read before scripting is installed; told once, tried again later.
    bool HasScripting();

    ByName<Bitmap> bitmaps_;
    ByName<LookColor> colors_;
    ByName<ScriptVal> data_;
    bool colorsRead_ = false;
    bool scriptingMissed_ = false;
};

} // namespace Marlox
