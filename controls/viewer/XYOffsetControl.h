#pragma once

#include "controls/viewer/PointRules.h"
#include "framework/SecondInput.h"

namespace Marlox {

/// The Input whose point is the origin of the offset.
inline constexpr u32 XYOCP_AxisInput = 0x60058000;

/// An offset from an origin: a diagonal cross that the user drags, joined to the origin by a dashed
/// line. Its value are two Number inputs, x with the overlay index 0 and y with 1, in fractions of
/// the image's width and height, y upwards; it has single precision once it was dragged. The origin
/// is the point of a further input, the image's centre without one, and is not changed.
///
/// The cross measures 10 x 10 view pixels, whatever the view's control scale, and is taken within
/// the view's pick radius, in both directions. A drag is one undo entry, "Control Change"; moves
/// and changes of 0.00001 or less are none. A press on the origin's own overlay takes the cross
/// along, as its offset stays.
class XYOffsetControl final : public PreviewControl {
public:
    using PreviewControl::PreviewControl;
    ~XYOffsetControl() override;

    std::size_t SizeOf() const override;
    bool SetAttrsTagList(const TagList& tags) override;
    bool CopyAttr(u64 tag, void* out) override;
    bool SetAttrsTagList(Input* input, const TagList& tags) override;
    bool RemoveInput(Input* input, TagList* tags) override;
    void NotifyChanged(Input* input, Parameter* value, TagList* tags) override;
    void GLDrawControls(PreviewInfo* view, TagList* tags) override;
    DragType ControlDown(PreviewInfo* view, const MxPointT<int>& at, TagList* tags) override;
    void ControlMove(PreviewInfo* view, const MxPointT<int>& at, TagList* tags) override;
    void ControlUp(PreviewInfo* view, const MxPointT<int>& at, TagList* tags) override;
    bool ControlCommand(PreviewInfo* view, const MxID& command, u64 data, TagList* tags) override;
    bool MarksHover() const override { return false; } // it has one colour

private:
    template <class Overlay>
    friend class SecondInput;

    bool Store(const Input* input, const Parameter* value);
    DragOffset MarkFromCursor(const PreviewInfo& view) const;
    void Send(OverlayPoint offset);
    bool HitTest(PreviewInfo& view, const TagList* tags) const;

    OverlayPoint offset_;
    OverlayPoint origin_{0.5, 0.5};
    DragOffset grab_; // whole pixels
    bool undoBegun_ = false;
    SecondInput<XYOffsetControl> axis_{*this};
};

} // namespace Marlox
