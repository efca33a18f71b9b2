#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// One of several values from a row of buttons. Under its second class id it keeps the id of the
/// button instead of its number.
class MultiButtonControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
