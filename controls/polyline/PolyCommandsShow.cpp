// What shows of the shapes, and in which colours.

#include "controls/polyline/OnionSkinningDlg.h"
#include "controls/polyline/PolyCommands.h"
#include "controls/polyline/PolyKeyListDlg.h"
#include "controls/polyline/PolyLineControl.h"
#include "system/controls/HostDialogs.h"
#include "system/document/MarloxDoc.h"
#include "system/viewer/OverlayState.h"

namespace Marlox {

namespace {

std::optional<u32> AskColor(const QString& title, u32 preset)
{
    HostDialogs::ColorRequest request;
    request.title = title;
    request.preset =
        preset ? MxColor(int(preset >> 16 & 0xff), int(preset >> 8 & 0xff), int(preset & 0xff))
               : MxColor(228, 228, 228);
    const std::optional<MxColor> chosen = HostDialogs::Get().ChooseColor(request);
    if (!chosen)
        return {};
    return chosenColor | u32(chosen->red) << 16 | u32(chosen->green) << 8 | u32(chosen->blue);
}

template <u32 PolySettings::*member>
void ChooseColor(PolyLineControl& control, const char* title)
{
    const auto alive = Ref<PolyLineControl>::Share(&control);
    if (const auto chosen = AskColor(QString::fromLatin1(title), control.Settings().*member))
        control.ChangeSettings().*member = *chosen;
}

} // namespace

void ToggleShapeBox(PolyLineControl& control)
{
    const bool shows = !control.Settings().shapeBox;
    const char* const text = shows ? "Show Shape Box" : "Hide Shape Box";
    const auto state = [](bool on) {
        ScriptVal table = ScriptVal::MakeTable();
        table.Set("ShapeBox", on);
        return table;
    };
    control.ChangeSettings().shapeBox = shows;
    PushOverlayState(control, QString::fromLatin1(text), state(!shows), state(shows));
}

void ChooseSplineColor(PolyLineControl& control)
{
    ChooseColor<&PolySettings::splineColor>(control, "Custom Spline Color");
}

void ChooseKeyPointColor(PolyLineControl& control)
{
    ChooseColor<&PolySettings::keyPointColor>(control, "Custom Key Point Color");
}

void ChooseHandleColor(PolyLineControl& control)
{
    const auto alive = Ref<PolyLineControl>::Share(&control);
    if (const auto chosen =
            AskColor(QStringLiteral("Custom Handle Color"), control.Settings().handleColor))
        control.SetAttr(PLC_HandleColor, *chosen);
}

void ChoosePrevSkinColor(PolyLineControl& control)
{
    ChooseColor<&PolySettings::prevSkinColor>(control, "Set prev skin color");
}

void ShowKeyList(PolyLineControl& control)
{
    PolyKeyListDlg* const list = control.KeyList();
    if (!list)
        return;
    list->show();
    list->raise();
    list->activateWindow();
}

void EditOnionSettings(PolyLineControl& control)
{
    const auto alive = Ref<PolyLineControl>::Share(&control);
    const MarloxDoc* document = control.GetDoc();
    OnionSkinningDlg dialog(control.Settings().onion, document ? document->FrameRate() : 24.0);
    if (dialog.exec() != QDialog::Accepted)
        return;
    PolySettings& settings = control.ChangeSettings();
    settings.onion = dialog.Settings();
    settings.onion.ToPreferences();
}

void ResetOnionAnchor(PolyLineControl& control)
{
    control.ChangeSettings().onionAnchor = control.CurrentTime();
}

} // namespace Marlox
