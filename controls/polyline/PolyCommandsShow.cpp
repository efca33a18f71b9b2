// What shows of the shapes, and in which colours.

#include "controls/polyline/OnionSkinningDlg.h"
#include "controls/polyline/PolyCommands.h"
#include "controls/polyline/PolyDraw.h"
#include "controls/polyline/PolyKeyListDlg.h"
#include "controls/polyline/PolyLineControl.h"
#include "system/controls/HostDialogs.h"
#include "system/document/MarloxDoc.h"
#include "system/viewer/OverlayState.h"

namespace Marlox {

namespace {

/// What lines and points are drawn in where no colour was chosen for them.
MxColor UsualColor(const PolyLineControl& control)
{
    return control.View() ? control.View()->Color(OverlayColor::Normal)
                          : PreviewInfo().Color(OverlayColor::Normal);
}

/// Begins with the colour that shows now.
std::optional<u32> AskColor(const char* title, u32 chosenBefore, const MxColor& usual)
{
    HostDialogs::ColorRequest request;
    request.title = QString::fromLatin1(title);
    const MxColor before(int(chosenBefore >> 16 & 0xff), int(chosenBefore >> 8 & 0xff),
                         int(chosenBefore & 0xff));
    request.preset = chosenBefore ? before : MxColor(usual.red, usual.green, usual.blue);
    const std::optional<MxColor> color = HostDialogs::Get().ChooseColor(request);
    if (!color)
        return {};
    return chosenColor | u32(color->red) << 16 | u32(color->green) << 8 | u32(color->blue);
}

template <u32 PolySettings::*member>
void ChooseColor(PolyLineControl& control, const char* title, const MxColor& usual)
{
    const auto alive = Ref<PolyLineControl>::Share(&control);
    if (const auto chosen = AskColor(title, control.Settings().*member, usual))
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
    ChooseColor<&PolySettings::splineColor>(control, "Custom Spline Color", UsualColor(control));
}

void ChooseKeyPointColor(PolyLineControl& control)
{
    ChooseColor<&PolySettings::keyPointColor>(control, "Custom Key Point Color",
                                              UsualColor(control));
}

void ChooseHandleColor(PolyLineControl& control)
{
    const auto alive = Ref<PolyLineControl>::Share(&control);
    if (const auto chosen =
            AskColor("Custom Handle Color", control.Settings().handleColor, UsualColor(control)))
        control.SetAttr(PLC_HandleColor, *chosen);
}

void ChoosePrevSkinColor(PolyLineControl& control)
{
    ChooseColor<&PolySettings::prevSkinColor>(control, "Set prev skin color", PrevSkinColor());
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
