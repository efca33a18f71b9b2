#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// The tool that an image input is connected to, in a combo box of those that it can be connected
/// to. A tool that would get its own picture so is left out.
class ImageControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    std::size_t SizeOf() const override;

protected:
    std::unique_ptr<GenericEditor> MakeEditor(Input& input) override;
};

} // namespace Marlox
