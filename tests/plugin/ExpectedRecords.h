#pragma once

#include "system/base/HostClassIds.h"
#include "system/base/Types.h"

/// What the host must find registered, written down independently of the library's declarations.
namespace Marlox::Expected {

enum class Family { Inspector, Overlay };
using enum Family;

struct FurtherTag {
    u32 tag = 0;
    int number = 0;
    const char* text = nullptr; // null: `number` counts
};

struct Record {
    const char* cls; // C++ class, which is the C type name of scripts
    const char* id;
    const char* parent;
    Family family;
    const char* scriptType; // null: none
    FurtherTag further[3] = {};
    bool ownInit = false; // instead of Object's
    bool ownCleanup = false;

    /// Rows that scripts can create by a table: the plain ones with a script type.
    bool HasMapper() const { return scriptType && !IsVariant(); }
    bool IsVariant() const
    {
        return std::string_view(parent) != "InputControl" &&
               std::string_view(parent) != "PreviewControl" &&
               std::string_view(parent) != "OverlayControl" &&
               std::string_view(parent) != "TransformControl";
    }
};

inline constexpr const char* I = "InputControl";
inline constexpr const char* P = "PreviewControl";

/// In the order of registration: by class name, variants behind their plain id.
inline constexpr Record records[] = {
    {"AngleControl", "AngleControl", P, Overlay, "AngleControl", {}, false, true},
    {"ButtonControl", "ButtonControl", I, Inspector, "ButtonControl"},
    {"CameraControl",
     "CameraControl",
     "TransformControl",
     Overlay,
     "CameraControl",
     {{0x10000064, 1}, {0x10000065, 1}}},
    {"CheckBoxControl", CLSID_InputControl_Checkbox, I, Inspector, "CheckboxControl"},
    {"CheckListControl", "CheckListControl", I, Inspector, "CheckListControl"},
    {"ClipControl", "ClipControl", I, Inspector, "ClipControl"},
    {"ColorControl", "ColorControl", I, Inspector, "ColorControl"},
    {"ColorGamutControl", "ColorGamutControl", I, Inspector, "ColorGamutControl"},
    {"ColorRangesControl", "ColorRangesControl", I, Inspector, "ColorRangesControl"},
    {"ColorSuppressionControl", "ColorSuppressionControl", I, Inspector, "ColorSuppressionControl"},
    {"ColorWheelControl", "ColorWheelControl", I, Inspector, "ColorWheelControl"},
    {"ComboControl", CLSID_InputControl_Combo, I, Inspector, "ComboControl"},
    {"ComboControl", CLSID_InputControl_ComboID, CLSID_InputControl_Combo, Inspector,
     "ComboIDControl"},
    {"CropControl", CLSID_PreviewControl_Crop, P, Overlay, nullptr},
    {"CrosshairControl", "CrosshairControl", P, Overlay, "CrosshairControl"},
    {"CustomFilterControl", "CustomFilterControl", I, Inspector, "CustomFilterControl"},
    {"EllipseControl", "EllipseControl", P, Overlay, "EllipseControl"},
    {"FileControl", "FileControl", I, Inspector, "FileControl"},
    {"FontfileControl", "FontFileControl", I, Inspector, "FontFileControl", {}, false, true},
    {"GammaControl", "GammaControl", I, Inspector, "GammaControl"},
    {"GradientControl", "GradientControl", I, Inspector, "GradientControl"},
    {"HistogramControl", "HistogramControl", I, Inspector, "HistogramControl"},
    {"ImageControl", "ImageControl", I, Inspector, "ImageControl"},
    {"ImgOverlayControl",
     "ImgOverlayControl",
     P,
     Overlay,
     "ImageOverlayControl",
     {{0x10000064, 1}}},
    {"LabelControl", CLSID_InputControl_Label, I, Inspector, "LabelControl"},
    {"LabelControl", CLSID_InputControl_Nest, CLSID_InputControl_Label, Inspector, nullptr},
    {"LabelControl", CLSID_InputControl_Separator, CLSID_InputControl_Label, Inspector, nullptr},
    {"LabelControl", CLSID_InputControl_Spacer, CLSID_InputControl_Label, Inspector, nullptr},
    {"LevelsControl", "LevelsControl", I, Inspector, "LevelsControl"},
    {"LevelsOutputControl", "LevelsOutputControl", I, Inspector, "LevelsOutputControl"},
    {"LightControl",
     "LightControl",
     "TransformControl",
     Overlay,
     "LightControl",
     {{0x10000065, 1}}},
    {"ListControl", CLSID_InputControl_List, I, Inspector, "ListControl"},
    {"ListControl", CLSID_InputControl_ListID, CLSID_InputControl_List, Inspector, "ListIDControl"},
    {"LogControl", "LogControl", I, Inspector, "LogControl"},
    {"MeshControl", "MeshControl", P, Overlay, "MeshControl", {{0x10000064, 1}}},
    {"MultiButtonControl", CLSID_InputControl_MultiButton, I, Inspector, "MultiButtonControl"},
    {"MultiButtonControl", CLSID_InputControl_MultiButtonID, CLSID_InputControl_MultiButton,
     Inspector, "MultiButtonIDControl"},
    {"ObloidControl", "CubeControl", P, Overlay, "ObloidControl"},
    {"OffsetControl", "OffsetControl", I, Inspector, "OffsetControl"},
    {"PatternControl", "PatternControl", I, Inspector, "PatternControl"},
    {"PointControl", "PointControl", P, Overlay, "PointControl"},
    {"PolyLineControl", "PolylineControl", P, Overlay, "PolylineControl"},
    {"PositionerControl", "PositionerControl", P, Overlay, "PositionerControl"},
    {"RangeControl", "RangeControl", I, Inspector, "RangeControl"},
    {"RectangleControl", "RectangleControl", P, Overlay, "RectangleControl"},
    {"ScrewControl", "ScrewControl", I, Inspector, "ScrewControl"},
    {"ScriptValListControl", "ScriptValListControl", I, Inspector, "ScriptValListControl"},
    {"SliderControl", CLSID_InputControl_Slider, I, Inspector, "SliderControl"},
    {"SliderOverlay",
     "SliderOverlay",
     "OverlayControl",
     Overlay,
     nullptr,
     {{0x10000064, 1}, {0x60000004, 0, "OverlayControl"}}},
    {"SplineControl",
     "SplineControl",
     I,
     Inspector,
     "SplineControl",
     {{0x10000051, 1}, {0x30000012, 0, "Spline Control"}, {0x30000013, 0, "Controls\\Spline"}},
     true,
     true},
    {"TextEditControl", "TextEditControl", I, Inspector, "TextEditControl"},
    {"TrackerControl", "TrackerControl", P, Overlay, "TrackerControl"},
    {"TransformControl", "TransformControl", P, Overlay, "TransformControl", {{0x10000065, 1}}},
    {"XYOffsetControl", "XYOffsetControl", P, Overlay, "XYOffsetControl"},
};

} // namespace Marlox::Expected
