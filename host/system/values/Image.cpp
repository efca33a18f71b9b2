#include "system/values/Image.h"

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
    : format_(format), pixels_(std::make_shared<std::vector<float>>(floatsIn(format.dataWindow)))
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
    copy->format_ = format_;
    copy->pixels_ = pixels_;
    return copy;
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
    copy->format_ = format_;
    copy->pixels_ = pixels_;
    return copy;
}

} // namespace Marlox
