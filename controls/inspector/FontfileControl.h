#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// A font, chosen from the installed ones.
class FontfileControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;

    static void RegCleanup(Registry* record);

    std::size_t SizeOf() const override;
};

} // namespace Marlox
