#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// The tool that an image input is connected to.
class ImageControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
