#pragma once

namespace Marlox {

// The preferences of shapes, by name.

// Onion skins: what a new shape's settings are, and what the dialog last was set to.
inline constexpr char PREF_OnionSkinAnchor[] = "Polyline.OnionSkin.Anchor";            // boolean
inline constexpr char PREF_OnionSkinPointPlot[] = "Polyline.OnionSkin.PointPlot";      // boolean
inline constexpr char PREF_OnionSkinShowHull[] = "Polyline.OnionSkin.ShowHull";        // boolean
inline constexpr char PREF_OnionSkinClickSetCT[] = "Polyline.OnionSkin.ClickSetsTime"; // boolean
inline constexpr char PREF_OnionSkinKeySkin[] = "Polyline.OnionSkin.KeySkin";          // boolean
inline constexpr char PREF_DefOnionSkinRange[] = "Polyline.OnionSkin.Range";           // 1 to 3
inline constexpr char PREF_DefOnionSkinCount[] = "Polyline.OnionSkin.Count";           // whole
inline constexpr char PREF_DefOnionSkinStep[] = "Polyline.OnionSkin.Step";             // frames

// Where the list of keys stands on the screen, pixels.
inline constexpr char PREF_PolyKeyListDlgLeft[] = "Dialogs.PolyKeyList.Left";
inline constexpr char PREF_PolyKeyListDlgTop[] = "Dialogs.PolyKeyList.Top";

// And the point editor.
inline constexpr char PREF_PolyPointDlgLeft[] = "Dialogs.PolyPoint.Left";
inline constexpr char PREF_PolyPointDlgTop[] = "Dialogs.PolyPoint.Top";

// The draw mode after a shape was closed: "InsertAndModify", or another text for Modify Only.
inline constexpr char PREF_PolyAfterCloseMode[] = "Polyline.AfterCloseMode";
// What files of shapes get: 1 writes the header of motion files and the markers of end points.
inline constexpr char PREF_PolyExportOption[] = "Polyline.ExportOption";

} // namespace Marlox
