#include "workbench/tools/Transform.h"

#include "workbench/tools/ImageWindows.h"
#include "workbench/tools/OverlayInputs.h"
#include "workbench/tools/Resample.h"
#include "workbench/tools/ToolInputs.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

struct Placement {
    QPointF centre{0.5, 0.5};
    QPointF pivot{0.5, 0.5};
    double size = 1.0;
    double angle = 0.0;
    double aspect = 1.0;
    ResampleFilter filter = ResampleFilter::Bilinear;

    bool IsIdentity() const
    {
        // Not the points' own comparison, which takes close ones for equal.
        return centre.x() == 0.5 && centre.y() == 0.5 && size == 1.0 && aspect == 1.0 &&
               std::fmod(angle, 360.0) == 0.0 && std::isfinite(pivot.x()) &&
               std::isfinite(pivot.y());
    }

    /// From the source's pixels to the result's.
    QTransform Matrix(const Image::Format& format) const
    {
        const MxRect& frame = format.displayWindow;
        const QPointF from = PlaceIn(frame, pivot.x(), pivot.y());
        // The pivot in the middle leaves the centre's digits alone.
        const QPointF to =
            PlaceIn(frame, centre.x() + (pivot.x() - 0.5), centre.y() + (pivot.y() - 0.5));
        QTransform matrix; // written from the last step to the first
        matrix.translate(to.x(), to.y());
        matrix.scale(1.0 / format.pixelAspect, 1.0); // turned where pixels are square
        matrix.rotate(-angle);
        matrix.scale(size * aspect * format.pixelAspect, size);
        matrix.translate(-from.x(), -from.y());
        return matrix;
    }
};

class TransformProcess final : public ToolProcess {
public:
    explicit TransformProcess(const Placement& placement) : placement_(placement) {}

    Ref<Image> Run(const Ref<Image>& upstream, RenderContext& context, QString& error) override
    {
        if (!upstream) {
            error = NoInputText();
            return {};
        }
        if (placement_.IsIdentity())
            return upstream;
        return Resampled(*upstream, placement_.Matrix(upstream->GetFormat()), placement_.filter,
                         context);
    }

    std::string CacheKey() const override
    {
        return KeyOf({placement_.centre.x(), placement_.centre.y(), placement_.pivot.x(),
                      placement_.pivot.y(), placement_.size, placement_.angle, placement_.aspect,
                      double(placement_.filter)});
    }

private:
    Placement placement_;
};

} // namespace

Transform::Transform(const Registry* record) : Operator(record)
{
    const auto centred = [](double centre) {
        return TagList{{IC_Centred, true}, {ICD_Centre, centre}};
    };
    AddImageInput(*this);
    AddPoint(*this,
             {"Centre", "Centre", 0.5, 0.5,
              "Where the picture's middle comes to, as a fraction of the image's width and height; "
              "0, 0 is the bottom left"},
             {{IAS_Overlay, CLSID_PreviewControl_Crosshair}, {IA_OverlayIndex, 0}});
    AddPoint(*this,
             {"Pivot", "Pivot", 0.5, 0.5,
              "The point of the picture that it turns and scales about, as a fraction of the "
              "image's width and height"},
             {{IAS_Overlay, CLSID_PreviewControl_Crosshair},
              {IA_OverlayIndex, 0},
              {CHC_Style, DiagonalCross},
              {IAS_OverlayOffset, "Centre"}});
    TagList size = centred(1.0);
    size.Add(IAD_Minimum, 0.0);
    AddSlider(*this,
              {"Size", "Size", 0.0, 5.0, 1.0, "Scales the picture about the pivot; 1 is as it is"},
              size);
    TagList angle = centred(0.0);
    angle.Merge({{ICD_Snap, 90.0},
                 {IAS_Overlay, CLSID_PreviewControl_Angle},
                 {IA_OverlayIndex, 0},
                 {IAS_OverlayOffset, "Centre"},
                 {ACID_Center, "Pivot"},
                 {ACID_Radius, "Size"},
                 {ACD_RadiusScale, 0.15},
                 {ACD_MinRadius, 0.05}});
    AddSlider(*this,
              {"Angle", "Angle", -180.0, 180.0, 0.0,
               "Turns the picture about the pivot; degrees, counterclockwise"},
              angle);
    TagList aspect = centred(1.0);
    aspect.Add(IAD_Minimum, 0.01);
    AddSlider(*this, {"Aspect", "Aspect", 0.2, 5.0, 1.0, "Stretches the width alone"}, aspect);
    AddChoice(*this, "Filter", "Filter", "How values between pixels are found",
              {"Nearest", "Bilinear", "Bicubic"}, int(ResampleFilter::Bilinear));
}

std::unique_ptr<ToolProcess> Transform::Prepare(double time) const
{
    Placement placement;
    placement.centre = PointAt(*this, "Centre", time);
    placement.pivot = PointAt(*this, "Pivot", time);
    placement.size = NumberAt(*this, "Size", time);
    placement.angle = NumberAt(*this, "Angle", time);
    placement.aspect = NumberAt(*this, "Aspect", time);
    placement.filter = ResampleFilter(std::clamp(WholeAt(*this, "Filter", time), 0, 2));
    return std::make_unique<TransformProcess>(placement);
}

} // namespace Marlox
