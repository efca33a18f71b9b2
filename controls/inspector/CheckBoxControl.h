#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// A check box for a number that is 0 or 1.
class CheckBoxControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    std::size_t SizeOf() const override;

protected:
    std::unique_ptr<GenericEditor> MakeEditor(Input& input) override;
};

} // namespace Marlox
