#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// Text of one or several lines, with highlighting of scripts and expressions.
class TextEditControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
