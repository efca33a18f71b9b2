#pragma once

#include "system/document/Operator.h"
#include "workbench/tools/PictureFitted.h"

namespace Marlox {

/// Keeps a rectangle of the picture and makes the rest transparent. Its edges are pixels at full
/// resolution from the left bottom of the display window, y up; fractions are rounded to whole
/// pixels, and a proxy keeps every pixel of its own that the rectangle touches, counted from its
/// own bottom (less than one of them below the picture's). Crossed edges are swapped. With Reformat
/// on, the rectangle becomes the display window (at least one pixel), which begins at (0, 0); its
/// edges still count from the display window that comes in, so that the viewer overlay, which shows
/// them in the frame of the picture on view, is in place over the source and over the result as
/// long as Reformat is off.
class Crop : public Operator, public PictureFitted {
public:
    explicit Crop(const Registry* record) : Crop(record, Values::Edges) {}
    std::unique_ptr<ToolProcess> Prepare(double time) const override;
    std::size_t SizeOf() const override { return sizeof(*this); }

    // PictureFitted
    void FitTo(const Image::Format& format) override; // the whole picture

protected:
    enum class Values { Edges, Sizes };
    Crop(const Registry* record, Values values);

private:
    Values values_;
};

/// The same by left and bottom edge, width and height (at least 0).
class CropRegion final : public Crop {
public:
    explicit CropRegion(const Registry* record) : Crop(record, Values::Sizes) {}
    std::size_t SizeOf() const override { return sizeof(*this); }
};

} // namespace Marlox
