#pragma once

#include "system/base/MxColor.h"

#include <string>
#include <vector>

#include <QByteArray>
#include <QList>

/// The names that controls and the workbench ask a look pack for, written out apart from the code
/// that declares them.
namespace ResourceNames {

/// "Name" with ".1" to ".n", and each of these with ".1" to ".m" where m is not 0.
struct Numbered {
    const char* name;
    int variants = 0;
    int states = 0;
};

constexpr Numbered bitmaps[] = {
    {"Controls.Color.Arrow", 2, 4},
    {"Controls.Color.Chequer"},
    {"Controls.Color.Knob", 5, 2},
    {"Controls.Color.PickButton", 2},
    {"Controls.ColorField.AlphaKnob"},
    {"Controls.ColorField.Chequer"},
    {"Controls.ColorField.HueKnob"},
    {"Controls.ColorField.SatValKnob"},
    {"Controls.ColorRanges.Node"},
    {"Controls.ColorSuppression.Knob"},
    {"Controls.ColorSuppression.KnobCenter"},
    {"Controls.ColorSuppression.KnobSelected"},
    {"Controls.ColorSuppression.Wheel"},
    {"Controls.ColorWheel.Knob", 5},
    {"Controls.ColorWheel.Wheel", 2},
    {"Controls.Gradient.Arrow", 2, 4},
    {"Controls.Gradient.ArrowNormal"},
    {"Controls.Gradient.ArrowSelected"},
    {"Controls.Gradient.Chequer"},
    {"Controls.Gradient.Delete"},
    {"Controls.Gradient.Knob", 5, 2},
    {"Controls.Gradient.Next"},
    {"Controls.Gradient.Previous"},
    {"Controls.Histogram.CorrectionCurve"},
    {"Controls.Histogram.Input"},
    {"Controls.Histogram.Output"},
    {"Controls.Histogram.Reference"},
    {"Controls.LUT.PickButton", 2},
    {"Controls.Levels.Gamma"},
    {"Controls.Levels.High"},
    {"Controls.Levels.Low"},
    {"Controls.LevelsOutput.Gradient"},
    {"Controls.LevelsOutput.High"},
    {"Controls.LevelsOutput.Low"},
    {"Controls.Nest.Button", 2, 4},
    {"Controls.Range.Cap", 2, 2},
    {"Controls.Range.Knob", 4},
    {"Controls.Range.Normal"},
    {"Controls.Range.Track"},
    {"Controls.Screw.Frame"},
    {"Controls.Screw.Grip"},
    {"Controls.Screw.Reset"},
    {"Controls.Slider.Knob", 2},
    {"Controls.Slider.Reset"},
    {"Controls.Slider.Track"},
    {"Controls.TrackerPattern.Bad"},
    {"Controls.TrackerPattern.Channel", 2},
    {"Controls.TrackerPattern.ChannelBlue"},
    {"Controls.TrackerPattern.ChannelGreen"},
    {"Controls.TrackerPattern.ChannelRed"},
    {"Controls.TrackerPattern.ChannelWhite"},
    {"Controls.TrackerPattern.Good"},
    {"Controls.TrackerPattern.Quality", 2},
    {"Icons.Polyline.Closed", 2},
    {"Icons.Polyline.CurrentTimeOnly", 2},
    {"Icons.Polyline.Delete", 2},
    {"Icons.Polyline.DrawClick", 2},
    {"Icons.Polyline.DrawDone", 2},
    {"Icons.Polyline.DrawFreehand", 2},
    {"Icons.Polyline.DrawInsertandModify", 2},
    {"Icons.Polyline.DrawModifyOnly", 2},
    {"Icons.Polyline.FollowPublished", 2},
    {"Icons.Polyline.Linear", 2},
    {"Icons.Polyline.Lock", 2},
    {"Icons.Polyline.MakeDoublePolyline", 2},
    {"Icons.Polyline.MultiTimeEdit", 2},
    {"Icons.Polyline.OnionSkin", 2},
    {"Icons.Polyline.PublishPoints", 2},
    {"Icons.Polyline.ReducePoints", 2},
    {"Icons.Polyline.RotoAssist", 2},
    {"Icons.Polyline.SelectAll", 2},
    {"Icons.Polyline.ShapeBox", 2},
    {"Icons.Polyline.ShowHandles", 2},
    {"Icons.Polyline.ShowKeys", 2},
    {"Icons.Polyline.Smooth", 2},
    {"Icons.Workbench.Add"},
    {"Icons.Workbench.Application"},
    {"Icons.Workbench.Channel"},
    {"Icons.Workbench.Checker"},
    {"Icons.Workbench.Down"},
    {"Icons.Workbench.Exposure"},
    {"Icons.Workbench.Eye"},
    {"Icons.Workbench.EyeClosed"},
    {"Icons.Workbench.FirstFrame"},
    {"Icons.Workbench.Fit"},
    {"Icons.Workbench.Gamma"},
    {"Icons.Workbench.LastFrame"},
    {"Icons.Workbench.Lock"},
    {"Icons.Workbench.NextFrame"},
    {"Icons.Workbench.NextKey"},
    {"Icons.Workbench.Open"},
    {"Icons.Workbench.PenCursor"},
    {"Icons.Workbench.Play"},
    {"Icons.Workbench.PreviousFrame"},
    {"Icons.Workbench.PreviousKey"},
    {"Icons.Workbench.Redo"},
    {"Icons.Workbench.Remove"},
    {"Icons.Workbench.Save"},
    {"Icons.Workbench.Stop"},
    {"Icons.Workbench.Undo"},
    {"Icons.Workbench.Unlock"},
    {"Icons.Workbench.Up"},
    {"Icons.Workbench.Zoom"},
};

/// A layout and the objects that the control that uses it looks up.
struct Layout {
    const char* name;
    std::vector<const char*> objects;
};

inline const Layout layouts[] = {
    {"Controls.Button.Layout", {"button"}},
    {"Controls.CheckBox.Layout", {"checkbox"}},
    {"Controls.CheckList.Layout", {"label", "list"}},
    {"Controls.Clip.Layout", {"label"}},
    {"Controls.Color.Layout.Collapsed",
     {"label", "buttonexpand", "buttonpick", "buttonsample", "swatch", "reset", "colorgroup",
      "sliders", "expressioncolor"}},
    {"Controls.Color.Layout.Expanded",
     {"label", "buttonexpand", "buttonpick", "buttonsample", "swatch", "reset", "colorgroup",
      "sliders", "expressioncolor", "field", "edithue", "editsaturation", "editvalue", "huelabel",
      "saturationlabel", "valuelabel", "Sample"}},
    {"Controls.Color.Layout.Slider", {"slidercolor", "editcolor", "labelcolor", "resetcolor"}},
    {"Controls.ColorRanges.Layout", {"ranges"}},
    {"Controls.ColorSuppression.Layout",
     {"wheel", "editred", "edityellow", "editgreen", "editcyan", "editblue", "editmagenta",
      "editredlabel", "edityellowlabel", "editgreenlabel", "editcyanlabel", "editbluelabel",
      "editmagentalabel", "expressionred", "expressionyellow", "expressiongreen", "expressioncyan",
      "expressionblue", "expressionmagenta"}},
    {"Controls.ColorWheel.Layout",
     {"edithue", "editsaturation", "edittintangle", "edittintlength", "huelabel", "saturationlabel",
      "tintanglelabel", "tintlengthlabel", "expressionhue", "expressionsaturation",
      "expressiontintangle", "expressiontintlength"}},
    {"Controls.Combo.Layout.Horizontal", {"label", "combo"}},
    {"Controls.Combo.Layout.Vertical", {"label", "combo"}},
    {"Controls.File.Layout", {"label"}},
    {"Controls.Fontfile.Layout", {"label"}},
    {"Controls.Gamma.Layout", {"label"}},
    {"Controls.Gamut.Layout", {"label"}},
    {"Controls.Gradient.Layout.Collapsed", {"label", "gradient"}},
    {"Controls.Gradient.Layout.Expanded", {"label", "gradient"}},
    {"Controls.Gradient.Layout.Slider", {"slidercolor", "editcolor", "labelcolor"}},
    {"Controls.Histogram.Layout", {"histogram"}},
    {"Controls.Image.Layout", {"label"}},
    {"Controls.LUT.Layout", {"view"}},
    {"Controls.Label.Layout", {"label"}},
    {"Controls.Levels.Layout", {"levels"}},
    {"Controls.LevelsOutput.Layout", {"levels"}},
    {"Controls.List.Layout", {"label", "list"}},
    {"Controls.Log.Layout", {"label"}},
    {"Controls.Matrix.Layout", {"label"}},
    {"Controls.MultiButton.Layout", {"label", "buttons"}},
    {"Controls.Nest.Layout", {"label", "button"}},
    {"Controls.Offset.Layout", {"label"}},
    {"Controls.Range.Layout", {"label", "range"}},
    {"Controls.Screw.Layout", {"label", "screw", "edit", "expression"}},
    {"Controls.ScriptValList.Layout", {"label", "list"}},
    {"Controls.Separator.Layout", {}},
    {"Controls.Slider.Layout",
     {"slider", "edit", "label", "minlabel", "midlabel", "maxlabel", "expression"}},
    {"Controls.Spacer.Layout", {}},
    {"Controls.TextEdit.Layout", {"textedit", "expression"}},
    {"Controls.TrackerPattern.Layout", {"pattern"}},
    {"Dialogs.ImportShape.Layout",
     {"m_ImportIndexLabel", "m_ImportIndexCombo", "m_ImportNameLabel", "m_ImportAllCheck",
      "m_OKCancel"}},
    {"Dialogs.OnionSkin.Layout",
     {"m_LabelSkinCount", "m_EditSkinCount", "m_LabelSkinStep", "m_EditSkinStep", "m_CheckKeySkin",
      "m_GroupSkinRange", "m_CheckOnionAnchor", "m_CheckPointPlot", "m_CheckShowHull",
      "m_CheckSetCurrentTime", "m_OKCancel"}},
    {"Dialogs.PolyKeyList.Layout",
     {"m_KeyList", "m_KindCombo", "m_GoToButton", "m_DeleteButton", "m_StateLabel"}},
    {"Dialogs.PolyPoint.Layout",
     {"m_LabelNumber", "m_EditNumber", "m_PreviousButton", "m_NextButton", "m_LabelPlace",
      "m_EditX", "m_EditY", "m_LabelIn", "m_EditInX", "m_EditInY", "m_LabelOut", "m_EditOutX",
      "m_EditOutY", "m_LabelTension", "m_EditTension", "m_StateLabel"}},
};

constexpr const char* dataBlocks[] = {
    "Controls.CheckList.Data",     "Controls.List.Data",  "Controls.Range.Data",
    "Controls.ScriptValList.Data", "Controls.Screw.Data", "Controls.Slider.Data",
};

/// A colour as controls declare it.
struct Color {
    const char* name;
    Marlox::MxColor color;
    Marlox::MxColor second{};
};

constexpr Color colors[] = {
    {"Controls.ColorRanges.BaseColour", {80, 80, 80, 255}},
    {"Controls.ColorRanges.HandleColour", {51, 153, 179, 255}},
    {"Controls.ColorWheel.TextColour", {208, 208, 208, 255}},
    {"Controls.ExpressionColour", {230, 215, 135, 255}, {9, 9, 9, 255}},
    {"Controls.Gamma.BackgroundColour", {0, 0, 0, 255}},
    {"Controls.Gamma.CurveColour", {224, 224, 224, 255}},
    {"Controls.Gamma.DashedColour", {148, 148, 148, 255}},
    {"Controls.Gamma.MajorGridColour", {93, 93, 93, 255}},
    {"Controls.Gamma.MinorGridColour", {54, 54, 54, 255}},
    {"Controls.Histogram.BackgroundColour", {64, 64, 64, 255}},
    {"Controls.Histogram.GridColour", {9, 9, 9, 102}},
    {"Controls.Histogram.GuidesColour", {71, 71, 71, 178}},
    {"Controls.Histogram.InputBlueColour", {0, 121, 255, 102}},
    {"Controls.Histogram.InputColour", {146, 146, 146, 102}},
    {"Controls.Histogram.InputGreenColour", {0, 255, 0, 102}},
    {"Controls.Histogram.InputRedColour", {255, 0, 0, 102}},
    {"Controls.Histogram.OutputColour", {0, 0, 0, 127}},
    {"Controls.InRangeColour", {146, 146, 146, 255}, {41, 41, 41, 255}},
    {"Controls.Log.BackgroundColour", {0, 0, 0, 255}},
    {"Controls.Log.CurveColour", {224, 224, 224, 255}},
    {"Controls.Log.DashedColour", {148, 148, 148, 255}},
    {"Controls.Log.MajorGridColour", {93, 93, 93, 255}},
    {"Controls.Log.MinorGridColour", {54, 54, 54, 255}},
    {"Controls.Nest.TextColour", {208, 208, 208, 255}},
    {"Controls.Other.BorderColour", {9, 9, 9, 255}},
    {"Controls.Other.DisabledTextColour", {110, 110, 110, 255}},
    {"Controls.Other.FocusTextColour", {255, 255, 255, 255}},
    {"Controls.Other.TextColour", {220, 220, 220, 255}},
    {"Controls.Polyline.NextSkinColour", {110, 190, 240, 255}},
    {"Controls.Polyline.PrevSkinColour", {240, 120, 110, 255}},
    {"System.ErrorTextColour", {255, 140, 140, 255}},
    {"System.FlatColour", {41, 41, 41, 255}},
    {"System.SelectedItemColour", {255, 255, 255, 255}, {24, 24, 24, 255}},
    {"System.ShineColour", {53, 53, 53, 255}},
    {"System.TextColour", {146, 146, 146, 255}},
    {"System.WarningTextColour", {223, 213, 122, 255}},
};

inline QList<QByteArray> BitmapNames()
{
    QList<QByteArray> names;
    for (const Numbered& row : bitmaps) {
        if (row.variants == 0) {
            names << row.name;
        }
        for (int variant = 1; variant <= row.variants; ++variant) {
            const QByteArray name = QByteArray(row.name) + '.' + QByteArray::number(variant);
            if (row.states == 0) {
                names << name;
            }
            for (int state = 1; state <= row.states; ++state) {
                names << name + '.' + QByteArray::number(state);
            }
        }
    }
    return names;
}

} // namespace ResourceNames
