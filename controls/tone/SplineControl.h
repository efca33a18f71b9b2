#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// Lookup-table curves for the channels of an image.
class SplineControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;

    static bool RegInit(Registry* record);
    static void RegCleanup(Registry* record);

    std::size_t SizeOf() const override;
};

} // namespace Marlox
