#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// One of several texts from a list. Under its second class id it keeps the id of the entry instead
/// of its number.
class ListControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
