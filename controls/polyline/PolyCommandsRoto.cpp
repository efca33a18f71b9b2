// Settings of the automatic edge following.

#include "controls/polyline/PolyCommands.h"
#include "controls/polyline/PolyLineControl.h"
#include "controls/polyline/PolyNumbers.h"
#include "system/controls/HostDialogs.h"
#include "system/document/MarloxDoc.h"

namespace Marlox {

namespace {

/// Asks until the number fits or the user cancels. Nothing: cancelled, or the number it is already.
std::optional<int> AskWhole(const char* title, const char* label, int current, int most)
{
    HostDialogs::TextRequest request;
    request.title = QString::fromLatin1(title);
    request.label = QString::fromLatin1(label).arg(most);
    request.preset = QString::number(current);
    for (;;) {
        const std::optional<QString> text = HostDialogs::Get().AskText(request);
        if (!text)
            return {};
        const int number = LeadingNumber(*text);
        if (number == current)
            return {};
        if (number >= 1 && number <= most)
            return number;
        HostDialogs::Get().Message(
            HostDialogs::Kind::Warning,
            QStringLiteral("Please choose a number between 1 and %1").arg(most));
    }
}

} // namespace

void ToggleRotoAssist(PolyLineControl& control)
{
    const bool on = !control.Settings().roto.enabled;
    const PolyLine* shape = control.Editor().Active();
    const int count = shape ? shape->GetCount() : 0;
    control.ChangeRoto(on ? "Enable auto-roto" : "Disable auto-roto",
                       [on, count](RotoAssistSettings& roto) {
                           roto.enabled = on;
                           roto.points.Create(on ? count : 0);
                           if (!on) {
                               roto.tracking = false;
                               roto.heldPoint = -1;
                           }
                       });
}

void ToggleRotoFollow(PolyLineControl& control)
{
    const bool on = !control.Settings().roto.follow;
    control.ChangeRoto(on ? "Set auto-roto follow" : "Reset auto-roto follow",
                       [on](RotoAssistSettings& roto) { roto.follow = on; });
}

void ToggleRotoEdges(PolyLineControl& control)
{
    const bool on = !control.Settings().roto.edges;
    control.ChangeRoto(on ? "Enable auto-roto edge" : "Disable auto-roto edge",
                       [on](RotoAssistSettings& roto) { roto.edges = on; });
}

void AskRotoDistance(PolyLineControl& control)
{
    constexpr int furthest = 16;
    const auto alive = Ref<PolyLineControl>::Share(&control);
    if (const auto chosen = AskWhole(
            "Distance", "Distance in pixels, 1 to %1:", control.Settings().roto.distance, furthest))
        control.ChangeRoto("Set distance", [&](RotoAssistSettings& roto) {
            roto.distance = *chosen;
            if (!roto.trackPoints.empty())
                roto.trackPoints = TrackPointsOf(control);
            roto.recomputes = true;
            roto.heldPoint = -1;
        });
}

void AskRotoFrameSkip(PolyLineControl& control)
{
    constexpr int most = 10;
    const auto alive = Ref<PolyLineControl>::Share(&control);
    if (const auto chosen = AskWhole("Track Frame Skip", "Step in frames, 1 to %1:",
                                     control.Settings().roto.frameSkip, most))
        control.ChangeRoto("Track Frame Skip",
                           [&](RotoAssistSettings& roto) { roto.frameSkip = *chosen; });
}

void ResetRotoAssist(PolyLineControl& control)
{
    control.ChangeRoto("Reset auto-roto", [](RotoAssistSettings& roto) {
        const bool enabled = roto.enabled;
        roto = {};
        roto.enabled = enabled;
    });
}

} // namespace Marlox
