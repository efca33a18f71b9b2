#pragma once

#include "framework/OneInputControl.h"
#include "system/color/ColorCurves.h"

#include <array>
#include <string>

namespace Marlox {

class CustomColorRanges;
class ElideLabel;

// Creation tags of the ranges control's own.
inline constexpr u32 CRCC_ShowMidtones = 0x10050000; // the midtones show; unless given they do
inline constexpr u32 CRCCS_LowName = 0x30050000;     // what the shadows are called,
inline constexpr u32 CRCCS_MidName = 0x30050001;     // the midtones
inline constexpr u32 CRCCS_HighName = 0x30050002;    // and the highlights

/// The inspector control of tonal ranges: its name, and the drawn curves of the one ColorCurves
/// input with the names of the ranges.
///
/// One drag of a node, or what keys do until they are let go, is one undo entry "Adjust Ranges".
class ColorRangesControl final : public OneInputControl {
    Q_OBJECT
public:
    ColorRangesControl(const Registry* record, const ScriptVal& creator, const TagList& attributes);
    ~ColorRangesControl() override;

    std::size_t SizeOf() const override { return sizeof(*this); }
    bool CopyAttr(u64 tag, void* out) override;
    bool Open(ControlWnd* window, MxRect& rect, TagList* tags) override;
    void Close(TagList* tags) override;

public slots:
    /// The user moved a node.
    void OnRanges(int node);

protected:
    bool Takes(const Input& input) const override;
    const char* LayoutName() const override;
    void ReadTags(const TagList& tags) override;
    void Show() override;

private:
    ElideLabel* label_;
    CustomColorRanges* ranges_;
    std::array<std::string, 3> names_; // shadows, midtones, highlights

    bool showMidtones_ = true;
    bool nameHidden_ = false;
    bool editDisabled_ = false;
};

} // namespace Marlox
