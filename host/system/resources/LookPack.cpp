#include "system/resources/LookPack_p.h"

#include "system/base/ScriptServices.h"

#include <cmath>

#include <dlfcn.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace Marlox {

namespace {

const QLatin1String colorsFile("colours.lua");

/// Layouts and data blocks are both text; the name tells which.
bool IsDataBlock(std::string_view name)
{
    return name.ends_with(".Data");
}

/// The folder of the shared object that holds this code.
QString OwnFolder()
{
    static const char inThisLibrary = 0;
    Dl_info info{};
    if (dladdr(&inThisLibrary, &info) == 0 || !info.dli_fname) {
        return {};
    }
    return QFileInfo(QFile::decodeName(info.dli_fname)).canonicalPath();
}

std::optional<MxColor> ReadComponents(const ScriptVal& value)
{
    const std::size_t count = value.Length();
    if (!value.IsTable() || !value.Fields().empty() || count < 3 || count > 4) {
        return {};
    }
    int components[4] = {0, 0, 0, 255};
    for (std::size_t i = 0; i < count; ++i) {
        const ScriptVal& component = value.At(i + 1);
        const double number = component.ToNumber(-1.0);
        if (!component.IsNumber() || !(number >= 0.0 && number <= 255.0)) {
            return {};
        }
        components[i] = int(std::lround(number));
    }
    return MxColor(components[0], components[1], components[2], components[3]);
}

/// {r, g, b[, a]} or {{r, g, b[, a]}, {r, g, b[, a]}}.
std::optional<LookColor> ReadColor(const ScriptVal& value)
{
    if (const auto single = ReadComponents(value)) {
        return LookColor{*single, {}};
    }
    const auto first = ReadComponents(value.At(1));
    const auto second = ReadComponents(value.At(2));
    if (!first || !second || value.Length() != 2 || !value.Fields().empty()) {
        return {};
    }
    return LookColor{*first, second};
}

} // namespace

bool LookPack::Private::Adopt(const QString& path, QString* error)
{
    const QDir dir(path);
    QString fault;
    if (path.isEmpty() || !dir.exists()) {
        fault = QStringLiteral("there is no such folder");
    } else if (!dir.exists(colorsFile) && !dir.exists(QStringLiteral("bitmaps")) &&
               !dir.exists(QStringLiteral("layouts")) && !dir.exists(QStringLiteral("data"))) {
        fault = QStringLiteral("this is no look pack: it holds neither colours.lua nor one of the "
                               "folders bitmaps, layouts and data");
    }
    if (!fault.isEmpty()) {
        if (error) {
            *error = QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(path), fault);
        }
        return false;
    }
    folder = dir.absolutePath();
    bitmaps_.clear();
    colors_.clear();
    data_.clear();
    colorsRead_ = false;
    return true;
}

void LookPack::Private::AdoptFirstFound()
{
    QString error;
    if (const QByteArray wanted = qgetenv("MARLOX_LOOK"); !wanted.isEmpty()) {
        if (Adopt(QFile::decodeName(wanted), &error)) {
            return;
        }
        problems.push_back(QStringLiteral("%1; MARLOX_LOOK names it").arg(error));
    }
    // The second is the build tree's, should the installed library folder be nested deeper.
    for (const char* relative : {MARLOX_LOOK_FROM_LIBRARY, "../share/marlox/look"}) {
        const QString path =
            QDir::cleanPath(QDir(OwnFolder()).absoluteFilePath(QString::fromLatin1(relative)));
        if (Adopt(path, &error)) {
            return;
        }
    }
    problems.push_back(error);
}

QString LookPack::Private::PathOf(Resource::Kind kind, const char* name) const
{
    const QString file = QString::fromLatin1(name);
    switch (kind) {
    case Resource::Kind::Bitmap:
        return QStringLiteral("%1/bitmaps/%2.svg").arg(folder, file);
    case Resource::Kind::Data:
        return QStringLiteral("%1/%2/%3.lua")
            .arg(folder, IsDataBlock(name) ? QStringLiteral("data") : QStringLiteral("layouts"),
                 file);
    case Resource::Kind::Color:
        break;
    }
    return QStringLiteral("%1/%2").arg(folder, colorsFile);
}

bool LookPack::Private::Has(Resource::Kind kind, const char* name)
{
    return kind == Resource::Kind::Color ? ColorNamed(name) != nullptr
                                         : QFileInfo(PathOf(kind, name)).isFile();
}

void LookPack::Private::Tell(const QString& path, const QString& fault)
{
    problems.push_back(QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(path), fault));
}

bool LookPack::Private::HasScripting()
{
    if (ScriptServices::Installed()) {
        return true;
    }
    if (!scriptingMissed_) {
        Tell(folder, QStringLiteral("colours, layouts and data can't be read before the scripting "
                                    "library is loaded"));
        scriptingMissed_ = true;
    }
    return false;
}

ScriptVal LookPack::Private::ReadTable(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        Tell(path, file.errorString());
        return {};
    }
    ScriptVal value;
    QString error;
    if (!ScriptServices::Installed()->ParseValue(file.readAll().toStdString(), value, &error)) {
        Tell(path, error);
        return {};
    }
    if (!value.IsTable()) {
        Tell(path, QStringLiteral("a table { ... } is expected"));
        return {};
    }
    return value;
}

void LookPack::Private::ReadColors()
{
    if (colorsRead_ || folder.isEmpty() || !HasScripting()) {
        return;
    }
    colorsRead_ = true;
    const QString path = PathOf(Resource::Kind::Color, nullptr);
    const ScriptVal table = ReadTable(path);
    for (const auto& [name, value] : table.Fields()) {
        if (const auto color = ReadColor(value)) {
            colors_[name] = *color;
        } else {
            Tell(path,
                 QStringLiteral("\"%1\": {red, green, blue} or {red, green, blue, alpha} from "
                                "0 to 255 is expected, or two of these in a table")
                     .arg(QString::fromStdString(name)));
        }
    }
}

const LookColor* LookPack::Private::ColorNamed(const char* name)
{
    ReadColors();
    const auto found = colors_.find(std::string_view(name));
    return found == colors_.end() ? nullptr : &found->second;
}

LookPack::Private::Bitmap& LookPack::Private::BitmapNamed(const char* name)
{
    const auto found = bitmaps_.find(std::string_view(name));
    if (found != bitmaps_.end()) {
        return found->second;
    }
    Bitmap& bitmap = bitmaps_[name];
    const QString path = PathOf(Resource::Kind::Bitmap, name);
    QString error;
    if (!folder.isEmpty() && !bitmap.drawing.Load(path, &error)) {
        Tell(path, error);
    }
    bitmap.size = bitmap.drawing.Size().isEmpty() ? PlaceholderSize(name) : bitmap.drawing.Size();
    return bitmap;
}

const QPixmap& LookPack::Private::PixmapNamed(const char* name, double ratio)
{
    Bitmap& bitmap = BitmapNamed(name);
    QPixmap& pixmap = bitmap.pixmaps[ratio];
    if (pixmap.isNull()) {
        pixmap = bitmap.drawing.Size().isEmpty() ? DrawPlaceholder(bitmap.size, ratio)
                                                 : bitmap.drawing.Rasterise(ratio);
    }
    return pixmap;
}

ScriptVal LookPack::Private::DataNamed(const char* name)
{
    const auto found = data_.find(std::string_view(name));
    if (found != data_.end()) {
        return found->second;
    }
    if (folder.isEmpty() || !HasScripting()) {
        return {};
    }
    const QString path = PathOf(Resource::Kind::Data, name);
    ScriptVal value = ReadTable(path);
    const bool named = value.At(1).IsString() && value.At(1).ToString() == name;
    if (value.IsTable() && !IsDataBlock(name) && !(named && value.At(2).IsTable())) {
        Tell(path, QStringLiteral("{\"%1\", { ... }} is expected: the layout's own name, then the "
                                  "layout")
                       .arg(QLatin1String(name)));
        value = {};
    }
    return data_[name] = value;
}

std::string LookPack::Private::TextNamed(const char* name) const
{
    QFile file(PathOf(Resource::Kind::Data, name));
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
}

LookPack::LookPack() : d_(std::make_unique<Private>())
{
    d_->AdoptFirstFound();
}

LookPack::~LookPack() = default;

LookPack& LookPack::Global()
{
    // Lives as long as the process: pixmaps must not outlast the application object in a destructor
    // that runs after it, and widgets may ask until the very end.
    static LookPack* const pack = new LookPack;
    return *pack;
}

bool LookPack::Use(const QString& folder, QString* error)
{
    if (!d_->Adopt(folder, error)) {
        return false;
    }
    d_->problems.clear();
    ++d_->generation;
    return true;
}

QString LookPack::Folder() const
{
    return d_->folder;
}

unsigned LookPack::Generation() const
{
    return d_->generation;
}

bool LookPack::Has(Resource::Kind kind, const char* name) const
{
    return d_->Has(kind, name);
}

MxColor LookPack::Color(const char* name, MxColor fallback) const
{
    const LookColor* color = d_->ColorNamed(name);
    return color ? color->first : fallback;
}

std::vector<QString> LookPack::TakeProblems()
{
    return std::exchange(d_->problems, {});
}

} // namespace Marlox
