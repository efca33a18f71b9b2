#pragma once

#include "system/values/Parameter.h"

#include <memory>
#include <vector>

namespace Marlox {

// Attributes of an image: from its notes (Parameter::Tags), else from its format.
inline constexpr u32 IMG_Width = 0x1002000d; // of the display window at full resolution, pixels
inline constexpr u32 IMG_Height = 0x1002000e;
inline constexpr u32 IMGD_PixelAspectX = 0x20000005; // their ratio is Format::pixelAspect
inline constexpr u32 IMGD_PixelAspectY = 0x20000006;

/// A picture of 32-bit floats, interleaved RGBA, scene-linear, alpha premultiplied, rows from the
/// top. The data window is the rectangle that has pixels; the display window is the frame of the
/// picture, and normalised image coordinates run across it. Pixels are shared between copies and
/// never changed once the image has been handed over. Notes go with its copies.
class MARLOXSYSTEM_EXPORT Image : public Parameter {
public:
    struct Format {
        MxRect dataWindow;        // pixels, y down
        MxRect displayWindow;     // pixels, y down
        double pixelAspect = 1.0; // width of a pixel divided by its height
        double scale = 1.0; // pixels here for each pixel at full resolution (below 1: a proxy)

        friend bool operator==(const Format&, const Format&) = default;
    };

    Image(); // empty: no pixels
    /// Zeroed pixels. Throws std::bad_alloc when they do not fit in memory.
    explicit Image(const Format& format);

    const Format& GetFormat() const { return format_; }
    int Width() const { return format_.dataWindow.Width(); }
    int Height() const { return format_.dataWindow.Height(); }
    bool IsEmpty() const { return !pixels_; }
    /// Row `y` of the data window, from 0 at the top: Width() * 4 floats.
    const float* Row(int y) const { return pixels_->data() + std::size_t(y) * Width() * 4; }
    float* Row(int y) { return pixels_->data() + std::size_t(y) * Width() * 4; }

    MxID GetDataType() const override;
    Ref<Parameter> Copy() const override;                // shares the pixels
    bool IsEqual(const Parameter& other) const override; // same pixels in memory
    ScriptVal ToScriptVal() const override;              // nil: pixels are not part of documents
    std::size_t SizeOf() const override { return sizeof(*this); }
    bool CopyAttr(u64 tag, void* out) override;

protected:
    void TakeFrom(const Image& other);

    Format format_;
    std::shared_ptr<std::vector<float>> pixels_;
};

/// An image whose alpha channel limits a tool's effect: 0 none, 1 full.
class MARLOXSYSTEM_EXPORT Mask final : public Image {
public:
    using Image::Image;
    MxID GetDataType() const override;
    Ref<Parameter> Copy() const override;
    std::size_t SizeOf() const override { return sizeof(*this); }
};

} // namespace Marlox
