#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// A file name with a button to choose it.
class FileControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
