#pragma once

#include "system/base/DeclarationList.h"
#include "system/base/MxID.h"
#include "system/base/Types.h"

#include <vector>

namespace Marlox {

/// In the record of a tool: the class id of the overlay that it is mainly edited with. Tools of one
/// such overlay are listed together where tools are added (ToolGroup::Label).
inline constexpr u32 REG_Overlay = 0x30000014;

/// A named group of tools that an overlay brings into the viewer: its toolbar keeps the buttons of
/// a group together, between lines (ToolbarButton::group). Declared as a static object while a
/// library loads, withdrawn when it is unloaded. The texts must outlive it (string literals).
/// User-interface thread only.
class MARLOXSYSTEM_EXPORT ToolGroup {
public:
    /// Of an overlay's groups the first has the label.
    ToolGroup(const char* name, const char* overlayClass, const char* label = nullptr) noexcept;
    ~ToolGroup();
    ToolGroup(const ToolGroup&) = delete;
    ToolGroup& operator=(const ToolGroup&) = delete;

    const char* Name() const { return name_; }
    MxID OverlayClass() const { return overlayClass_; }
    /// Under which the tools of the overlay are added; null: under none of their own.
    const char* Label() const { return label_; }

    /// All present declarations in the order they were made.
    static std::vector<const ToolGroup*> Declared();
    /// Of the groups of an overlay's class; null: none.
    static const char* LabelOf(const MxID& overlayClass);

private:
    const char* name_;
    const char* overlayClass_;
    const char* label_;
    friend class DeclarationList<ToolGroup>;
    DeclarationList<ToolGroup>::Links links_;
};

} // namespace Marlox
