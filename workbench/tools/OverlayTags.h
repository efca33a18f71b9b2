#pragma once

#include "system/base/HostTags.h"

/// The viewer overlays' own attributes of inputs, as their references have them. The numbers of
/// different overlays overlap: a tag means something only to the overlay that the input asks for.
namespace Marlox {

inline constexpr char CLSID_PreviewControl_Point[] = "PointControl";
inline constexpr char CLSID_PreviewControl_Crosshair[] = "CrosshairControl";
inline constexpr char CLSID_PreviewControl_XYOffset[] = "XYOffsetControl";
inline constexpr char CLSID_PreviewControl_Polyline[] = "PolylineControl";

// PointControl
inline constexpr u32 PCID_PrevPoint = 0x80058000; // input id of the point that a line comes from

// CrosshairControl
inline constexpr u32 CHC_Style = 0x10058000; // as CrosshairStyle
enum CrosshairStyle : int { NormalCross = 0, DiagonalCross = 1, Rectangle = 2, Circle = 3 };

// AngleControl
inline constexpr u32 ACID_Center = 0x80058000; // input id of the point that the handle turns about
inline constexpr u32 ACID_Radius = 0x80058001; // input id of its distance from there,
inline constexpr u32 ACD_MinRadius = 0x20058000;   // which is at least this
inline constexpr u32 ACD_RadiusScale = 0x20058001; // and multiplied by that; image widths

// XYOffsetControl
inline constexpr u32 XYOCP_AxisInput = 0x60058000; // the Input* of the point that the offset is to

// PolylineControl
inline constexpr u32 PLC_CanPublishPoints = 0x10058007; // points may feed inputs of the tool
inline constexpr u32 PLC_Animated = 0x1005800c;         // edits make keys
inline constexpr u32 PLCID_Center = 0x80058000; // input ids: the point that the middle comes to,
inline constexpr u32 PLCID_Angle = 0x80058001;  // the angle and
inline constexpr u32 PLCID_Size = 0x80058002;   // the size of the shape as it is shown,
inline constexpr u32 PLCID_InPolyLine2 = 0x80058008; // and the outer polygon

} // namespace Marlox
