#pragma once

namespace Marlox {

struct Options;

/// Renders the frames that `options` names into image files, one after the other, each on all
/// cores. A line for each on standard output, or its error on standard error. Returns the exit
/// status: 0 when all frames were written, 1 when some or all failed, 2 when the request makes no
/// sense.
int RenderFrames(const Options& options);

} // namespace Marlox
