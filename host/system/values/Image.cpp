#include "system/values/Image.h"

#include "system/values/PixelPool.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <new>

namespace Marlox {

namespace {

std::size_t floatsIn(const MxRect& window)
{
    if (window.IsEmpty())
        return 0;
    const auto width = std::size_t(window.Width());
    const auto height = std::size_t(window.Height());
    if (width > std::numeric_limits<std::ptrdiff_t>::max() / sizeof(float) / 4 / height)
        throw std::bad_alloc();
    return width * height * 4;
}

} // namespace

Image::Image() = default;

Image::Image(const Format& format)
    : format_(format), pixels_(PixelPool::Global().Take(floatsIn(format.dataWindow)))
{
}

MxID Image::GetDataType() const
{
    static const MxID id(CLSID_DataType_Image);
    return id;
}

Ref<Parameter> Image::Copy() const
{
    auto copy = MakeRef<Image>();
    copy->TakeFrom(*this);
    return copy;
}

void Image::TakeFrom(const Image& other)
{
    format_ = other.format_;
    pixels_ = other.pixels_;
    TakeTags(other);
}

bool Image::CopyAttr(u64 tag, void* out)
{
    if (Parameter::CopyAttr(tag, out))
        return true;
    const auto answer = [out](auto value) {
        std::memcpy(out, &value, sizeof value);
        return true;
    };
    const auto full = [this](int pixels) { return int64(std::llround(pixels / format_.scale)); };
    switch (tag) {
    case IMG_Width:
        return answer(full(format_.displayWindow.Width()));
    case IMG_Height:
        return answer(full(format_.displayWindow.Height()));
    case IMGD_PixelAspectX:
        return answer(format_.pixelAspect);
    case IMGD_PixelAspectY:
        return answer(1.0);
    default:
        return false;
    }
}

bool Image::IsEqual(const Parameter& other) const
{
    const auto* image = dynamic_cast<const Image*>(&other);
    return image && image->GetDataType() == GetDataType() && image->pixels_ == pixels_ &&
           image->format_ == format_;
}

ScriptVal Image::ToScriptVal() const
{
    return {};
}

MxID Mask::GetDataType() const
{
    static const MxID id(CLSID_DataType_Mask);
    return id;
}

Ref<Parameter> Mask::Copy() const
{
    auto copy = MakeRef<Mask>();
    copy->TakeFrom(*this);
    return copy;
}

} // namespace Marlox
