#pragma once

#include "controls/viewer/PointRules.h"
#include "framework/SecondInput.h"

namespace Marlox {

// The point that the line comes from, image coordinates, while no input supplies it.
inline constexpr u32 PCD_SetPrevPointX = 0x20058000;
inline constexpr u32 PCD_SetPrevPointY = 0x20058001;
inline constexpr u32 PCID_PrevPoint = 0x80058000; // id of the tool's input that supplies it
inline constexpr u32 PCP_PrevPoint = 0x60058000;  // that Input itself, where no id is given

/// A position: a small square that the user drags or moves with the arrow keys, joined by a line to
/// a previous point where an input supplies one. Its value is the Point input with the overlay
/// index 0. Image coordinates: 0 to 1 across width and height, y upwards; the base offset doesn't
/// move it.
///
/// The mark is 4 x 4 pixels times the view's control scale and is taken within the view's pick
/// radius, in both directions. A drag keeps the distance between cursor and mark and is one undo
/// entry; moves and changes of 0.00001 or less are none. A key moves by one pixel of the picture
/// (see Nudged). A press on the previous point's own overlay leaves this one following its input.
class PointControl final : public PreviewControl {
public:
    PointControl(const Registry* record, const ScriptVal& creator, const TagList& attributes);
    ~PointControl() override;

    std::size_t SizeOf() const override;
    bool SetAttrsTagList(const TagList& tags) override;
    bool CopyAttr(u64 tag, void* out) override;
    bool SetAttrsTagList(Input* input, const TagList& tags) override;
    bool RemoveInput(Input* input, TagList* tags) override;
    void NotifyChanged(Input* input, Parameter* value, TagList* tags) override;
    /// With the overlays of the previous point: what is joined is dragged together.
    void SetActive(int how, TagList* tags) override;
    void GLDrawControls(PreviewInfo* view, TagList* tags) override;
    DragType ControlDown(PreviewInfo* view, const MxPointT<int>& at, TagList* tags) override;
    void ControlMove(PreviewInfo* view, const MxPointT<int>& at, TagList* tags) override;
    bool ControlCommand(PreviewInfo* view, const MxID& command, u64 data, TagList* tags) override;
    bool MarksHover() const override { return false; } // it has one colour
    bool IsDisplaced() const override { return false; }

private:
    template <class Overlay>
    friend class SecondInput;

    void ReadPrevious(const TagList& tags);
    OverlayPoint MarkFrom(const PreviewInfo& view, OverlayPoint pixel) const;
    void Send(OverlayPoint place);

    OverlayPoint position_{0.5, 0.5};
    OverlayPoint previous_{0.5, 0.5};
    DragOffset grab_;
    SecondInput<PointControl> previousInput_{*this};
};

} // namespace Marlox
