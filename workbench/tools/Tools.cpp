#include "workbench/tools/Tools.h"

#include "system/base/Registry.h"
#include "system/shapes/PathModifier.h"
#include "system/viewer/ToolGroup.h"
#include "workbench/tools/Background.h"
#include "workbench/tools/Blur.h"
#include "workbench/tools/BrightnessContrast.h"
#include "workbench/tools/ColorCorrector.h"
#include "workbench/tools/ColorGain.h"
#include "workbench/tools/ColorGradient.h"
#include "workbench/tools/Crop.h"
#include "workbench/tools/DropShadow.h"
#include "workbench/tools/ImageSource.h"
#include "workbench/tools/PictureFitted.h"
#include "workbench/tools/PolygonMask.h"
#include "workbench/tools/Transform.h"

namespace Marlox {

namespace {

template <class Tool>
Object* create(const Registry* record, const ScriptVal&, const TagList&)
{
    return new Tool(record);
}

/// The record of one tool class, with what it points to.
template <class Tool>
struct ToolClass {
    /// With the class id of the overlay that it is edited with, or null.
    ToolClass(const char* classID, const char* name, const char* category,
              const char* overlay = nullptr)
        : info{1, classID, "", category, nullptr},
          tags{{REG_RegInit, &Object::RegInit},  {REG_RegCleanup, &Object::RegCleanup},
               {REG_Kind, u32(ClassKind::Tool)}, {REG_ScriptInfo, static_cast<const void*>(&info)},
               {REG_Create, &create<Tool>},      {REG_DisplayName, name},
               {REG_Category, category},         OverlayPair(overlay)},
          record(classID, tags)
    {
    }

    ScriptInfo info;
    TagPair tags[9]; // ended by an empty one
    Registry record;

private:
    static TagPair OverlayPair(const char* overlay)
    {
        return overlay ? TagPair{REG_Overlay, overlay} : TagPair{};
    }
};

constexpr char polyLineOverlay[] = "PolylineControl";

/// Measures lengths and angles as the picture on view has them.
class FittedPath final : public PathModifier, public PictureFitted {
public:
    using PathModifier::PathModifier;
    void FitTo(const Image::Format& format) override { TakeAspect(format); }
    std::size_t SizeOf() const override { return sizeof(*this); }
};

} // namespace

void RegisterTools()
{
    static const ToolClass<ImageSource> imageSource("ImageSource", "Image Source", "Input");
    static const ToolClass<Background> background("Background", "Background", "Input");
    static const ToolClass<BrightnessContrast> grade("BrightnessContrast", "Brightness Contrast",
                                                     "Colour");
    static const ToolClass<ColorCorrector> corrector("ColorCorrector", "Colour Corrector", "Colour");
    static const ToolClass<ColorGain> gain("ColorGain", "Colour Gain", "Colour");
    static const ToolClass<Blur> blur("Blur", "Blur", "Filter");
    static const ToolClass<ColorGradient> gradient("ColorGradient", "Gradient", "Input");
    static const ToolClass<DropShadow> shadow("DropShadow", "Drop Shadow", "Filter");
    static const ToolClass<Crop> crop("Crop", "Crop", "Transform");
    static const ToolClass<CropRegion> cropRegion("CropRegion", "Crop Region", "Transform");
    static const ToolClass<Transform> transform("Transform", "Transform", "Transform");
    static const ToolClass<PolygonMask> polygon("PolygonMask", "Polygon Mask", "Mask",
                                                polyLineOverlay);
    static const ToolClass<BSplineMask> spline("BSplineMask", "B-Spline Mask", "Mask",
                                               polyLineOverlay);
    static const ToolClass<FittedPath> path(CLSID_Tool_Path, "Path", "Modifier", polyLineOverlay);
    static const ToolClass<TrackerModifier> tracker(CLSID_Tool_Tracker, "Tracker", "Modifier");
}

} // namespace Marlox
