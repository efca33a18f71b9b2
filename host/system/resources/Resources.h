#pragma once

#include "system/base/DeclarationList.h"
#include "system/base/MxColor.h"
#include "system/base/MxGeometry.h"
#include "system/base/ScriptVal.h"

#include <memory>
#include <string>
#include <vector>

#include <QMargins>
#include <QPixmap>
#include <QString>

class QPaintDevice;
class QPainter;
class QWidget;

namespace Marlox {

/// Declarations of named resources, made as static objects while a library loads and withdrawn when
/// it is unloaded. A declaration costs a few pointers; what it names is looked up in the look pack
/// when first asked for. The same name may be declared often; all refer to one resource. Names must
/// outlive the declaration (string literals).
class MARLOXSYSTEM_EXPORT Resource {
public:
    enum class Kind { Bitmap, Color, Data };

    Resource(const Resource&) = delete;
    Resource& operator=(const Resource&) = delete;

    Kind GetKind() const { return kind_; }
    const char* Name() const { return name_; }

    /// All present declarations in the order they were made.
    static std::vector<const Resource*> Declared();

protected:
    Resource(Kind kind, const char* name) noexcept;
    ~Resource();

private:
    Kind kind_;
    const char* name_;
    friend class DeclarationList<Resource>;
    DeclarationList<Resource>::Links links_;
};

/// A named bitmap: a vector drawing rasterised for the screen it is shown on. Sizes in
/// device-independent pixels. Where the look pack has no such drawing or a broken one, a plain
/// plate of a usable size stands in and LookPack::TakeProblems tells why. User-interface thread
/// only, with a QGuiApplication; references hold until LookPack::Use.
class MARLOXSYSTEM_EXPORT ResDIB : public Resource {
public:
    ResDIB(const char* name, int flags) noexcept : Resource(Kind::Bitmap, name), flags_(flags) {}

    int Flags() const { return flags_; }
    QSize Size() const;
    /// The bitmap for a device pixel ratio, which the pixmap carries; rasterised once per ratio.
    const QPixmap& Pixmap(double devicePixelRatio) const;
    const QPixmap& Pixmap(const QPaintDevice& device) const;
    /// Any bitmap by name, for names chosen at run time.
    static const QPixmap& PixmapOf(const char* name, double devicePixelRatio);
    static QSize SizeOf(const char* name);
    /// Fills `target` with the bitmap: its margins keep their size, what lies between them is
    /// stretched. The pixel grid of the pixmap's own ratio is kept, so that lines stay crisp.
    static void DrawStretched(QPainter& painter, const QRect& target, const QPixmap& pixmap,
                              const QMargins& margins);
    /// Margins written in a data block as {left, top, right, bottom}; none for anything else.
    static QMargins MarginsFrom(const ScriptVal& value);

private:
    int flags_;
};

/// A named colour with a default and a second colour, used when the look pack does not define it.
class MARLOXSYSTEM_EXPORT ResColor : public Resource {
public:
    constexpr static MxColor none{0, 0, 0, 0};
    ResColor(const char* name, MxColor color, MxColor second = none) noexcept
        : Resource(Kind::Color, name), default_(color), secondDefault_(second)
    {
    }
    MxColor Color() const;
    MxColor Second() const;
    MxColor Default() const { return default_; }
    MxColor SecondDefault() const { return secondDefault_; }

private:
    MxColor default_;
    MxColor secondDefault_;
};

/// A named text block: a layout or data that goes with it, as a script table. A layout item is its
/// own name followed by the layout description, {"Controls.X.Layout", {"VGroup", ...}}; names that
/// end in ".Data" are free in form. Parsed once; all callers share the table (ScriptVal::Clone
/// before changing it).
class MARLOXSYSTEM_EXPORT ResData : public Resource {
public:
    explicit ResData(const char* name) noexcept : Resource(Kind::Data, name) {}
    std::string Text() const; // empty if the look pack has none
    /// The parsed table; nil, with a line in LookPack::TakeProblems, if it is missing or broken.
    ScriptVal Value() const;
    static ScriptVal ValueOf(const char* name);
    /// The layout description within a layout item; nil as above.
    static ScriptVal LayoutOf(const char* name) { return ValueOf(name).At(2); }
};

/// The resource files of the look in use: a folder with `colours.lua`, `layouts/*.lua`,
/// `data/*.lua` and `bitmaps/*.svg`, one file a name but for the colours. Searched: the folder in
/// the environment variable MARLOX_LOOK, then the installed one (found from where this library
/// lies). Files are read when first asked for; colours, layouts and data need the installed
/// ScriptServices. Whatever is missing or broken falls back (see the declarations) and leaves one
/// line for TakeProblems. User-interface thread only.
class MARLOXSYSTEM_EXPORT LookPack {
public:
    static LookPack& Global();

    /// Uses another folder and forgets everything loaded. False and `error` if it is no look pack;
    /// the present one then stays in use.
    bool Use(const QString& folder, QString* error = nullptr);
    /// Empty when there is no look pack at all.
    QString Folder() const;
    /// Counts the calls of Use that succeeded, for those who keep things made from the look.
    unsigned Generation() const;
    /// Whether the pack has the file, or for a colour a readable entry.
    bool Has(Resource::Kind kind, const char* name) const;
    /// Colours that the look itself needs (window, text, accent) by name, with a fallback.
    MxColor Color(const char* name, MxColor fallback) const;
    /// What was missing or broken since the last call: file, place and fault, one line each.
    std::vector<QString> TakeProblems();

private:
    LookPack();
    ~LookPack();
    friend class ResDIB;
    friend class ResColor;
    friend class ResData;
    class Private;
    std::unique_ptr<Private> d_;
};

} // namespace Marlox
