#include "system/resources/LookPack_p.h"

#include <cmath>

#include <QPaintDevice>
#include <QPainter>
#include <qdrawutil.h>

namespace Marlox {

namespace {

constinit DeclarationList<Resource> resources;

} // namespace

Resource::Resource(Kind kind, const char* name) noexcept : kind_(kind), name_(name)
{
    resources.Append(*this);
}

Resource::~Resource()
{
    resources.Remove(*this);
}

std::vector<const Resource*> Resource::Declared()
{
    return resources.All();
}

QSize ResDIB::Size() const
{
    return SizeOf(Name());
}

const QPixmap& ResDIB::Pixmap(double devicePixelRatio) const
{
    return PixmapOf(Name(), devicePixelRatio);
}

const QPixmap& ResDIB::Pixmap(const QPaintDevice& device) const
{
    return PixmapOf(Name(), device.devicePixelRatioF());
}

const QPixmap& ResDIB::PixmapOf(const char* name, double devicePixelRatio)
{
    return LookPack::Global().d_->PixmapNamed(name, devicePixelRatio);
}

QSize ResDIB::SizeOf(const char* name)
{
    return LookPack::Global().d_->BitmapNamed(name).size;
}

void ResDIB::DrawStretched(QPainter& painter, const QRect& target, const QPixmap& pixmap,
                           const QMargins& margins)
{
    const double ratio = pixmap.devicePixelRatioF();
    const auto scaled = [ratio](int length) { return int(std::lround(length * ratio)); };
    qDrawBorderPixmap(&painter, target, margins, pixmap, pixmap.rect(),
                      QMargins(scaled(margins.left()), scaled(margins.top()),
                               scaled(margins.right()), scaled(margins.bottom())));
}

QMargins ResDIB::MarginsFrom(const ScriptVal& value)
{
    const auto margin = [&value](std::size_t i) {
        return int(std::lround(std::clamp(value.At(i).ToNumber(), 0.0, 4096.0)));
    };
    return {margin(1), margin(2), margin(3), margin(4)};
}

MxColor ResColor::Color() const
{
    const LookColor* color = LookPack::Global().d_->ColorNamed(Name());
    return color ? color->first : default_;
}

MxColor ResColor::Second() const
{
    const LookColor* color = LookPack::Global().d_->ColorNamed(Name());
    return color && color->second ? *color->second : secondDefault_;
}

std::string ResData::Text() const
{
    return LookPack::Global().d_->TextNamed(Name());
}

ScriptVal ResData::Value() const
{
    return ValueOf(Name());
}

ScriptVal ResData::ValueOf(const char* name)
{
    return LookPack::Global().d_->DataNamed(name);
}

} // namespace Marlox
