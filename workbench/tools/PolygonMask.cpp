#include "workbench/tools/PolygonMask.h"

#include "system/document/MarloxDoc.h"
#include "system/shapes/ShapeLinks.h"
#include "system/shapes/ShapePlacement.h"
#include "workbench/tools/BoxBlur.h"
#include "workbench/tools/ImageWindows.h"
#include "workbench/tools/MaskBase.h"
#include "workbench/tools/MaskShape.h"
#include "workbench/tools/OverlayInputs.h"
#include "workbench/tools/ToolInputs.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

constexpr double softest = 1000.0; // pixels at full resolution
constexpr int blurPasses = 3;
constexpr double normalAspect = 16.0 / 9.0;
constexpr double wideBlur = 3.0; // it reaches hardly further than so many standard deviations

struct MaskSettings {
    MaskShape shape;
    FillRule rule = FillRule::NonZero;
    Falloff falloff = Falloff::Linear;
    double softEdge = 0.0;
    double level = 1.0;
    bool inverted = false;
    MaskUse use = MaskUse::Cut;
    MaskCombine combine = MaskCombine::Add;
    bool hasBase = false;
};

class MaskProcess final : public ToolProcess {
public:
    explicit MaskProcess(MaskSettings settings) : settings_(std::move(settings)) {}

    Ref<Image> Run(const Ref<Image>& upstream, RenderContext& context, QString&) override
    {
        const bool cuts = upstream && settings_.use == MaskUse::Cut;
        Image::Format format = upstream ? upstream->GetFormat() : StandardFormat(context);
        const MaskOutlines outlines = settings_.shape.OutlinesIn(format);
        const MaskBase base(settings_.hasBase ? Upstream("Base") : Ref<Image>(), settings_.combine,
                            !outlines.inner.empty());
        const bool isNothing = outlines.inner.empty() && !base.IsThere();
        if (cuts && (isNothing || format.dataWindow.IsEmpty()))
            return upstream;
        if (!cuts)
            format.dataWindow = United(format.displayWindow, format.dataWindow);
        if (isNothing)
            MakeEmpty(format);
        const double deviation = settings_.softEdge * format.scale / 2.0;
        const Ref<Image> result =
            deviation > 0.0 && !format.dataWindow.IsEmpty()
                ? Soft(outlines, base, deviation, cuts ? upstream : nullptr, format, context)
                : Sharp(outlines, base, cuts ? upstream : nullptr, format, context);
        return context.IsCancelled() ? Ref<Image>() : result;
    }

    bool NeedsUpstream() const override { return false; }

    std::string CacheKey() const override
    {
        return settings_.shape.Key() + ' ' +
               KeyOf({double(settings_.rule), double(settings_.falloff), settings_.softEdge,
                      settings_.level, double(settings_.inverted), double(settings_.use),
                      double(settings_.combine), double(settings_.hasBase)});
    }

private:
    /// Limits the data window to what the mask leaves, which covers `covered`.
    void Limit(Image::Format& format, const MxRect& covered) const
    {
        if (!settings_.inverted)
            format.dataWindow = Shared(format.dataWindow, covered);
        if (format.dataWindow.IsEmpty())
            MakeEmpty(format);
    }

    /// A few rows of the mask at a time.
    Ref<Image> Sharp(const MaskOutlines& outlines, const MaskBase& base, const Ref<Image>& picture,
                     Image::Format format, RenderContext& context) const
    {
        Limit(format, base.Covered(format, outlines.Bounds()));
        auto result = MakeRef<Image>(format);
        const MaskRaster raster(outlines, settings_.rule, settings_.falloff, format.dataWindow);
        const int width = result->Width();
        context.ForRows(result->Height(), [&](int first, int last) {
            std::vector<float> mask(std::size_t(width) * std::size_t(last - first));
            raster.Rows(first, last, mask.data(), width, context);
            for (int row = first; row < last; ++row) {
                float* own = mask.data() + std::ptrdiff_t(row - first) * width;
                base.Join(format, format.dataWindow.left, format.dataWindow.top + row, own, width);
                Apply(own, picture.Get(), row, *result);
            }
        });
        return result;
    }

    Ref<Image> Soft(const MaskOutlines& outlines, const MaskBase& base, double deviation,
                    const Ref<Image>& picture, Image::Format format, RenderContext& context) const
    {
        const double deviationY = deviation * format.pixelAspect;
        const auto reach = [](double by) { return int(std::ceil(by * wideBlur)) + blurPasses; };
        AlphaPlane plane;
        plane.window = Shared(outlines.Bounds(),
                              format.dataWindow.Widened(reach(deviation), reach(deviationY)));
        if (plane.window.IsEmpty())
            return Sharp({}, base, picture, format, context);
        context.SetPart(0.0, 0.3);
        plane.rows = PlaneRows(plane.window);
        const MaskRaster raster(outlines, settings_.rule, settings_.falloff, plane.window);
        context.ForRows(plane.window.Height(), [&](int first, int last) {
            raster.Rows(first, last, plane.rows->Row(first),
                        std::ptrdiff_t(plane.rows->Width()) * 4, context);
        });
        plane = Blurred(plane, {deviation, deviationY, blurPasses, false}, context, 0.3, 0.8);
        if (!plane.rows)
            return {};
        Limit(format, base.Covered(format, plane.window));
        auto result = MakeRef<Image>(format);
        context.SetPart(0.8, 1.0);
        context.ForRows(result->Height(), [&](int first, int last) {
            std::vector<float> own(std::size_t(result->Width()));
            for (int row = first; row < last; ++row) {
                const int y = format.dataWindow.top + row;
                CopyRow(plane, y, format.dataWindow.left, own);
                base.Join(format, format.dataWindow.left, y, own.data(), result->Width());
                Apply(own.data(), picture.Get(), row, *result);
            }
        });
        return result;
    }

    /// A row of the plane from column `left` of the image on; 0 beyond it.
    static void CopyRow(const AlphaPlane& plane, int y, int left, std::vector<float>& to)
    {
        std::fill(to.begin(), to.end(), 0.0f);
        if (y < plane.window.top || y >= plane.window.bottom)
            return;
        const int from = std::max(left, plane.window.left);
        const int end = std::min(left + int(to.size()), plane.window.right);
        if (from < end)
            std::copy_n(plane.Row(y - plane.window.top) + (from - plane.window.left), end - from,
                        to.begin() + (from - left));
    }

    float Strength(float mask) const
    {
        const float held = std::clamp(mask, 0.0f, 1.0f);
        return float(settings_.level) * (settings_.inverted ? 1.0f - held : held);
    }

    /// Makes a row of the result with as many values of the mask.
    void Apply(const float* mask, const Image* picture, int row, Image& result) const
    {
        const MxRect& window = result.GetFormat().dataWindow;
        const float* from = picture ? PixelOf(*picture, window.left, window.top + row) : nullptr;
        float* to = result.Row(row);
        for (int x = window.left; x < window.right; ++x, to += 4) {
            const float strength = Strength(mask[x - window.left]);
            for (std::size_t i = 0; i < 4; ++i) {
                // What is cut away is gone, even what is infinite or not a number.
                to[i] = !from ? strength : strength > 0.0f ? from[i] * strength : 0.0f;
            }
            from += from ? 4 : 0;
        }
    }

    static const float* PixelOf(const Image& image, int x, int y)
    {
        const MxRect& window = image.GetFormat().dataWindow;
        return image.Row(y - window.top) + std::ptrdiff_t(x - window.left) * 4;
    }

    MaskSettings settings_;
};

double within(double value, double most)
{
    return value > 0.0 ? std::min(value, most) : 0.0;
}

void addShapes(Operator& tool, const char* dataType)
{
    tool.AddInput("Polyline", {{IAS_Name, "Polygon"},
                               {IAS_DataType, dataType},
                               {IAS_Overlay, CLSID_PreviewControl_Polyline},
                               {IA_OverlayIndex, 0},
                               {PLC_Animated, true},
                               {PLC_CanPublishPoints, true},
                               {PLCID_InPolyLine2, "Polyline2"},
                               {PLCID_Center, "Center"},
                               {PLCID_Angle, "Angle"},
                               {PLCID_Size, "Size"}});
    tool.AddInput("Polyline2", {{IAS_Name, "Outer Polygon"},
                                {IAS_DataType, dataType},
                                {IAS_OverlayWith, "Polyline"},
                                {IA_OverlayIndex, 1}});
}

void addPlacement(Operator& tool)
{
    const auto centred = [](double centre) {
        return TagList{{IC_Centred, true}, {ICD_Centre, centre}};
    };
    AddPoint(tool, {"Center", "Center", 0.5, 0.5,
                    "Where the shape's middle comes to, as a fraction of the image's width and "
                    "height; 0, 0 is the bottom left"});
    TagList angle = centred(0.0);
    angle.Add(ICD_Snap, 90.0);
    AddSlider(tool,
              {"Angle", "Angle", -180.0, 180.0, 0.0,
               "Turns the shape about its middle; degrees, counterclockwise"},
              angle);
    TagList size = centred(1.0);
    size.Add(IAD_Minimum, 0.0);
    AddSlider(tool,
              {"Size", "Size", 0.0, 5.0, 1.0, "Scales the shape about its middle; 1 is as it is"},
              size);
    tool.AddInput("FrameAspect", {{IAS_Name, "Frame Aspect"},
                                  {IAS_DataType, CLSID_DataType_Number},
                                  {IAD_Default, normalAspect},
                                  {IAD_Minimum, 0.01},
                                  {IAD_Maximum, 100.0}});
}

} // namespace

PolygonMask::PolygonMask(const Registry* record) : PolygonMask(record, CLSID_DataType_Polyline) {}

PolygonMask::PolygonMask(const Registry* record, const char* dataType) : Operator(record)
{
    AddImageInput(*this);
    addShapes(*this, dataType);
    AddChoice(*this, "Apply", "Apply", "Cuts the picture out, or gives the mask as white and alpha",
              {"Cut the picture", "Mask only"}, int(MaskUse::Cut));
    AddInput("Base", {{IAS_Name, "Base"},
                      {IAS_Help, "The mask that this one lies on and joins: another tool's alpha"},
                      {IAS_Control, CLSID_InputControl_Image},
                      {IAS_DataType, CLSID_DataType_Image}});
    AddChoice(*this, "Combine", "Combine",
              "How the shape joins the mask connected to Base; it needs one to do anything",
              {"Add", "Subtract", "Intersect", "Difference"}, int(MaskCombine::Add));
    AddSlider(*this,
              {"Level", "Level", 0.0, 1.0, 1.0, "How much is left of the picture in the mask"},
              {{IAD_Minimum, 0.0}, {IAD_Maximum, 1.0}});
    AddSlider(*this,
              {"SoftEdge", "Soft Edge", 0.0, 100.0, 0.0,
               "Blurs the mask on both sides of its edge, in full-resolution pixels"},
              {{IAD_Minimum, 0.0}, {IAD_Maximum, softest}, {ICD_Gamma, 2.0}});
    AddFlag(*this, "Invert", "Invert", "Keeps what lies outside the shape", false);
    AddChoice(*this, "FillRule", "Fill Rule",
              "What is inside where the shape crosses itself: all of it, or every other part",
              {"Non-zero", "Even-odd"}, int(FillRule::NonZero));
    AddChoice(*this, "Falloff", "Falloff", "How the mask fades out to the outer polygon",
              {"Linear", "Smooth"}, int(Falloff::Linear));
    addPlacement(*this);
}

BSplineMask::BSplineMask(const Registry* record)
    : PolygonMask(record, CLSID_DataType_BSplinePolyline)
{
}

std::unique_ptr<ToolProcess> PolygonMask::Prepare(double time) const
{
    const Ref<PolyLine> inner = ResolvedShape(*FindInput("Polyline"), time);
    const Ref<PolyLine> outer = ResolvedShape(*FindInput("Polyline2"), time);
    MaskSettings settings;
    settings.shape = MaskShape::From(inner.Get(), outer.Get());
    settings.shape.placement = PlacementOf(*FindInput("Polyline"), time);
    settings.rule = FillRule(std::clamp(WholeAt(*this, "FillRule", time), 0, 1));
    settings.falloff = Falloff(std::clamp(WholeAt(*this, "Falloff", time), 0, 1));
    settings.softEdge = within(NumberAt(*this, "SoftEdge", time), softest);
    settings.level = within(NumberAt(*this, "Level", time), 1.0);
    settings.inverted = WholeAt(*this, "Invert", time) != 0;
    settings.use = MaskUse(std::clamp(WholeAt(*this, "Apply", time), 0, 1));
    settings.combine = MaskCombine(std::clamp(WholeAt(*this, "Combine", time), 0, 3));
    settings.hasBase = HasBase();
    return std::make_unique<MaskProcess>(std::move(settings));
}

bool PolygonMask::HasBase() const
{
    const Input& base = *FindInput("Base");
    const Operator* source = base.GetSource();
    const Operator* feed = source && GetDoc() ? GetDoc()->FeedOf(base) : source;
    return feed && (feed == source || dynamic_cast<const PolygonMask*>(feed));
}

ShapePlacement PolygonMask::PlacementOf(const Input&, double time) const
{
    const QPointF center = PointAt(*this, "Center", time);
    ShapePlacement placement;
    placement.center = {center.x(), center.y()};
    placement.angle = NumberAt(*this, "Angle", time);
    placement.size = NumberAt(*this, "Size", time);
    placement.heightsPerWidth = 1.0 / std::max(NumberAt(*this, "FrameAspect", time), 0.01);
    return placement;
}

void PolygonMask::FitTo(const Image::Format& format)
{
    const MxRect& frame = format.displayWindow;
    if (frame.IsEmpty())
        return;
    Input* aspect = FindInput("FrameAspect");
    Input::State state = aspect->GetState();
    state.value = MakeRef<Number>(frame.Width() * format.pixelAspect / frame.Height());
    aspect->RestoreInputState(state);
}

} // namespace Marlox
