#pragma once

#include "plugin/PluginLibrary.h"
#include "system/document/MarloxDoc.h"
#include "system/viewer/OverlayPainter.h"
#include "system/viewer/OverlayStage.h"

#include <memory>
#include <string>
#include <vector>

namespace Marlox {

/// An input of the rig's tool.
struct RigInput {
    const char* id;
    const char* dataType;            // CLSID_DataType_...
    std::vector<TagPair> attributes; // IAS_Overlay, IA_OverlayIndex, the overlay's own tags ...
};

/// A document with one tool and its overlays, made by the control library, on a stage without a
/// window. A picture of 400 x 200 pixels lies at (100, 50) in a view of 600 x 300 pixels, one for
/// one: image (x, y) is at view (100 + 400 x, 50 + 200 y). The pick radius is 6, the scale 1.
class OverlayRig {
public:
    explicit OverlayRig(std::vector<RigInput> inputs);
    ~OverlayRig();

    Input& InputOf(const char* id) const { return *tool->FindInput(id); }
    PreviewControl& OverlayOf(const char* id) const { return *stage->OverlayOf(InputOf(id)); }
    PreviewInfo& View() const { return stage->View(); }
    double NumberOf(const char* id) const;
    /// "x y" of a point at the current time, with at most six decimals.
    std::string PointOf(const char* id) const;
    void SetPoint(const char* id, double x, double y) const;

    /// A press, a move to each further place, the release at the last.
    void Drag(std::initializer_list<MxPoint> places, u32 modifiers = 0) const;
    int UndoEntries() const { return document->Undo().Stack().count(); }
    QString UndoText() const { return document->Undo().UndoText(); }
    /// What the overlays draw now, in the recorder's form.
    std::string Drawn() const;
    /// How often the stage asked to be drawn since the last call.
    int TakeRedraws();

    PluginLibrary library;
    std::unique_ptr<MarloxDoc> document;
    Operator* tool = nullptr;
    std::unique_ptr<OverlayStage> stage;

private:
    int redraws_ = 0;
};

} // namespace Marlox
