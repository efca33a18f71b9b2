#pragma once

#include "system/base/Types.h"

/// The host-wide tags: attributes of inputs (group 003) and creation attributes that the host reads
/// for every control (group 004), with the names that creation tables in scripts and documents use.
/// The prefix's letters tell the value: IA integer or flag, IAD double, IAS string, IAID class id;
/// IC, ICD, ICS the same for controls.
namespace Marlox {

// Group 003: input attributes.
inline constexpr u32 IA_ControlIndex = 0x10030007; // index of the input within its control, from 0
inline constexpr u32 IA_OverlayIndex = 0x10030009; // the same within its viewer overlay
inline constexpr u32 IA_Integer = 0x1003000c;      // whole numbers only
inline constexpr u32 IA_Passive = 0x1003000d;      // changes neither record nor render
inline constexpr u32 IA_Animatable = 0x1003000e;   // may carry keys; set unless given
inline constexpr u32 IA_ReadOnly = 0x1003000f;
inline constexpr u32 IA_OverlayStays = 0x10030010; // overlay shows while another tool is selected
inline constexpr u32 IA_Stepped = 0x10030011;      // new keys hold their value until the next
inline constexpr u32 IA_Computed = 0x10030012;     // worked out by its tool; read-only and passive
inline constexpr u32 IA_Published = 0x10030013;    // came to its tool later, for a shape's point
/// Which component the input holds, of controls that edit several together: 0 red, 1 green, 2 blue,
/// 3 alpha and so on of a colour.
inline constexpr u32 IA_Channel = 0x10030014;
/// Which tonal range it belongs to: 0 master (unless given), 1 low, 2 middle, 3 high.
inline constexpr u32 IA_Range = 0x10030015;
inline constexpr u32 IAD_Minimum = 0x20030000;   // lowest value ever accepted
inline constexpr u32 IAD_Maximum = 0x20030001;   // highest value ever accepted
inline constexpr u32 IAD_LowScale = 0x20030002;  // value at the low end of a slider
inline constexpr u32 IAD_HighScale = 0x20030003; // value at the high end of a slider
inline constexpr u32 IAD_Default = 0x20030004;   // value of a new input, restored by Reset
inline constexpr u32 IAD_DefaultX = 0x20030005;  // the same of a Point input, image coordinates
inline constexpr u32 IAD_DefaultY = 0x20030006;
inline constexpr u32 IAS_Default = 0x30030000;     // the same of a Text input
inline constexpr u32 IAS_Name = 0x30030001;        // name shown to people
inline constexpr u32 IAS_Help = 0x30030002;        // one sentence for the tooltip
inline constexpr u32 IAS_Control = 0x30030003;     // class id of the inspector control
inline constexpr u32 IAS_Overlay = 0x30030004;     // class id of the viewer overlay
inline constexpr u32 IAS_DataType = 0x30030005;    // class id of the parameter kind
inline constexpr u32 IAS_SharedWith = 0x30030006;  // input id whose inspector control this joins
inline constexpr u32 IAS_OverlayWith = 0x30030007; // input id whose viewer overlay this joins
/// Input id whose point, less the image's centre (0.5, 0.5), displaces the viewer overlay.
inline constexpr u32 IAS_OverlayOffset = 0x30030008;

// Group 004: control attributes read by the host or by several controls.
inline constexpr u32 IC_EditDisabled = 0x10040003; // the value edit shows but takes no typing
inline constexpr u32 IC_Time = 0x10040006;         // the value is a time: shown as the time code
inline constexpr u32 IC_Centred = 0x10040007;      // split the track at ICD_Centre
inline constexpr u32 IC_KnobStyle = 0x10040008;    // number of the knob's bitmap pair
inline constexpr u32 IC_TabStop = 0x10040009;      // the value edit takes part in tabbing; default
inline constexpr u32 IC_Disabled = 0x1004000a;     // shown, but takes no input
inline constexpr u32 IC_Hidden = 0x1004000b;       // takes no room in the inspector
inline constexpr u32 IC_NoLabel = 0x1004000c;      // the name is not shown
inline constexpr u32 ICD_Gamma = 0x20040005;       // exponent of a slider's track; 1 is linear
inline constexpr u32 ICD_Centre = 0x20040006;      // value at the middle of a centred track
inline constexpr u32 ICD_Step = 0x20040007;        // step of a plain key press
inline constexpr u32 ICD_Snap = 0x20040008;        // further value that a drag snaps to

} // namespace Marlox
