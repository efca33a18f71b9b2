#pragma once

#include "system/values/Image.h"

namespace Marlox {

/// A tool with values in pixels, which a new one cannot know before it has seen its picture.
class PictureFitted {
public:
    virtual ~PictureFitted() = default;
    /// Sets the values of a tool just made for pictures of this format. Records nothing: it belongs
    /// to the tool's making.
    virtual void FitTo(const Image::Format& format) = 0;
};

} // namespace Marlox
