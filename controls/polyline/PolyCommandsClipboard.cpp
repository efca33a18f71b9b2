// Copying, cutting and pasting shapes, points of paths and places.

#include "controls/polyline/PolyCommands.h"
#include "controls/polyline/PolyLineControl.h"
#include "system/controls/HostDialogs.h"
#include "system/document/MarloxDoc.h"
#include "system/shapes/ShapeClipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace Marlox {

namespace {

void Tell(const QString& refusal)
{
    if (!refusal.isEmpty())
        HostDialogs::Get().Message(HostDialogs::Kind::Warning, refusal);
}

/// Whether there is something in the clipboard now.
bool Put(const std::optional<ShapeClip>& clip)
{
    if (!clip)
        return false;
    QGuiApplication::clipboard()->setMimeData(ClipToMime(*clip).release());
    return true;
}

Input* ActiveInput(PolyLineControl& control)
{
    return control.Editor().InputOf(control.Editor().ActivePolygon());
}

void Paste(PolyLineControl& control, bool whole, ShapePlace offset,
           const char* text = "Paste Points")
{
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    Input* const input = ActiveInput(control);
    if (!data || !input || !HasClip(*data))
        return;
    QString refusal;
    const std::optional<ShapeClip> clip = ClipFromMime(*data, refusal);
    if (clip) {
        // Over points, what is copied of a shape goes among them; a whole one replaces all.
        ShapeClip pasted = *clip;
        if (whole && pasted.kind == ShapeClip::Kind::PathPoints)
            pasted.kind = ShapeClip::Kind::Shape;
        const PolyNest nest(control, text);
        PasteClip(*input, control.Editor().ActiveSelection(), control.CurrentTime(), pasted, offset,
                  refusal);
    }
    Tell(refusal);
}

bool CopySelected(PolyLineControl& control)
{
    const Input* input = ActiveInput(control);
    QString refusal;
    const bool copied =
        input && Put(CopyPathPoints(*input, control.Editor().ActiveSelection(), refusal));
    Tell(refusal);
    return copied;
}

} // namespace

void CopyWholeShape(PolyLineControl& control)
{
    if (const Input* input = ActiveInput(control))
        Put(CopyShape(*input));
}

void PasteWholeShape(PolyLineControl& control)
{
    Paste(control, true, {});
}

void CopyPoints(PolyLineControl& control)
{
    CopySelected(control);
}

void CopyValue(PolyLineControl& control)
{
    if (const Input* input = ActiveInput(control))
        Put(CopyPathValue(*input, control.Editor().ActiveSelection(), control.CurrentTime()));
}

void CutPoints(PolyLineControl& control)
{
    if (CopySelected(control))
        DeleteSelectedPoints(control, "Cut Points");
}

void PastePoints(PolyLineControl& control)
{
    Paste(control, false, {});
}

void PastePointsWithOffset(PolyLineControl& control)
{
    const auto alive = Ref<PolyLineControl>::Share(&control);
    HostDialogs::NumberRequest request;
    request.title = QStringLiteral("Paste With Offset");
    request.label = QStringLiteral("Offset to the right (pixels):");
    const auto x = HostDialogs::Get().AskNumber(request);
    if (!x)
        return;
    request.label = QStringLiteral("Offset upwards (pixels):");
    const auto y = HostDialogs::Get().AskNumber(request);
    if (!y || !control.View() || !control.CanEdit())
        return;
    const PolyView view(*control.View(), control.Placement());
    const ShapePlace pixels = view.PixelSize();
    Paste(control, false, view.Placement().InVector({*x / pixels.x, *y / pixels.y}),
          "Offset points");
}

} // namespace Marlox
