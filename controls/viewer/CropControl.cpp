#include "controls/viewer/CropControl.h"

#include "controls/viewer/PointRules.h"
#include "framework/ControlClass.h"
#include "system/values/Image.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Marlox {

namespace {

/// From normalised image coordinates to view pixels.
QPointF ToView(const PreviewInfo& view, double x, double y)
{
    QPointF at;
    double w = 1.0;
    view.TransformOut(x, y, 1.0, at.rx(), at.ry(), w);
    return at / w;
}

OverlayPoint ToOverlay(QPointF point)
{
    return {point.x(), point.y()};
}

} // namespace

CropControl::CropControl(const Registry* record, const ScriptVal& creator,
                         const TagList& attributes)
    : PreviewControl(record, creator, attributes)
{
    ReadTags(attributes);
}

std::size_t CropControl::SizeOf() const
{
    return sizeof(*this);
}

// Attributes and inputs ---------------------------------------------------------------------------

bool CropControl::CopyAttr(u64 tag, void* out)
{
    const auto answer = [out](auto value) {
        static_assert(sizeof value == 8);
        std::memcpy(out, &value, sizeof value);
        return true;
    };
    switch (tag) {
    case CRPC_Normalised:
        return answer(int64(normalised_));
    case IMG_Width:
        return answer(imageSize_.width);
    case IMG_Height:
        return answer(imageSize_.height);
    case IMGD_PixelAspectX:
        return answer(imageSize_.aspectX);
    case IMGD_PixelAspectY:
        return answer(imageSize_.aspectY);
    default:
        return PreviewControl::CopyAttr(tag, out);
    }
}

void CropControl::ReadTags(const TagList& tags)
{
    normalised_ = tags.GetBool(CRPC_Normalised, normalised_);
}

bool CropControl::SetAttrsTagList(Input* input, const TagList& tags)
{
    ReadTags(tags);
    const Input* before = image_.Get();
    image_.ReadFrom(tags, CRPCID_Image, CRPCP_Image);
    if (before && !image_.Get())
        ReadImage(nullptr);
    return PreviewControl::SetAttrsTagList(input, tags);
}

/// Null: nothing is known of the image.
void CropControl::ReadImage(Parameter* value)
{
    imageSize_ = {};
    if (!dynamic_cast<Image*>(value))
        return;
    imageSize_ = {value->GetAttr(IMG_Width, -1), value->GetAttr(IMG_Height, -1),
                  value->GetAttrD(IMGD_PixelAspectX, 1.0), value->GetAttrD(IMGD_PixelAspectY, 1.0)};
}

void CropControl::FindSizeLink()
{
    model_.SetSizeLinked(FindInputByIndex(4) || FindInputByIndex(5));
}

bool CropControl::AddInput(Input* input, TagList* tags)
{
    const bool added = PreviewControl::AddInput(input, tags);
    FindSizeLink();
    return added;
}

bool CropControl::RemoveInput(Input* input, TagList* tags)
{
    const bool mine = image_.Forget(input);
    if (mine)
        ReadImage(nullptr);
    const bool removed = PreviewControl::RemoveInput(input, tags);
    FindSizeLink();
    return removed || mine;
}

void CropControl::NotifyChanged(Input* input, Parameter* value, TagList* tags)
{
    if (image_.Is(input)) {
        ReadImage(value);
    } else if (input != BaseInput()) {
        const auto* number = dynamic_cast<const Number*>(value);
        const int index = input ? int(input->GetAttr(IA_OverlayIndex)) : -1;
        if (!number || !model_.Store(index, number->GetValue()))
            return;
    }
    PreviewControl::NotifyChanged(input, value, tags);
}

/// What the values are divided by for image coordinates.
QSizeF CropControl::SizeIn(const PreviewInfo& view) const
{
    if (imageSize_.width > 0 && imageSize_.height > 0)
        return QSizeF(double(imageSize_.width), double(imageSize_.height));
    if (view.pixelWidth > 0 && view.pixelHeight > 0)
        return QSizeF(view.pixelWidth, view.pixelHeight);
    return QSizeF(1.0, 1.0);
}

// Where it lies ----------------------------------------------------------------------------------

CropCorners CropControl::CornersIn(const PreviewInfo& view) const
{
    const CropModel crop = model_.Normalised(SizeIn(view));
    const CropSpan& x = crop.X();
    const CropSpan& y = crop.Y();
    return {ToView(view, x.low, y.low), ToView(view, x.high, y.low), ToView(view, x.low, y.high),
            ToView(view, x.high, y.high)};
}

CropEdges CropControl::EdgesUnderCursor(const PreviewInfo& view) const
{
    if (!(view.imageWidth > 0.0) || !(view.imageHeight > 0.0))
        return {}; // everything lies on one point or line: there is nothing to aim at
    const OverlayPoint cursor = CursorPixel(view);
    return CornersIn(view).EdgesAt({cursor.x, cursor.y}, view.pickRadius);
}

/// The input that a drag of an edge writes, besides that of the low edge; null: none.
Input* CropControl::InputOf(CropEdges::Edge edge, int direction) const
{
    if (edge == CropEdges::None)
        return nullptr;
    const int first = edge == CropEdges::Low ? 0 : model_.IsSizeLinked() ? 4 : 2;
    return FindInputByIndex(unsigned(first + direction));
}

/// The grabbed edges that a drag moves; one driven by an expression or a connection stays, and the
/// opposite one with it.
CropEdges CropControl::HeldEdges() const
{
    const auto held = [this](CropEdges::Edge edge, int direction) {
        return IsFree(InputOf(edge, direction)) ? edge : CropEdges::None;
    };
    return {held(grabbed_.x, 0), held(grabbed_.y, 1)};
}

void CropControl::GLDrawControls(PreviewInfo* view, TagList* tags)
{
    if (!view || view->drawMode == DrawHidden)
        return;
    if (HidesWhileDragging() && dragState_ == DragType::Dragged)
        return;
    if (view->painter)
        Draw(*view);
    PreviewControl::GLDrawControls(view, tags);
}

void CropControl::Draw(const PreviewInfo& view) const
{
    const CropModel crop = model_.Normalised(SizeIn(view));
    const CropSpan& x = crop.X();
    const CropSpan& y = crop.Y();
    const auto point = [&view](double atX, double atY) {
        return ToOverlay(ToView(view, atX, atY));
    };
    // Guides reach a whole image past the image, and past the rectangle.
    const double left = std::min(x.low - 1.0, -1.0);
    const double right = std::max(x.high + 1.0, 2.0);
    const double lower = std::min(y.low - 1.0, -1.0);
    const double upper = std::max(y.high + 1.0, 2.0);
    const OverlayPoint p00 = point(x.low, y.low);
    const OverlayPoint p10 = point(x.high, y.low);
    const OverlayPoint p01 = point(x.low, y.high);
    const OverlayPoint p11 = point(x.high, y.high);
    struct Edge {
        bool hovered;
        OverlayPoint guides[4]; // two lines
        OverlayPoint from;
        OverlayPoint to;
    } const edges[] = {
        {hovered_.y == CropEdges::Low,
         {point(left, y.low), p00, p10, point(right, y.low)},
         p00,
         p10},
        {hovered_.x == CropEdges::High,
         {point(x.high, lower), p10, p11, point(x.high, upper)},
         p10,
         p11},
        {hovered_.y == CropEdges::High,
         {point(right, y.high), p11, p01, point(left, y.high)},
         p11,
         p01},
        {hovered_.x == CropEdges::Low,
         {point(x.low, upper), p01, p00, point(x.low, lower)},
         p01,
         p00},
    };

    OverlayPainter& painter = *view.painter;
    const OverlayPainter::Saved saved(painter);
    const auto setColor = [&painter](const Edge& edge) {
        painter.SetColor(edge.hovered ? OverlayColor::Highlight : OverlayColor::Normal);
    };
    painter.SetDashed(true);
    for (const Edge& edge : edges) {
        setColor(edge);
        painter.Lines(edge.guides);
    }
    painter.SetDashed(false);
    for (const Edge& edge : edges) {
        setColor(edge);
        painter.Line(edge.from, edge.to);
    }
}

// Pointer ----------------------------------------------------------------------------------------

bool CropControl::ControlCommand(PreviewInfo* view, const MxID& command, u64 data, TagList* tags)
{
    if (view && command == CCMD_HitTest)
        return HitTest(*view, tags);
    if (view && command == CCMD_GetInputAt && data &&
        TellInput(*view, *reinterpret_cast<Input**>(data)))
        return true;
    return PreviewControl::ControlCommand(view, command, data, tags);
}

bool CropControl::HitTest(PreviewInfo& view, const TagList* tags)
{
    const CropEdges edges = MayBeHit(view, tags) ? EdgesUnderCursor(view) : CropEdges();
    const CropEdges lit = IsEditable() ? edges : CropEdges();
    if (lit != hovered_) {
        hovered_ = lit;
        UpdateDisplay(nullptr, nullptr);
    }
    if (!edges.Any())
        return false;
    const bool x = IsFree(InputOf(edges.x, 0));
    const bool y = IsFree(InputOf(edges.y, 1));
    if (x && y)
        view.SetCursor(ViewCursor::Move);
    else
        view.SetCursor(x ? ViewCursor::MoveX : y ? ViewCursor::MoveY : ViewCursor::Forbidden);
    return true;
}

/// The input of the edge under the cursor, or of the one that is being dragged.
bool CropControl::TellInput(const PreviewInfo& view, Input*& input) const
{
    const CropEdges edges = dragState_ == DragType::Dragged ? grabbed_ : EdgesUnderCursor(view);
    Input* found = InputOf(edges.x, 0);
    if (!found)
        found = InputOf(edges.y, 1);
    if (found)
        input = found;
    return found != nullptr;
}

DragType CropControl::ControlDown(PreviewInfo* view, const MxPoint& at, TagList* tags)
{
    if (dragState_ != DragType::None) // its release was lost
        ControlUp(view, at, tags);
    if (view && (!view->hit.control || view->hit.control == this)) {
        grabbed_ = EdgesUnderCursor(*view);
        axisX_ = grabbed_.x != CropEdges::None;
        axisY_ = grabbed_.y != CropEdges::None;
        if (grabbed_.Any())
            dragState_ = DragType::Dragged;
    }
    return PreviewControl::ControlDown(view, at, tags);
}

void CropControl::ControlMove(PreviewInfo* view, const MxPoint& at, TagList* tags)
{
    PreviewControl::ControlMove(view, at, tags);
    if (!view || dragState_ != DragType::Dragged)
        return;
    const CropModel before = model_; // which follows what is sent
    const CropModel after =
        before.Dragged(HeldEdges(), {view->cursorX, view->cursorY}, SizeIn(*view));
    const auto alive = Ref<CropControl>::Share(this); // what is sent may end the drag
    for (const int index : before.StoredValues()) {
        const double value = after.Value(index);
        if (dragState_ != DragType::Dragged)
            return;
        if (!std::isfinite(value) || !CropModel::Differs(value, before.Value(index)) ||
            !IsFree(FindInputByIndex(unsigned(index))))
            continue;
        StartUndo("Adjust Crop");
        SetInputs(MakeRef<Number>(value).Get(), CurrentTime(), unsigned(index), nullptr);
    }
}

namespace {

struct CropFacts : OverlayFacts {
    using Class = CropControl;
    static constexpr char name[] = "CropControl";
    static constexpr RecordFacts records[] = {{CLSID_PreviewControl_Crop}};
};

} // namespace

template <>
ControlClass<CropFacts> controlClass<CropFacts>{};

} // namespace Marlox
