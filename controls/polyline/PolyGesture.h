#pragma once

#include "controls/polyline/PolyEditor.h"

#include <memory>

namespace Marlox {

class TagList;

/// What the pointer does: where, and what is held and told with it.
struct PolyPointer {
    const PolyView& view;
    u32 modifiers; // of KeyModifier
    PenSample pen; // since the press
};

/// One gesture on a polyline, from the press to the release. It writes through the control's editor
/// from the shapes that there were at the press, and names its undo entry with the first change
/// (Begin). The control ends it with Finish or, when all it did is taken back, with Cancel.
class PolyGesture {
public:
    explicit PolyGesture(PolyLineControl& control) : control_(control) {}
    virtual ~PolyGesture() = default;

    virtual void Move(const PolyPointer& pointer) = 0;
    virtual void Finish(const PolyPointer& pointer);
    virtual void Cancel() {} // the undo group is rolled back by the control
    /// Over the shapes.
    virtual void Draw(OverlayPainter& painter, const PolyView& view) const;

protected:
    PolyLineControl& Control() const { return control_; }
    PolyEditor& Editor() const;
    /// Opens the undo entry, unless it is open.
    void Begin(const char* text);

private:
    PolyLineControl& control_;
};

/// What a press at a place begins in the control's draw mode; null: nothing. What the press alone
/// does is done.
std::unique_ptr<PolyGesture> StartGesture(PolyLineControl& control, const PolyPointer& pointer);

// The gestures, each in a file of its own.
std::unique_ptr<PolyGesture> MakeClickAppend(PolyLineControl& control, const PolyPointer& pointer);
std::unique_ptr<PolyGesture> MakeFreehand(PolyLineControl& control, const PolyPointer& pointer);
std::unique_ptr<PolyGesture> MakeInsertPoint(PolyLineControl& control, const PolyPointer& pointer,
                                             const PolyHit& hit);
std::unique_ptr<PolyGesture> MakeMovePoints(PolyLineControl& control, const PolyPointer& pointer,
                                            const PolyHit& hit);
std::unique_ptr<PolyGesture> MakeMoveHandle(PolyLineControl& control, const PolyPointer& pointer,
                                            const PolyHit& hit);
std::unique_ptr<PolyGesture> MakePullHandles(PolyLineControl& control, const PolyPointer& pointer,
                                             const PolyHit& hit);
std::unique_ptr<PolyGesture> MakeTension(PolyLineControl& control, const PolyPointer& pointer,
                                         const PolyHit& hit);
std::unique_ptr<PolyGesture> MakeRubberBand(PolyLineControl& control, const PolyPointer& pointer);
/// Null: the press is beside the shape box, or it does not show.
std::unique_ptr<PolyGesture> MakeShapeBoxDrag(PolyLineControl& control, const PolyPointer& pointer);
/// Null: the press is beside the track points, or they are not edited.
std::unique_ptr<PolyGesture> MakeTrackPointDrag(PolyLineControl& control,
                                                const PolyPointer& pointer);
/// A gesture of which the press was all.
class PolyNoGesture final : public PolyGesture {
public:
    using PolyGesture::PolyGesture;
    void Move(const PolyPointer&) override {}
};

/// A click on an onion skin goes to its time; false: there is none, or clicks do not.
bool ClickSkin(PolyLineControl& control, const PolyPointer& pointer);

} // namespace Marlox
