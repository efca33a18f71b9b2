#pragma once

#include "system/values/Image.h"

#include <functional>

#include <QString>

/// The pictures that come with the workbench, painted by formulas.
namespace Marlox::Samples {

inline constexpr int sequenceFirst = 1;
inline constexpr int sequenceLast = 48;

/// A lake at dusk, 1280 x 720: sun, lamps and lit windows far above 1.
Ref<Image> DuskLandscape();
/// Ramps, steps, hues and patches from far below to far above white, 1280 x 720; parts of it are
/// transparent and some values negative.
Ref<Image> Chart();
/// A balloon that drifts over hills from left to right, 640 x 360, frames 1 to 48.
Ref<Image> BalloonFrame(int frame);

/// Writes all pictures and the sample documents into `folder`, leaving alone what is there already
/// unless `anew`. Tells each file as it is written. False and `error` on failure.
bool WriteAll(const QString& folder, bool anew, const std::function<void(const QString&)>& tell,
              QString* error);

inline constexpr char documentName[] = "dusk.marlox";
/// A picture cropped, on a curved path over a backdrop, with a shadow: values to drag in the
/// viewer.
inline constexpr char overlaysName[] = "overlays.marlox";
inline constexpr char gradeName[] = "grade.marlox"; // the lake with its colours corrected
inline constexpr char sequencePattern[] = "balloon.####.exr";

/// The folder with the samples: beside the program in a build, else where they are installed; empty
/// if there is none.
QString Folder();

} // namespace Marlox::Samples
