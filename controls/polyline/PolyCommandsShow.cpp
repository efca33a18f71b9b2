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

u32 Chosen(const MxColor& color)
{
    return chosenColor | u32(color.red) << 16 | u32(color.green) << 8 | u32(color.blue);
}

/// Begins with the colour that shows now; what is looked at meanwhile is taken back.
template <u32 PolySettings::*member>
std::optional<u32> AskColor(PolyLineControl& control, const char* title, const MxColor& usual)
{
    const u32 before = control.Settings().*member;
    HostDialogs::ColorRequest request;
    request.title = QString::fromLatin1(title);
    request.preset =
        before ? MxColor(int(before >> 16 & 0xff), int(before >> 8 & 0xff), int(before & 0xff))
               : MxColor(usual.red, usual.green, usual.blue);
    request.preview = [&](const MxColor& color) {
        control.ChangeSettings().*member = Chosen(color);
    };
    const std::optional<MxColor> color = HostDialogs::Get().ChooseColor(request);
    control.ChangeSettings().*member = before;
    return color ? std::optional(Chosen(*color)) : std::nullopt;
}

template <u32 PolySettings::*member>
void ChooseColor(PolyLineControl& control, const char* title, const MxColor& usual)
{
    const auto alive = Ref<PolyLineControl>::Share(&control);
    if (const auto chosen = AskColor<member>(control, title, usual))
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
    if (const auto chosen = AskColor<&PolySettings::handleColor>(control, "Custom Handle Color",
                                                                 UsualColor(control)))
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
    const OnionSkinSettings before = control.Settings().onion;
    const std::optional<double> anchor = control.Settings().onionAnchor;
    const auto use = [&](const OnionSkinSettings& skins) {
        PolySettings& settings = control.ChangeSettings();
        settings.onion = skins;
        settings.onionAnchor = anchor;
        if (skins.anchor && !(before.anchor && anchor)) // is dropped where they are now
            settings.onionAnchor = control.CurrentTime();
    };
    OnionSkinningDlg dialog(before, document ? document->FrameRate() : 24.0);
    QObject::connect(&dialog, &OnionSkinningDlg::Changed, &dialog, [&] { use(dialog.Settings()); });
    const bool accepted = dialog.exec() == QDialog::Accepted;
    use(accepted ? dialog.Settings() : before);
    if (accepted)
        dialog.Settings().ToPreferences();
}

void ToggleOnionSkin(PolyLineControl& control)
{
    PolySettings& settings = control.ChangeSettings();
    settings.onionSkin = !settings.onionSkin;
    if (settings.onionSkin && settings.onion.anchor && !settings.onionAnchor)
        settings.onionAnchor = control.CurrentTime();
}

void ResetOnionAnchor(PolyLineControl& control)
{
    control.ChangeSettings().onionAnchor = control.CurrentTime();
}

} // namespace Marlox
