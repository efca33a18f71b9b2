#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// A list whose entries are switched on and off.
class CheckListControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
