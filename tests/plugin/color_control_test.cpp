#include "plugin/ColorStage.h"
#include "system/color/ColorPreferences.h"
#include "system/controls/ColorDrag.h"
#include "system/widgets/CustomButton.h"
#include "system/widgets/ElideLabel.h"
#include "widgets/CustomSwatch.h"

#include <limits>

#include <QtTest>

using namespace Marlox;

/// The colour control on an inspector page, from its channels to the undo history.
class ColorControlTest : public QObject {
    Q_OBJECT
private slots:
    void KnowsItsChannels();
    void WritesNumbersAsPreferred();
    void TypesNumbersAndExpressions();
    void DragsTheField();
    void KeepsHueAndSaturation();
    void DragsSlidersAndNumbers();
    void LeavesAloneWhatIsFixed();
    void SurvivesBadInput();
};

void ColorControlTest::KnowsItsChannels()
{
    const ColorStage stage({{"Gain Red", 4, 0.5},
                            {"Gain Depth", 12, 0.5},
                            {"Gain Id", 16, 0.5},
                            {"Gain Shift", 29, 0.5},
                            {"Gain Other", 31, 0.5},
                            {"Gain Lost", 32, 0.5},
                            {"Gain Under", -1, 0.5},
                            {"Gain Twice", 12, 0.75}},
                           {});
    const ColorControl& control = stage.Control();
    QCOMPARE(control.Label(), QString("Gain"));
    const struct {
        int channel;
        const char* name;
    } rows[] = {{4, "Red"}, {12, "Z"}, {16, "Object ID"}, {29, "Y Disparity"}, {31, "Gain Other"}};
    for (const auto& row : rows) {
        const auto* label =
            stage.PartOf<ElideLabel>(qPrintable(QString("labelcolor%1").arg(row.channel)));
        QVERIFY2(label && label->Text() == row.name, row.name);
    }
    QCOMPARE(control.findChildren<TimeCodeEdit*>().size(), int(std::size(rows)));
    QCOMPARE(control.ValueOf(12), 0.5); // of two in one channel the first has it
    QCOMPARE(control.GetInputFrom(u64(1)), &stage.InputOf("Gain Depth"));
    QVERIFY(!control.GetInputFrom(u64(5)) && !control.GetInputFrom(u64(77)));
    auto* slider = stage.PartOf<CustomSlider>("slidercolor16");
    QVERIFY(slider && stage.Control().FindLayoutObj("slidercolor16")->Widget() == slider);
    QCOMPARE(stage.Control().GetInputFrom(slider, nullptr), &stage.InputOf("Gain Id"));
    // Without channels of their own, inputs are red, green and blue in turn.
    const InspectorStage plain(
        {{"A", {}, "ColorControl"}, {"B", {{IAS_SharedWith, "A"}}, "ColorControl"}});
    QCOMPARE(plain.ControlOf<ColorControl>().InputOf(1), &plain.InputOf("B"));
    QCOMPARE(plain.ControlOf<ColorControl>().Label(), QString("Colour"));
}

void ColorControlTest::WritesNumbersAsPreferred()
{
    const ColorStage stage({{"Red", 0, 0.5}, {"Id", 16, 0.5}, {"Z", 12, 0.5}});
    TimeCodeEdit& red = stage.Edit("editcolor0");
    QCOMPARE(red.GetValue(), 0.5);
    {
        const PreferenceGuard bytes(PREF_ColorMode, 1);
        QCOMPARE(red.GetValue(), 127.5);
        QCOMPARE(stage.Edit("editcolor16").GetValue(), 127.5);
        QCOMPARE(stage.Edit("editcolor12").GetValue(), 0.5);
        type(red, "255");
        QCOMPARE(stage.ValueOf("Red"), 1.0);
        type(stage.Edit("editcolor12"), "255");
        QCOMPARE(stage.ValueOf("Z"), 255.0);
    }
    const PreferenceGuard words(PREF_ColorMode, 2);
    QCOMPARE(red.GetValue(), 65535.0);
    // Typed numbers keep to the channel's limits, as they are stored.
    const ColorStage limited({{"Red", 0, 0.5}}, {{IAD_Minimum, 0.0}, {IAD_Maximum, 2.0}});
    type(limited.Edit("editcolor0"), "999999");
    QCOMPARE(limited.ValueOf("Red"), 2.0);
}

void ColorControlTest::TypesNumbersAndExpressions()
{
    ColorStage stage;
    type(stage.Edit("editcolor1"), "1/2");
    QCOMPARE(stage.Rgb(), QString("0.5 0.5 0.125"));
    QCOMPARE(stage.UndoTexts(), QStringList{"ProbeTool1: Colour"});
    QVERIFY(stage.IsIdle());
    type(stage.Edit("editcolor1"), "0.5"); // the same again
    QCOMPARE(stage.UndoEntries(), 1);
    type(stage.Edit("editcolor0"), "time+2");
    QVERIFY(stage.InputOf("Red").HasExpression());
    QCOMPARE(stage.ValueOf("Red"), 2.0);
    QCOMPARE(stage.Edit("editcolor0").palette().color(QPalette::Text),
             LookColor("Controls.ExpressionColour"));
    // What follows an expression is not written by the others.
    const int entries = stage.UndoEntries();
    type(stage.Edit("editcolor2"), "0.75");
    QVERIFY(stage.InputOf("Red").HasExpression());
    QCOMPARE(stage.ValueOf("Blue"), 0.75);
    QCOMPARE(stage.UndoEntries(), entries + 1);
    stage.document->Undo().Stack().undo();
    QCOMPARE(stage.ValueOf("Blue"), 0.125);
    QCOMPARE(stage.Edit("editcolor2").GetValue(), 0.125);
    // The field's numbers.
    stage.InputOf("Red").SetExpression({});
    stage.Set(1.0, 0.5, 0.5);
    type(stage.Edit("editsaturation"), "1");
    QCOMPARE(stage.Rgb(), QString("1 0 0"));
    type(stage.Edit("edithue"), "1/3");
    QCOMPARE(stage.Rgb(), QString("0 1 0"));
    type(stage.Edit("editvalue"), "4");
    QCOMPARE(stage.Rgb(), QString("0 4 0"));
    QCOMPARE(stage.UndoEntries(), 3);
    type(stage.Edit("edithue"), "time");
    QVERIFY(stage.Edit("edithue").IsUnreadable() && stage.UndoEntries() == 3);
}

void ColorControlTest::DragsTheField()
{
    ColorStage stage;
    CustomColorField& field = stage.Field();
    Pointer::Press(field, inSquare(field, 0.0, 0.5));
    QCOMPARE(stage.ValueOf("Red"), stage.ValueOf("Blue"));
    Pointer::Move(field, inSquare(field, -1.0, -1.0));
    QCOMPARE(stage.Rgb(), QString("0 0 0"));
    QVERIFY(stage.document->IsAutoProxy());
    Pointer::Move(field, inSquare(field, 1.0, 1.0));
    const double hue = stage.Control().Record().hue;
    QVERIFY(std::abs(hue - 1.0 / 18.0) < 1e-6); // of the colour it began with
    Pointer::Release(field, inSquare(field, 1.0, 1.0));
    QCOMPARE(stage.ValueOf("Red"), 1.0);
    QCOMPARE(stage.ValueOf("Blue"), 0.0);
    QVERIFY(stage.HasUndo({"Adjust Saturation/Value"}));
    Pointer::Press(field, onHue(field, 0.5));
    Pointer::Move(field, onHue(field, 0.6));
    Pointer::Release(field, onHue(field, 0.6));
    QVERIFY(stage.HasUndo({"Adjust Saturation/Value", "Adjust Hue"}));
    QCOMPARE(stage.Control().Color()[2], 1.0);
    const QPoint alpha(field.width() - 7, field.height() / 2);
    Pointer::Press(field, alpha);
    Pointer::Release(field, alpha);
    QVERIFY(std::abs(stage.ValueOf("Alpha") - 0.5) < 0.02);
    QVERIFY(stage.HasUndo({"Adjust Saturation/Value", "Adjust Hue", "Adjust Alpha"}));
    for (int i = 0; i < 3; ++i)
        stage.document->Undo().Stack().undo();
    QCOMPARE(stage.Rgb(), QString("0.5 0.25 0.125"));
    QCOMPARE(stage.ValueOf("Alpha"), 1.0);
    // A press that moves nothing leaves no entry; Escape gives a drag up.
    stage.Set(1.0, 0.0, 0.0);
    Pointer::Click(field, onHue(field, 0.0));
    QVERIFY(stage.HasUndo({}));
    Pointer::Press(field, onHue(field, 0.5));
    Pointer::Stroke(field, Qt::Key_Escape);
    QCOMPARE(stage.Rgb(), QString("1 0 0"));
    QVERIFY(stage.HasUndo({}));
}

void ColorControlTest::KeepsHueAndSaturation()
{
    ColorStage stage;
    const auto shows = [&](double h, double s, double v) {
        const ColorRecord& record = stage.Field().Record();
        return std::abs(record.hue - h) < 1e-6 && std::abs(record.saturation - s) < 1e-6 &&
               std::abs(record.value - v) < 1e-6;
    };
    stage.Set(0.0, 0.5, 0.25);
    QVERIFY(shows(5.0 / 12.0, 1.0, 0.5));
    type(stage.Edit("editsaturation"), "0");
    QCOMPARE(stage.Rgb(), QString("0.5 0.5 0.5"));
    QVERIFY(shows(5.0 / 12.0, 0.0, 0.5));
    type(stage.Edit("editsaturation"), "0.5");
    QCOMPARE(stage.Rgb(), QString("0.25 0.5 0.375"));
    stage.Set(0.0, 0.5, 0.25);
    stage.InputOf("Green").SetValue(Number(0.0), 0.0); // (0, 0, 0.25): blue
    QVERIFY(shows(2.0 / 3.0, 1.0, 0.25));
    stage.InputOf("Blue").SetValue(Number(0.0), 0.0);
    QVERIFY(shows(2.0 / 3.0, 1.0, 0.0));
    // The bottom of the strip is the top's red, and stays the bottom.
    stage.Set(0.0, 1.0, 0.0);
    Pointer::Press(stage.Field(), onHue(stage.Field(), 1.0));
    Pointer::Release(stage.Field(), onHue(stage.Field(), 1.0));
    QCOMPARE(stage.Rgb(), QString("1 0 0"));
    QVERIFY(shows(1.0, 1.0, 1.0));
    stage.Set(0.5, 0.0, 0.0);
    QVERIFY(shows(1.0, 1.0, 0.5));
    // Nothing shows the colours between those that several components change from and to.
    stage.Set(0.0, 0.5, 0.25);
    type(stage.Edit("editsaturation"), "0");
    type(stage.Edit("edithue"), "0.125"); // of a grey: nothing to write
    Pointer::Press(stage.Field(), inSquare(stage.Field(), 0.3, 0.6));
    Pointer::Release(stage.Field(), inSquare(stage.Field(), 0.3, 0.6));
    stage.document->Undo().Undo();
    QVERIFY(shows(0.125, 0.0, 0.5));
    for (const char* id : {"Red", "Green", "Blue"})
        stage.InputOf(id).AddKey(0.0);
    stage.document->SetCurrentTime(10.0);
    type(stage.Edit("editsaturation"), "1");
    type(stage.Edit("edithue"), "0.5");
    stage.document->SetCurrentTime(0.0);
    QVERIFY(shows(0.5, 0.0, 0.5));
    // What is given up comes back, also where nothing was written.
    Pointer::Press(stage.Field(), onHue(stage.Field(), 0.75));
    QVERIFY(!shows(0.5, 0.0, 0.5));
    Pointer::Stroke(stage.Field(), Qt::Key_Escape);
    QVERIFY(shows(0.5, 0.0, 0.5) && stage.Control().Record().hue == 0.5);
    Pointer::Release(stage.Field(), {});
    stage.InputOf().SetAttrsTagList({{CLRC_ColorSpace, 2}}); // whose axes are no hue
    stage.InputOf().SetAttrsTagList({{CLRC_ColorSpace, 0}});
    QVERIFY(shows(0.5, 0.0, 0.5));
    for (const char* id : {"Red", "Green", "Blue"})
        stage.InputOf(id).RemoveKey(0.0);
    stage.document->SetCurrentTime(0.0);
    // Bright light stays as bright as it is.
    stage.Set(8.0, 4.0, 4.0);
    Pointer::Press(stage.Field(), onHue(stage.Field(), 0.5));
    Pointer::Release(stage.Field(), onHue(stage.Field(), 0.5));
    QCOMPARE(stage.Control().Color()[2], 8.0);
}

void ColorControlTest::DragsSlidersAndNumbers()
{
    ColorStage stage;
    CustomSlider& green = *stage.PartOf<CustomSlider>("slidercolor1");
    DragKnob(green, {10, 20, 30});
    Pointer::Release(green, KnobOf(green));
    QVERIFY(stage.ValueOf("Green") > 0.3);
    QVERIFY(stage.HasUndo({"Adjust Green"}));
    QCOMPARE(stage.Edit("editcolor1").GetValue(), stage.ValueOf("Green"));
    TimeCodeEdit& hue = stage.Edit("edithue");
    Pointer::Press(hue, {10, 10}, {}, Qt::MiddleButton);
    for (int x : {30, 50, 90})
        Pointer::Move(hue, {double(x), 10.0}, {}, Qt::MiddleButton);
    Pointer::Release(hue, {90, 10}, {}, Qt::MiddleButton);
    QVERIFY(stage.HasUndo({"Adjust Green", "Adjust Hue"}));
    // Back to the defaults: one channel, then all.
    stage.PartOf<CustomButton>("resetcolor1")->click();
    QCOMPARE(stage.ValueOf("Green"), 0.25);
    stage.PartOf<CustomButton>("reset")->click();
    QCOMPARE(stage.Rgb(), QString("0.5 0.25 0.125"));
    QVERIFY(!stage.PartOf<CustomButton>("resetcolor1")->isEnabled());
    QVERIFY(stage.HasUndo({"Adjust Green", "Adjust Hue", "Reset Green", "Reset Colour"}));
}

void ColorControlTest::LeavesAloneWhatIsFixed()
{
    std::vector<StagedInput> inputs = staged(rgba, {{CLRC_ShowWheel, 1}});
    inputs[0].attributes.push_back({IA_ReadOnly, 1});
    inputs[2].attributes.push_back({IC_EditDisabled, 1});
    inputs.push_back({"Other", {{IA_Channel, 2}, {IAD_Default, 0.75}}, "ColorControl"});
    const InspectorStage stage(inputs);
    auto& field = *stage.PartOf<CustomColorField>("field");
    QVERIFY(stage.ControlOf().isEnabled() && stage.PartOf<CustomSwatch>("swatch")->isEnabled());
    Pointer::Click(field, inSquare(field, 0.5, 0.5));
    QVERIFY(stage.ValueOf("Red") == 0.5 && stage.ValueOf("Blue") == 0.125);
    QVERIFY(stage.ValueOf("Green") != 0.25 && stage.UndoEntries() == 1);
    CopyColorEvent dropped({&stage.InputOf("Blue")});
    QCoreApplication::sendEvent(&stage.ControlOf("Other"), &dropped);
    QCOMPARE(stage.ValueOf("Blue"), 0.125);
    // With nothing of the colour left to set, the field takes alpha only.
    stage.InputOf("Green").SetExpression("0.5");
    stage.document->Undo().Clear();
    QVERIFY(!stage.PartOf<CustomSwatch>("swatch")->isEnabled());
    Pointer::Stroke(field, Qt::Key_Up);
    QVERIFY(stage.IsIdle() && stage.UndoEntries() == 0);
    Pointer::Press(field, onHue(field, 0.5));
    QVERIFY(!field.IsDragged() && stage.IsIdle());
    Pointer::Release(field, onHue(field, 0.5));
    Pointer::Click(field, QPoint(field.width() - 7, field.height() / 2));
    QVERIFY(stage.ValueOf("Alpha") < 0.6);
    // What another value is moved to while one is typed is not what stood in its edit.
    ColorStage linked;
    connect(linked.document.get(), &MarloxDoc::InputChanged, this, [&linked](Input* input) {
        if (input == &linked.InputOf("Red"))
            linked.InputOf("Green").SetValue(Number(2.0 * linked.ValueOf("Red")), 0.0);
    });
    type(linked.Edit("editcolor0"), "0.75");
    QCOMPARE(linked.ValueOf("Green"), 1.5);
    QCOMPARE(linked.Edit("editcolor1").GetValue(), 1.5);
    // A layout that is built anew leaves the keyboard where it was.
    auto& expand = *linked.PartOf<CustomButton>("buttonexpand");
    expand.setFocus();
    expand.click();
    QVERIFY(expand.hasFocus());
}

void ColorControlTest::SurvivesBadInput()
{
    ColorStage stage;
    const double bad[] = {std::nan(""), std::numeric_limits<double>::infinity(), -1e30, 1e30,
                          -std::numeric_limits<double>::infinity()};
    for (const double a : bad) {
        for (const double b : bad) {
            stage.Set(a, b, 0.5);
            stage.window->grab();
            for (double at : {0.0, 0.4, 1.0}) {
                Pointer::Press(stage.Field(), inSquare(stage.Field(), at, 1.0 - at));
                Pointer::Release(stage.Field(), inSquare(stage.Field(), at, 1.0 - at));
                Pointer::Click(stage.Field(), onHue(stage.Field(), at));
            }
            QVERIFY(stage.IsIdle());
            for (const double component : stage.Control().Color())
                QVERIFY(std::isfinite(component));
        }
    }
    // An input that goes in mid-drag, and then the tool with the whole page.
    stage.Set(0.5, 0.25, 0.125);
    CustomColorField& field = stage.Field();
    Pointer::Press(field, inSquare(field, 0.5, 0.5));
    stage.Control().RemoveInput(&stage.InputOf("Green"), nullptr);
    QVERIFY(stage.IsIdle());
    Pointer::Press(field, inSquare(field, 0.25, 0.75));
    Pointer::Move(field, inSquare(field, 0.75, 0.75));
    stage.document->RemoveTool(*stage.tool);
    QVERIFY(stage.document->Undo().Depth() == 0 && !stage.document->IsAutoProxy());
}

QTEST_MAIN(ColorControlTest)

#include "color_control_test.moc"
