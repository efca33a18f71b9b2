#pragma once

#include "system/document/Operator.h"
#include "workbench/tools/PictureFitted.h"

namespace Marlox {

/// What a mask does to the picture.
enum class MaskUse { Cut, MaskOnly };

/// Cuts the picture with a shape drawn in the viewer, or gives the mask itself: white, with the
/// mask as its alpha (premultiplied), in the frame of the picture; without one, of 1920 x 1080
/// pixels. The second shape is the outer polygon, where a soft edge ends that begins at the first.
/// "SoftEdge" blurs the mask besides, by so many pixels at full resolution (twice the standard
/// deviation). Inverted, the level rules what lies outside.
///
/// The alpha of what is connected to "Base" is a mask that this one lies on: "Combine" tells how
/// the two join, before level and inversion. A base that is switched off lets what feeds it through
/// where that is a mask; a picture is none.
///
/// A shape that is open or has fewer than two points is not drawn yet: it cuts nothing, and its
/// mask is empty.
class PolygonMask : public Operator, public PictureFitted {
public:
    explicit PolygonMask(const Registry* record);
    std::unique_ptr<ToolProcess> Prepare(double time) const override;
    /// The picture's proportions, which turning needs, are the input "FrameAspect"; a render takes
    /// those of the picture it has.
    ShapePlacement PlacementOf(const Input& shape, double time) const override;
    std::size_t SizeOf() const override { return sizeof(*this); }

    // PictureFitted
    void FitTo(const Image::Format& format) override; // its proportions

protected:
    PolygonMask(const Registry* record, const char* dataType);

private:
    bool HasBase() const;
};

/// The same with B-splines.
class BSplineMask final : public PolygonMask {
public:
    explicit BSplineMask(const Registry* record);
    std::size_t SizeOf() const override { return sizeof(*this); }
};

} // namespace Marlox
