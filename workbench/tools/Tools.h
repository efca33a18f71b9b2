#pragma once

namespace Marlox {

/// Registers the workbench's tools with the host (ClassKind::Tool): "ImageSource",
/// "Background", "ColorGradient", "BrightnessContrast", "ColorCorrector", "ColorGain", "Blur",
/// "DropShadow", "Crop", "CropRegion", "Transform", "PolygonMask", "BSplineMask", "Path", "Tracker".
/// Call once at start-up; they stay until the end.
void RegisterTools();

} // namespace Marlox
