#pragma once

#include "controls/viewer/AngleModel.h"
#include "controls/viewer/MarkFade.h"
#include "controls/viewer/PointRules.h"
#include "framework/SecondInput.h"

#include <array>
#include <optional>

namespace Marlox {

// Attributes of the angle.
inline constexpr u32 AC_HandleStyle = 0x10058000; // 0: the ring; else the lever. No script name
inline constexpr u32 ACD_MinRadius = 0x20058000;  // image widths
inline constexpr u32 ACD_RadiusScale = 0x20058001;
// What an angle in follow mode follows: the centre, and how far ahead the other angle is (degrees).
inline constexpr u32 ACD_FollowX = 0x20058002;
inline constexpr u32 ACD_FollowY = 0x20058003;
inline constexpr u32 ACD_FollowAngle = 0x20058004;
inline constexpr u32 ACD_CurrentAngle = 0x20058005; // degrees; read only
// The inputs of the centre and the radius: ids of the tool's inputs, or the inputs themselves.
inline constexpr u32 ACID_Center = 0x80058000;
inline constexpr u32 ACID_Radius = 0x80058001;
inline constexpr u32 ACID_CenterX = 0x80058002;
inline constexpr u32 ACID_CenterY = 0x80058003;
inline constexpr u32 ACID_CenterZ = 0x80058004;
inline constexpr u32 ACP_Center = 0x60058000;
inline constexpr u32 ACP_Radius = 0x60058001;
inline constexpr u32 ACP_CenterX = 0x60058002;
inline constexpr u32 ACP_CenterY = 0x60058003;
inline constexpr u32 ACP_CenterZ = 0x60058004;

/// An angle about a centre, dragged by a handle. It writes one Number into the input with overlay
/// index 0: degrees, anticlockwise from the positive X axis as seen with square pixels, never
/// wrapped, so that two turns add 720. A change of 0.01 degrees or less is not sent, one of 1e-5 or
/// less not drawn.
///
/// The centre (normalised image coordinates, y up; drawn and taken displaced by the base offset) is
/// a Point input, ACID_Center, or two Number inputs, ACID_CenterX and Y; one of these rules its
/// coordinate alone. The handle lies at the radius times ACD_RadiusScale (1 unless given), at least
/// ACD_MinRadius (0): image widths, so that it runs on a true circle. The radius is the Number
/// input ACID_Radius, without one 0.1. A centre-Z input is attached and listened to like the
/// others, for hosts whose tools work in space; nothing here depends on its value. The ids of the
/// attached inputs are read back by the ACID tags.
///
/// The handle is a ring at the end of a dashed line, taken within a circle of the pick radius. With
/// AC_HandleStyle other than 0 it is a lever instead, 50 pixels of the mark long whatever the
/// radius, taken at its tip. With Alt the place of that tip takes either one. During a drag a ghost
/// stays where it began. What the pointer is on stands out, and fades when it leaves (MarkFade).
///
/// When the centre point or the radius is dragged by another overlay, the drag state is Driven.
/// With PC_Follow it is so too when another angle is dragged, and this one turns along by as much:
/// it takes over the other's centre (ACD_FollowX and Y, which keep this one's base offset out),
/// grab and lead (ACD_FollowAngle) at the press; what a host sets during the drag replaces them.
class AngleControl final : public PreviewControl {
public:
    static void RegCleanup(Registry* record);

    AngleControl(const Registry* record, const ScriptVal& creator, const TagList& attributes);
    ~AngleControl() override;

    std::size_t SizeOf() const override;
    bool SetAttrsTagList(const TagList& tags) override;
    /// ACD_CurrentAngle, the follow values, the drag offset, the ids of the attached inputs.
    bool CopyAttr(u64 tag, void* out) override;

    bool SetAttrsTagList(Input* input, const TagList& tags) override;
    bool RemoveInput(Input* input, TagList* tags) override;
    void NotifyChanged(Input* input, Parameter* value, TagList* tags) override;
    void GLDrawControls(PreviewInfo* view, TagList* tags) override;
    DragType ControlDown(PreviewInfo* view, const MxPointT<int>& at, TagList* tags) override;
    void ControlMove(PreviewInfo* view, const MxPointT<int>& at, TagList* tags) override;
    void ControlUp(PreviewInfo* view, const MxPointT<int>& at, TagList* tags) override;
    bool ControlCommand(PreviewInfo* view, const MxID& command, u64 data, TagList* tags) override;

private:
    friend class SecondInput<AngleControl>;
    using Second = SecondInput<AngleControl>;
    enum SecondIndex { Centre, Radius, CentreX, CentreY, CentreZ };

    /// How a pointer holds the handle.
    struct Hold {
        OverlayPoint offset; // from the pointer to what it holds, view pixels
        double ahead = 0.0;  // of the angle, degrees
        OverlayPoint start;  // of what the ghost shows, view pixels
    };

    void ReadSizes(const TagList& tags);
    TagList TakeFollow(const TagList& tags);
    bool Store(const Input* input, const Parameter* value);
    OverlayPoint CentreInView(const PreviewInfo& view) const;
    OverlayPoint HandleInView(const PreviewInfo& view) const;
    OverlayPoint LeverInView(const PreviewInfo& view) const;
    void DrawRing(const PreviewInfo& view, double brightness) const;
    void DrawLever(const PreviewInfo& view, double brightness) const;
    Hold HoldAt(const PreviewInfo& view, OverlayPoint pointer, bool alternate) const;
    static bool IsHeld(const PreviewInfo& view, const Hold& hold);
    void Grab(const PreviewInfo& view, OverlayPoint pointer, bool alternate);
    const AngleControl* Leader(const PreviewInfo& view) const;
    void StartFollowing(const AngleControl& leader);
    bool IsDrivenBy(const PreviewInfo& view) const;
    bool HitTest(PreviewInfo& view, const TagList* tags);

    std::array<Second, 5> seconds_{
        {Second(*this), Second(*this), Second(*this), Second(*this), Second(*this)}};
    double angle_ = 0.0; // degrees
    OverlayPoint centre_{0.5, 0.5};
    double radius_ = 0.1;
    double radiusScale_ = 1.0;
    double minRadius_ = 0.0;
    int handleStyle_ = 0;
    DragOffset grab_;
    double ahead_ = 0.0;                // of the angle at the grab, degrees
    std::optional<OverlayPoint> start_; // of the handle in this drag, image coordinates
    double startAngle_ = 0.0;
    OverlayPoint follow_;
    double followAngle_ = 0.0;
    bool hovered_ = false;
    MarkFade fade_;
};

} // namespace Marlox
