#pragma once

#include "framework/GenericPreviewControl.h"

namespace Marlox {

/// An angle about a centre, with a handle at a radius.
class AngleControl final : public GenericPreviewControl {
public:
    using GenericPreviewControl::GenericPreviewControl;

    static void RegCleanup(Registry* record);

    std::size_t SizeOf() const override;
};

} // namespace Marlox
