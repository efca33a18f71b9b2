#pragma once

#include "controls/viewer/CrosshairModel.h"
#include "controls/viewer/MarkFade.h"
#include "controls/viewer/PointRules.h"
#include "system/viewer/PreviewControl.h"

namespace Marlox {

// Attributes of the crosshair.
inline constexpr u32 CHC_Style = 0x10058000; // as CrosshairStyle
// What a crosshair in follow mode follows: where that is now, and where it was at the press.
inline constexpr u32 CHCD_FollowX = 0x20058000;
inline constexpr u32 CHCD_FollowY = 0x20058001;
inline constexpr u32 CHCD_FollowOrigX = 0x20058002;
inline constexpr u32 CHCD_FollowOrigY = 0x20058003;
// Where the mark was drawn last, without the base offset; read only.
inline constexpr u32 CHCD_CurrentX = 0x20058004;
inline constexpr u32 CHCD_CurrentY = 0x20058005;

/// A position, marked in the viewer by a cross with two arms, a diagonal cross, a small square or a
/// small circle (CHC_Style 0 to 3), and dragged there. It writes one Point (Z = 0) into the input
/// with overlay index 0: normalised image coordinates, y up, less the base offset, by which the
/// mark is displaced.
///
/// Taken at its middle, within the view's pick radius in x and in y, it moves freely; a normal
/// cross taken by an arm, up to the tip of the arrow 23 pixels of the mark away, moves along that
/// axis alone. While it does, a mark stays where the drag began, and the view's logical cursor
/// comes along on the axis. The arrow keys move it by one pixel of the picture's width, ten times
/// that with Shift and a tenth with Ctrl. Changes of 1e-5 or less are neither sent nor drawn.
///
/// What the pointer is on stands out, and fades when it leaves (MarkFade). With
/// PC_HideWhileDragging nothing is drawn during a drag of the crosshair, its motion path included:
/// the picture can be judged.
///
/// With PC_Follow it goes along when another overlay is dragged: it moves by as much as the point
/// that this one writes has moved since the press, on both axes. Where the dragged input is no
/// point, it moves by what a host tells: CHCD_FollowX and Y less CHCD_FollowOrigX and Y. At the
/// release it sends itself PC_FollowEnded, which ends its undo group.
class CrosshairControl final : public PreviewControl {
public:
    CrosshairControl(const Registry* record, const ScriptVal& creator, const TagList& attributes);

    std::size_t SizeOf() const override;
    bool SetAttrsTagList(const TagList& tags) override;
    /// CHCD_CurrentX and Y, the follow values, the drag offset.
    bool CopyAttr(u64 tag, void* out) override;

    bool SetAttrsTagList(Input* input, const TagList& tags) override;
    void NotifyChanged(Input* input, Parameter* value, TagList* tags) override;
    void GLDrawControls(PreviewInfo* view, TagList* tags) override;
    DragType ControlDown(PreviewInfo* view, const MxPointT<int>& at, TagList* tags) override;
    void ControlMove(PreviewInfo* view, const MxPointT<int>& at, TagList* tags) override;
    void ControlUp(PreviewInfo* view, const MxPointT<int>& at, TagList* tags) override;
    bool ControlCommand(PreviewInfo* view, const MxID& command, u64 data, TagList* tags) override;

private:
    void ReadStyle(const TagList& tags);
    TagList TakeFollow(const TagList& tags);
    OverlayPoint InView(const PreviewInfo& view, OverlayPoint position) const;
    OverlayPoint OffsetFrom(const PreviewInfo& view, OverlayPoint cursor) const;
    void DrawMark(OverlayPainter& painter, double brightness) const;
    void DrawArm(OverlayPainter& painter, bool alongY, double brightness) const;
    void DrawOrigin(OverlayPainter& painter) const;
    void Grab(const PreviewInfo& view, const MxPointT<int>& at, const TagList* tags);
    void StartFollowing(const PreviewInfo& view);
    void Follow(const PreviewInfo& view, TagList* tags);
    void Drag(PreviewInfo& view, TagList* tags);
    void Send(OverlayPoint position, TagList* tags);
    bool HitTest(PreviewInfo& view, const TagList* tags);
    CrosshairAxes Grabbed() const { return {axisX_, axisY_}; }

    CrosshairStyle style_ = CrosshairStyle::NormalCross;
    OverlayPoint position_{0.5, 0.5};  // last received; image coordinates, like all but the grabs
    OverlayPoint displayed_{0.5, 0.5}; // at the last drawing
    OverlayPoint origin_;              // position when the drag began
    OverlayPoint follow_;
    OverlayPoint followOrigin_;
    DragOffset grab_;
    OverlayPoint firstGrab_; // that of the first press with Alt of a drag; (0, 0): none
    CrosshairAxes highlight_;
    MarkFade fade_;
};

} // namespace Marlox
