#pragma once

#include "controls/viewer/CropModel.h"
#include "framework/SecondInput.h"

namespace Marlox {

/// Attributes of the crop overlay, group 005. They have no names in scripts.
inline constexpr u32 CRPC_Normalised = 0x10058000; // without a size, values are image coordinates
inline constexpr u32 CRPCID_Image = 0x80058000;    // id of the tool's input that gives the size
inline constexpr u32 CRPCP_Image = 0x60058000;     // that Input itself, where no id is given

/// The viewer overlay of a crop: a rectangle over the image whose edges are dragged, with dashed
/// guides that continue each edge past the image. Near a corner a drag takes one edge of each
/// direction.
///
/// Its inputs are Numbers told apart by IA_OverlayIndex: 0 left, 1 bottom, 2 right, 3 top edge, 4
/// width, 5 height. With a width or a height among them, it writes these in place of the right and
/// the top edge, and they never fall below 0; otherwise edges may cross. Values are pixels of the
/// image at full resolution, from the bottom left of its display window, y upwards: of the crop
/// image (CRPCID_Image, CRPCP_Image) if it tells a width, else of the picture in the view. Without
/// any size they are taken as they are, normally image coordinates: CRPC_Normalised, which is set
/// unless given, says so and is for hosts to ask.
///
/// An edge is grabbed within the pick radius of its line, however far out on the guide; the left
/// and the bottom edge win over the right and the top one. A dragged edge goes to the cursor. The
/// first move that changes a value by more than 1e-5 opens the drag's undo group "Adjust Crop". An
/// edge driven by an expression or a connection stays, and the pointer says so.
///
/// CCMD_HitTest answers whether an edge is within reach and highlights what a press would grab, as
/// long as no other overlay has the pointer. CCMD_GetInputAt gives the input of that edge, which is
/// the width or height where these are written; at a corner that of the x edge. Besides its own
/// attributes and those of the base, what is known of the crop image can be read as IMG_Width,
/// IMG_Height (-1: unknown), IMGD_PixelAspectX and IMGD_PixelAspectY.
class CropControl final : public PreviewControl {
public:
    CropControl(const Registry* record, const ScriptVal& creator, const TagList& attributes);

    std::size_t SizeOf() const override;
    bool CopyAttr(u64 tag, void* out) override;
    using PreviewControl::SetAttrsTagList;
    bool SetAttrsTagList(Input* input, const TagList& tags) override;
    bool AddInput(Input* input, TagList* tags) override;
    bool RemoveInput(Input* input, TagList* tags) override;
    void NotifyChanged(Input* input, Parameter* value, TagList* tags) override;
    void GLDrawControls(PreviewInfo* view, TagList* tags) override;
    DragType ControlDown(PreviewInfo* view, const MxPoint& at, TagList* tags) override;
    void ControlMove(PreviewInfo* view, const MxPoint& at, TagList* tags) override;
    bool ControlCommand(PreviewInfo* view, const MxID& command, u64 data, TagList* tags) override;

private:
    friend class SecondInput<CropControl>;
    /// What the crop image is known to be.
    struct ImageSize {
        int64 width = -1; // pixels at full resolution
        int64 height = -1;
        double aspectX = 1.0; // of a pixel
        double aspectY = 1.0;
    };
    void ReadTags(const TagList& tags);
    void ReadImage(Parameter* value);
    void FindSizeLink();
    QSizeF SizeIn(const PreviewInfo& view) const;
    CropCorners CornersIn(const PreviewInfo& view) const;
    CropEdges EdgesUnderCursor(const PreviewInfo& view) const;
    Input* InputOf(CropEdges::Edge edge, int direction) const;
    CropEdges HeldEdges() const;
    bool HitTest(PreviewInfo& view, const TagList* tags);
    bool TellInput(const PreviewInfo& view, Input*& input) const;
    void Draw(const PreviewInfo& view) const;

    CropModel model_;
    bool normalised_ = true;
    SecondInput<CropControl> image_{*this};
    ImageSize imageSize_;
    CropEdges hovered_;
    CropEdges grabbed_;
};

} // namespace Marlox
