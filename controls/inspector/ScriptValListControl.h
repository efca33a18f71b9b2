#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// A list whose entries come from a script value.
class ScriptValListControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
