#pragma once

/// The texts of the host's class ids, the base of every document and script that names a class, and
/// the names of the shared creation maps.
namespace Marlox {

inline constexpr char CLSID_InputControl_Checkbox[] = "CheckboxControl";
inline constexpr char CLSID_InputControl_Combo[] = "ComboControl";
inline constexpr char CLSID_InputControl_ComboID[] = "ComboIDControl";
inline constexpr char CLSID_InputControl_Label[] = "LabelControl";
inline constexpr char CLSID_InputControl_Nest[] = "NestControl";
inline constexpr char CLSID_InputControl_Separator[] = "SeparatorControl";
inline constexpr char CLSID_InputControl_Spacer[] = "SpacerControl";
inline constexpr char CLSID_InputControl_List[] = "ListControl";
inline constexpr char CLSID_InputControl_ListID[] = "ListIDControl";
inline constexpr char CLSID_InputControl_MultiButton[] = "MultiButtonControl";
inline constexpr char CLSID_InputControl_MultiButtonID[] = "MultiButtonIDControl";
inline constexpr char CLSID_InputControl_Offset[] = "OffsetControl"; // a point as two numbers
inline constexpr char CLSID_InputControl_Slider[] = "SliderControl";
inline constexpr char CLSID_PreviewControl_Angle[] = "AngleControl";
inline constexpr char CLSID_PreviewControl_Crop[] = "CropControl";

inline constexpr char CLSID_DataType_Number[] = "Number";
inline constexpr char CLSID_DataType_Point[] = "Point";
inline constexpr char CLSID_DataType_Text[] = "Text";
inline constexpr char CLSID_DataType_Image[] = "Image";
inline constexpr char CLSID_DataType_Mask[] = "Mask";
inline constexpr char CLSID_DataType_TransformMatrix[] = "TransformMatrix";
inline constexpr char CLSID_DataType_Polyline[] = "Polyline";
inline constexpr char CLSID_DataType_BSplinePolyline[] = "BSplinePolyline";
inline constexpr char CLSID_DataType_CardinalSplinePolyline[] = "CardinalSplinePolyline";
inline constexpr char CLSID_DataType_Mesh[] = "Mesh";
inline constexpr char CLSID_DataType_ColorCurves[] = "ColorCurves";

/// Shared maps of tag names that the script call "Create" of every control understands besides the
/// control's own.
inline constexpr char CreationMap_InputControl[] = "InputControl.Create";
inline constexpr char CreationMap_PreviewControl[] = "PreviewControl.Create";

} // namespace Marlox
