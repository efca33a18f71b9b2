#include "plugin/SliderStage.h"

#include "script/ScriptSystem.h"
#include "system/resources/Resources.h"
#include "system/widgets/ElideLabel.h"

#include <cmath>
#include <functional>
#include <random>

#include <QLineEdit>
#include <QSignalSpy>
#include <QtTest>

using namespace Marlox;

using Ending = std::function<void(SliderStage&, CustomSlider&)>;
Q_DECLARE_METATYPE(Ending)
Q_DECLARE_METATYPE(Marlox::TagList)

/// The slider control on an inspector page, from the tags of its input to the undo history.
class SliderControlTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { InstallScripting(); }
    void ReadsRanges_data();
    void ReadsRanges();
    void KeepsToTheGrid();
    void BuildsItsWidgets();
    void ShowsRangeNames();
    void PicksKnobs();
    void ReadsAttributesAnew();
    void OneDragOneEntry();
    void NothingChangedNoEntry();
    void RendersProxiesMeanwhile();
    void KeysAndWheelCloseTheirEntry();
    void SmallChangesWriteNothing();
    void TimesAreNotRounded();
    void ShowsItsOwnInputOnly();
    void TypesNumbersAndExpressions();
    void DragsInTheEdit();
    void ResetsBeyondTheEnds();
    void FollowsUndoAndTime();
    void KeepsTheValueOfALostConnection();
    void LostGesturesEndCleanly_data();
    void LostGesturesEndCleanly();
    void SurvivesItsEndInMidDrag();
    void StandsRandomUse();
};

namespace {

void dragKnob(CustomSlider& slider, std::initializer_list<int> by)
{
    const QPointF start = KnobOf(slider);
    Pointer::Press(slider, start);
    for (const int x : by)
        Pointer::Move(slider, start + QPointF(x, 0));
}

/// Perhaps in the middle of a gesture.
void reopenPage(const SliderStage& stage)
{
    stage.page->SetOperator(nullptr);
    QCoreApplication::processEvents();
    stage.page->SetOperator(stage.tool);
}

void type(TimeCodeEdit& edit, const QString& text)
{
    edit.setFocus();
    edit.setText(text);
    edit.Commit();
}

} // namespace

void SliderControlTest::ReadsRanges_data()
{
    QTest::addColumn<TagList>("tags");
    QTest::addColumn<double>("low");
    QTest::addColumn<double>("high");
    QTest::addColumn<double>("plainStep");
    QTest::addColumn<double>("displayStep");
    QTest::addColumn<int>("shownDecimals");
    const auto row = [](const char* name, TagList tags, double low, double high, double plain,
                        double display, int decimals) {
        QTest::newRow(name) << tags << low << high << plain << display << decimals;
    };
    row("nothing given", {}, 0.0, 1.0, 0.01, 1e-6, 4);
    row("scale", {{IAD_LowScale, -2.0}, {IAD_HighScale, 48.0}}, -2.0, 48.0, 0.1, 1e-5, 3);
    row("bounds only", {{IAD_Minimum, 1.0}, {IAD_Maximum, 300.0}}, 1.0, 300.0, 1.0, 1e-4, 2);
    row("scale beyond bounds", {{IAD_Minimum, 0.0}, {IAD_LowScale, -5.0}, {IAD_HighScale, 5.0}},
        0.0, 5.0, 0.01, 1e-6, 4);
    row("low above 1", {{IAD_Minimum, 20.0}}, 20.0, 21.0, 0.01, 1e-6, 4);
    row("reversed", {{IAD_LowScale, 3.0}, {IAD_HighScale, 1.0}}, 1.0, 3.0, 0.01, 1e-6, 4);
    row("endless", {{IAD_LowScale, -1e308}, {IAD_HighScale, 1e308}}, 0.0, 1.0, 0.01, 1e-6, 4);
    row("wide", {{IAD_HighScale, 1e6}}, 0.0, 1e6, 1e4, 1e-4, 2);
    row("tiny", {{IAD_HighScale, 1e-9}}, 0.0, 1e-9, 1e-11, 1e-12, 12);
    row("whole numbers", {{IA_Integer, 1}, {IAD_HighScale, 255.0}}, 0.0, 255.0, 1.0, 1.0, 0);
    row("few whole numbers", {{IA_Integer, 1}, {IAD_HighScale, 10.0}}, 0.0, 10.0, 1.0, 1.0, 0);
    row("whole times", {{IA_Integer, 1}, {IC_Time, 1}, {IAD_HighScale, 100.0}}, 0.0, 100.0, 1.0,
        1e-4, 2);
    row("own step", {{ICD_Step, 0.25}}, 0.0, 1.0, 0.25, 1e-6, 3);
}

void SliderControlTest::ReadsRanges()
{
    QFETCH(TagList, tags);
    QFETCH(double, low);
    QFETCH(double, high);
    const SliderSettings settings(tags);
    QCOMPARE(settings.range.low, low);
    QCOMPARE(settings.range.high, high);
    QTEST(settings.plainStep, "plainStep");
    QTEST(settings.displayStep, "displayStep");
    QTEST(settings.shownDecimals, "shownDecimals");
    QCOMPARE(settings.fineStep, settings.plainStep / 10);
}

void SliderControlTest::KeepsToTheGrid()
{
    const SliderSettings unit{TagList()};
    QCOMPARE(unit.OnGrid(0.3), 0.3);
    QCOMPARE(unit.OnGrid(0.1234564), 0.123456);
    QCOMPARE(unit.OnGrid(-0.1234566), -0.123457);
    const SliderSettings whole(TagList({{IA_Integer, 1}}));
    QCOMPARE(whole.OnGrid(2.5), 3.0);
    QCOMPARE(whole.OnGrid(-2.5), -2.0); // halves upwards, unlike a drag's rounding
}

void SliderControlTest::BuildsItsWidgets()
{
    const SliderStage stage({{"Gain",
                              {{IAD_Default, 0.25},
                               {IAD_HighScale, 4.0},
                               {IAD_Maximum, 10.0},
                               {IC_TickFreq, 5},
                               {IAS_Help, "How bright."},
                               {IC_TabStop, 0}}}});
    SliderControl& control = stage.ControlOf("Gain");
    for (const char* name : {"slider", "edit", "label", "minlabel", "midlabel", "maxlabel"}) {
        LayoutObj* object = control.FindLayoutObj(name);
        QVERIFY2(object && object->Widget(), name);
        QCOMPARE(object->Widget()->parentWidget(), &control);
    }
    const CustomSlider& slider = stage.SliderOf("Gain");
    auto* label = control.findChild<ElideLabel*>("label");
    QCOMPARE(label->Text(), QString("Gain"));
    QCOMPARE(label->focusProxy(), &slider);
    QVERIFY(label->isVisible() && slider.isVisible() && stage.EditOf("Gain").isVisible());
    QCOMPARE(slider.Value(), 0.25);
    QCOMPARE(slider.DefaultValue(), 0.25);
    QCOMPARE(slider.MaxValue(), 4.0);
    QCOMPARE(slider.TickCount(), 5.0);
    QCOMPARE(slider.Owner(), &control);
    QVERIFY(slider.toolTip().startsWith("How bright.\n") && slider.toolTip().contains("Alt+click"));
    QCOMPARE(slider.accessibleName(), QString("Gain"));
    QCOMPARE(stage.EditOf("Gain").Maximum(), 10.0);
    QCOMPARE(stage.EditOf("Gain").text(), QString("0.25"));
    QVERIFY(!(stage.EditOf("Gain").focusPolicy() & Qt::TabFocus));
    QCOMPARE(control.GetInputFrom(&stage.EditOf("Gain"), nullptr), &stage.InputOf("Gain"));
    QVERIFY(control.HasValue());
}

void SliderControlTest::ShowsRangeNames()
{
    const SliderStage stage({{"Plain", {}}, {"Named", {{SLCS_HighName, "Hard"}}}});
    const auto shown = [&stage](const char* id) {
        QStringList texts;
        for (const char* name : {"minlabel", "midlabel", "maxlabel"}) {
            auto* label = stage.ControlOf(id).findChild<ElideLabel*>(name);
            texts += label->isVisible() ? label->Text() : QString("-");
        }
        return texts.join(' ');
    };
    QCOMPARE(shown("Plain"), QString("- - -"));
    QVERIFY(stage.SliderOf("Plain").testAttribute(Qt::WA_OpaquePaintEvent));
    QCOMPARE(shown("Named"), QString("- - Hard"));
    QVERIFY(!stage.SliderOf("Named").testAttribute(Qt::WA_OpaquePaintEvent));
    // Named and unnamed by a script, later on.
    stage.ControlOf("Plain").SetAttrsTagList(TagList({{SLCS_LowName, "Soft"}}));
    QCOMPARE(shown("Plain"), QString("Soft - -"));
    QVERIFY(!stage.SliderOf("Plain").testAttribute(Qt::WA_OpaquePaintEvent));
    stage.ControlOf("Plain").SetAttrsTagList(TagList({{SLCS_LowName, ""}}));
    QCOMPARE(shown("Plain"), QString("- - -"));
    QVERIFY(stage.SliderOf("Plain").testAttribute(Qt::WA_OpaquePaintEvent));
}

void SliderControlTest::PicksKnobs()
{
    const SliderStage stage({{"Gain", {{IC_KnobStyle, 6}}}});
    CustomSlider& slider = stage.SliderOf("Gain");
    const QPoint middle(int(slider.KnobPixel()), slider.height() / 2);
    for (const auto& [style, name] : {std::pair{5, "Controls.Slider.Knob.1"},
                                      {6, "Controls.Color.Knob.2.1"},
                                      {7, "Controls.Color.Knob.3.1"},
                                      {8, "Controls.Color.Knob.4.1"},
                                      {9, "Controls.Color.Knob.5.1"},
                                      {10, "Controls.Slider.Knob.1"}}) {
        stage.ControlOf("Gain").SetAttrsTagList(TagList({{IC_KnobStyle, style}})); // redisplays
        const QImage knob = ResDIB::PixmapOf(name, 1.0).toImage();
        const QImage seen = slider.grab().toImage();
        for (int x = -1; x <= 1; ++x) // the inlay tells the knobs apart
            QCOMPARE(seen.pixelColor(middle + QPoint(x, 0)).rgb(),
                     knob.pixelColor(knob.width() / 2 + x, knob.height() / 2).rgb());
    }
}

void SliderControlTest::ReadsAttributesAnew()
{
    const SliderStage stage({{"Gain", {{IAD_Default, 0.5}}}});
    SliderControl& control = stage.ControlOf("Gain");
    control.SetAttrsTagList(TagList({{IC_TickFreq, 7}, {SLCS_MidName, "half"}}));
    QCOMPARE(stage.SliderOf("Gain").TickCount(), 7.0);
    QCOMPARE(control.GetAttr(IC_TickFreq), int64(7));
    QCOMPARE(QString(control.GetAttrS(SLCS_MidName)), QString("half"));
    QCOMPARE(QString(control.GetAttrS(SLCS_LowName)), QString());
    // The input's own attributes are followed too; what the script said stays.
    stage.InputOf("Gain").SetAttrsTagList(TagList({{IAD_LowScale, -1.0}, {IC_Centred, 1}}));
    QCOMPARE(stage.SliderOf("Gain").MinValue(), -1.0);
    QVERIFY(stage.SliderOf("Gain").IsCentred());
    QCOMPARE(stage.SliderOf("Gain").Centre(), 0.0);
    QCOMPARE(stage.SliderOf("Gain").Value(), 0.5);
    QCOMPARE(stage.SliderOf("Gain").TickCount(), 7.0);
}

void SliderControlTest::OneDragOneEntry()
{
    const SliderStage stage({{"Gain", {{IAD_Default, 0.5}}}});
    CustomSlider& slider = stage.SliderOf("Gain");
    dragKnob(slider, {10, 20, 30, 25});
    QCOMPARE(stage.UndoEntries(), 0); // not yet
    const double dragged = stage.ValueOf("Gain");
    QVERIFY(dragged > 0.6);
    Pointer::Release(slider, {});
    QCOMPARE(stage.UndoEntries(), 1);
    QCOMPARE(stage.document->Undo().UndoText(), QString("Adjust Gain"));
    QCOMPARE(stage.document->Undo().Depth(), 0);
    QCOMPARE(stage.EditOf("Gain").GetValue(), dragged);
    stage.document->Undo().Undo();
    QCOMPARE(stage.ValueOf("Gain"), 0.5);
    QCOMPARE(slider.Value(), 0.5);
    QCOMPARE(stage.EditOf("Gain").text(), QString("0.5"));
}

void SliderControlTest::NothingChangedNoEntry()
{
    const SliderStage stage({{"Gain", {{IAD_Default, 0.123456}}}, {"Sum", {}}});
    CustomSlider& slider = stage.SliderOf("Gain");
    const QPointF knob = KnobOf(slider);
    Pointer::Press(slider, knob);
    Pointer::Move(slider, knob + QPointF(0, 3));
    Pointer::Release(slider, knob);
    QCOMPARE(stage.ValueOf("Gain"), 0.123456); // not rounded either
    dragKnob(slider, {30, 0});                 // there and back
    Pointer::Release(slider, knob);
    QCOMPARE(stage.ValueOf("Gain"), 0.123456);
    Pointer::Press(slider, knob, Qt::AltModifier); // is the default already
    Pointer::Release(slider, knob, Qt::AltModifier);
    // Driven by an expression, it can't be dragged away.
    stage.InputOf("Sum").SetExpression("0.25 + 0.5");
    const int entries = stage.UndoEntries();
    QSignalSpy problems(stage.page, &ControlWnd::Problem);
    dragKnob(stage.SliderOf("Sum"), {-30});
    QCOMPARE(stage.SliderOf("Sum").Value(), 0.75);
    Pointer::Release(stage.SliderOf("Sum"), {});
    QVERIFY(!problems.isEmpty());
    QCOMPARE(entries, 1); // the expression itself
    QCOMPARE(stage.UndoEntries(), entries);
    QCOMPARE(stage.document->Undo().Depth(), 0);
}

void SliderControlTest::RendersProxiesMeanwhile()
{
    const SliderStage stage({{"Gain", {{IAD_Default, 0.5}}}});
    CustomSlider& slider = stage.SliderOf("Gain");
    QSignalSpy full(stage.document.get(), &MarloxDoc::SyncRenderRequested);
    dragKnob(slider, {10});
    QVERIFY(stage.document->IsAutoProxy());
    QCOMPARE(full.count(), 0);
    Pointer::Release(slider, {});
    QVERIFY(!stage.document->IsAutoProxy());
    QCOMPARE(full.count(), 1);
    const SliderStage passive({{"Note", {{IA_Passive, 1}}}});
    dragKnob(passive.SliderOf("Note"), {10});
    QVERIFY(!passive.document->IsAutoProxy());
    Pointer::Release(passive.SliderOf("Note"), {});
}

void SliderControlTest::KeysAndWheelCloseTheirEntry()
{
    const SliderStage stage({{"Gain", {{IAD_Default, 0.5}}}});
    CustomSlider& slider = stage.SliderOf("Gain");
    slider.setFocus();
    for (int i = 0; i < 5; ++i) { // held down
        Pointer::Key(slider, QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier, i > 0);
        if (i < 4)
            Pointer::Key(slider, QEvent::KeyRelease, Qt::Key_Right, Qt::NoModifier, true);
    }
    QCOMPARE(stage.UndoEntries(), 0);
    Pointer::Key(slider, QEvent::KeyRelease, Qt::Key_Right);
    QCOMPARE(stage.UndoEntries(), 1);
    QCOMPARE(stage.ValueOf("Gain"), 0.55);
    Pointer::Key(slider, QEvent::KeyPress, Qt::Key_Home);
    Pointer::Key(slider, QEvent::KeyRelease, Qt::Key_Home);
    Pointer::Key(slider, QEvent::KeyPress, Qt::Key_Home); // is there already
    Pointer::Key(slider, QEvent::KeyRelease, Qt::Key_Home);
    QCOMPARE(stage.UndoEntries(), 2);
    Pointer::Wheel(slider, 120);
    Pointer::Wheel(slider, 120);
    QCOMPARE(stage.UndoEntries(), 2);
    QTRY_COMPARE(stage.UndoEntries(), 3);
    QCOMPARE(stage.ValueOf("Gain"), 0.02);
    Pointer::Wheel(slider, 120);
    dragKnob(slider, {40}); // ends the wheel's entry and begins its own
    Pointer::Release(slider, {});
    QCOMPARE(stage.UndoEntries(), 5);
    slider.setProperty("value", 0.9); // a script: complete by itself
    QCOMPARE(stage.UndoEntries(), 6);
    QCOMPARE(stage.document->Undo().UndoText(), QString("Adjust Gain"));
}

void SliderControlTest::SmallChangesWriteNothing()
{
    const SliderStage stage({{"Gain", {{IAD_Default, 0.5}}}});
    SliderControl& control = stage.ControlOf("Gain");
    CustomSlider& slider = stage.SliderOf("Gain");
    slider.SetValue(0.5 + 0.4e-6); // less than half the display step
    QCOMPARE(stage.UndoEntries(), 0);
    QCOMPARE(stage.ValueOf("Gain"), 0.5);
    QCOMPARE(slider.Value(), 0.5); // redisplayed
    slider.SetValue(0.5 + 0.6e-6);
    QCOMPARE(stage.ValueOf("Gain"), 0.500001);
    // The same from the host.
    control.NotifyChanged(&stage.InputOf("Gain"), MakeRef<Number>(0.5000014).Get(), nullptr);
    QCOMPARE(control.ShownValue(), 0.500001);
    control.NotifyChanged(&stage.InputOf("Gain"), nullptr, nullptr);
    QCOMPARE(control.ShownValue(), 0.500001);
}

void SliderControlTest::TimesAreNotRounded()
{
    const SliderStage stage({{"Start", {{IC_Time, 1}, {IAD_HighScale, 100.0}}},
                             {"Count", {{IA_Integer, 1}, {IAD_HighScale, 100.0}}}});
    stage.ControlOf("Start").OnValueChanged(12.3456789);
    QCOMPARE(stage.ValueOf("Start"), 12.3456789);
    stage.ControlOf("Count").OnValueChanged(12.5);
    QCOMPARE(stage.ValueOf("Count"), 13.0);
}

void SliderControlTest::ShowsItsOwnInputOnly()
{
    const SliderStage stage({{"Gain", {{IAD_Default, 0.5}}},
                             {"Twin", {{IAS_SharedWith, "Gain"}, {IAD_HighScale, 9.0}}}});
    SliderControl& control = stage.ControlOf("Gain");
    QCOMPARE(&stage.ControlOf("Twin"), &control);
    QCOMPARE(control.Inputs().size(), std::size_t(2));
    QCOMPARE(control.findChild<ElideLabel*>("label")->Text(), QString("Gain"));
    QCOMPARE(stage.SliderOf("Gain").MaxValue(), 1.0);
    stage.InputOf("Twin").SetValue(*MakeRef<Number>(0.75), 0.0);
    QCOMPARE(control.ShownValue(), 0.5);
    stage.SliderOf("Gain").SetValue(0.25);
    QCOMPARE(stage.ValueOf("Gain"), 0.25);
    QCOMPARE(stage.ValueOf("Twin"), 0.75);
}

void SliderControlTest::TypesNumbersAndExpressions()
{
    const SliderStage stage({{"Gain", {{IAD_Maximum, 10.0}, {IAD_HighScale, 1.0}}}});
    TimeCodeEdit& edit = stage.EditOf("Gain");
    type(edit, "1/3");
    QCOMPARE(stage.ValueOf("Gain"), 0.333333);
    QCOMPARE(stage.UndoEntries(), 1);
    type(edit, "4"); // beyond the slider's end
    QCOMPARE(stage.ValueOf("Gain"), 4.0);
    QCOMPARE(stage.SliderOf("Gain").KnobPixel(), stage.SliderOf("Gain").PixelHigh());
    type(edit, "99");
    QCOMPARE(stage.ValueOf("Gain"), 10.0);
    type(edit, "gian * 2"); // a slip: no expression comes of it
    QVERIFY(!stage.InputOf("Gain").HasExpression() && edit.IsUnreadable());
    QCOMPARE(edit.text(), QString("gian * 2"));
    QCOMPARE(stage.UndoEntries(), 3);
    type(edit, "time / 10 + 0.1");
    QCOMPARE(stage.InputOf("Gain").GetExpression(), std::string("time / 10 + 0.1"));
    QCOMPARE(stage.UndoEntries(), 4);
    stage.document->SetCurrentTime(3.0);
    QCOMPARE(stage.SliderOf("Gain").Value(), 0.4);
    // Its line opens in the layout's place for it.
    auto* line = stage.ControlOf("Gain").findChild<QLineEdit*>("expression");
    QVERIFY(line && line->isVisible());
    QCOMPARE(line->text(), QString("time / 10 + 0.1"));
}

void SliderControlTest::DragsInTheEdit()
{
    const SliderStage stage({{"Gain", {{IAD_Default, 0.5}}}});
    TimeCodeEdit& edit = stage.EditOf("Gain");
    CustomSlider& slider = stage.SliderOf("Gain");
    const QPointF start(20, 10);
    Pointer::Press(edit, start);
    Pointer::Move(edit, start + QPointF(4, 0)); // the drag begins here
    Pointer::Move(edit, start + QPointF(104, 0));
    QVERIFY(edit.IsDragging() && slider.IsDragging());
    QVERIFY(stage.document->IsAutoProxy());
    QCOMPARE(stage.ValueOf("Gain"), 0.6);
    Pointer::Move(edit, start + QPointF(2004, 0));
    Pointer::Move(edit, start + QPointF(1904, 0)); // back: it acts at once
    QCOMPARE(stage.ValueOf("Gain"), 0.9);
    QCOMPARE(stage.UndoEntries(), 0);
    Pointer::Release(edit, start + QPointF(1904, 0));
    QVERIFY(!slider.IsDragging() && !stage.document->IsAutoProxy());
    QCOMPARE(stage.UndoEntries(), 1);
    QCOMPARE(stage.document->Undo().UndoText(), QString("Adjust Gain"));
}

void SliderControlTest::ResetsBeyondTheEnds()
{
    const SliderStage stage({{"Gain", {{IAD_Default, 1.0}}}});
    CustomSlider& slider = stage.SliderOf("Gain");
    type(stage.EditOf("Gain"), "5");
    Pointer::Press(slider, KnobOf(slider)); // the knob is at the default's pixel already
    Pointer::Release(slider, KnobOf(slider));
    QCOMPARE(stage.ValueOf("Gain"), 5.0);
    Pointer::Press(slider, KnobOf(slider), Qt::AltModifier);
    Pointer::Release(slider, KnobOf(slider), Qt::AltModifier);
    QCOMPARE(stage.ValueOf("Gain"), 1.0);
    QCOMPARE(stage.UndoEntries(), 2);
}

void SliderControlTest::FollowsUndoAndTime()
{
    const SliderStage stage({{"Gain", {{IAD_Default, 0.5}}}});
    Input& input = stage.InputOf("Gain");
    CustomSlider& slider = stage.SliderOf("Gain");
    input.AddKey(0.0);
    stage.document->SetCurrentTime(10.0);
    dragKnob(slider, {200}); // a key at the current time
    Pointer::Release(slider, {});
    QCOMPARE(input.GetNumber(10.0), 1.0);
    QCOMPARE(input.GetNumber(0.0), 0.5);
    stage.document->SetCurrentTime(0.0);
    QCOMPARE(slider.Value(), 0.5);
    QCOMPARE(stage.EditOf("Gain").GetValue(), 0.5);
    stage.document->Undo().Undo();
    QVERIFY(!input.IsKeyAt(10.0));
}

void SliderControlTest::KeepsTheValueOfALostConnection()
{
    const SliderStage stage({{"Gain", {{IAD_Default, 0.5}}}, {"Twin", {{IAS_SharedWith, "Gain"}}}});
    Input& input = stage.InputOf("Gain");
    input.AddKey(0.0);
    input.SetValue(*MakeRef<Number>(0.75), 0.0);
    stage.ControlOf("Gain").OnDisconnect(&input, nullptr);
    QVERIFY(!input.IsAnimated());
    QCOMPARE(stage.ValueOf("Gain"), 0.75);
    stage.ControlOf("Twin").OnDisconnect(&stage.InputOf("Twin"), nullptr);
    QCOMPARE(stage.ValueOf("Twin"), 0.0); // another's value is none of its business
}

void SliderControlTest::LostGesturesEndCleanly_data()
{
    QTest::addColumn<Ending>("end");
    const auto row = [](const char* name, Ending end) { QTest::newRow(name) << end; };
    row("focus", [](SliderStage& stage, CustomSlider&) { stage.EditOf("Gain").setFocus(); });
    row("hidden", [](SliderStage&, CustomSlider& slider) { slider.hide(); });
    row("page hidden", [](SliderStage& stage, CustomSlider&) { stage.page->hide(); });
    row("disabled", [](SliderStage& stage, CustomSlider&) {
        stage.ControlOf("Gain").SetAttrsTagList(TagList({{IC_Disabled, 1}}));
    });
    row("tool locked", [](SliderStage& stage, CustomSlider&) { stage.tool->SetLocked(true); });
    row("page closed", [](SliderStage& stage, CustomSlider&) { stage.page->SetOperator(nullptr); });
    row("dialog", [](SliderStage&, CustomSlider& slider) {
        QEvent blocked(QEvent::WindowBlocked);
        QCoreApplication::sendEvent(&slider, &blocked);
    });
    row("window inactive", [](SliderStage&, CustomSlider& slider) {
        QEvent inactive(QEvent::WindowDeactivate);
        QCoreApplication::sendEvent(&slider, &inactive);
    });
    row("deleted", [](SliderStage& stage, CustomSlider&) { stage.window.reset(); });
}

void SliderControlTest::LostGesturesEndCleanly()
{
    QFETCH(Ending, end);
    SliderStage stage({{"Gain", {{IAD_Default, 0.5}}}});
    dragKnob(stage.SliderOf("Gain"), {10, 40});
    const double dragged = stage.ValueOf("Gain");
    end(stage, stage.SliderOf("Gain"));
    QCOMPARE(stage.document->Undo().Depth(), 0);
    QVERIFY(!stage.document->IsAutoProxy());
    QCOMPARE(stage.ValueOf("Gain"), dragged);
    QCOMPARE(stage.UndoEntries() - (stage.tool->IsLocked() ? 1 : 0), 1);
    QCOMPARE(stage.document->Undo().Stack().text(0), QString("Adjust Gain"));
}

void SliderControlTest::SurvivesItsEndInMidDrag()
{
    SliderStage stage({{"Gain", {{IAD_Default, 0.5}}}});
    // Whoever hears of the first value removes the tool.
    connect(stage.document.get(), &MarloxDoc::InputChanged, stage.document.get(), [&stage] {
        if (Operator* tool = std::exchange(stage.tool, nullptr))
            stage.document->RemoveTool(*tool);
    });
    const QPointer<CustomSlider> slider(&stage.SliderOf("Gain"));
    Pointer::Press(*slider, KnobOf(*slider));
    Pointer::Move(*slider, KnobOf(*slider) + QPointF(30, 0));
    QCOMPARE(stage.page->GetOperator(), nullptr);
    QCoreApplication::processEvents();
    QVERIFY(!slider);
    QCOMPARE(stage.document->Undo().Depth(), 0);
    QVERIFY(!stage.document->IsAutoProxy());
}

void SliderControlTest::StandsRandomUse()
{
    const SliderStage stage(
        {{"Gain", {{IAD_Default, 0.5}, {IAD_Minimum, -1.0}, {IAD_Maximum, 3.0}}},
         {"Count", {{IA_Integer, 1}, {IAD_HighScale, 12.0}}},
         {"Balance", {{IAD_LowScale, -1.0}, {IAD_Default, 0.0}}}});
    std::mt19937 random(20240607);
    const auto pick = [&random](int count) { return int(random() % unsigned(count)); };
    const char* const ids[] = {"Gain", "Count", "Balance"};
    const int keys[] = {Qt::Key_Home,   Qt::Key_End,      Qt::Key_Left,    Qt::Key_Right,
                        Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Control, Qt::Key_Shift};
    const Qt::KeyboardModifiers modifiers[] = {Qt::NoModifier, Qt::NoModifier, Qt::ControlModifier,
                                               Qt::ShiftModifier, Qt::AltModifier};
    const char* const texts[] = {"0.3", "1/0", "+10%", "abc", "7", "-4", "2,5", "time", "", "*2"};
    const Qt::Key editKeys[] = {Qt::Key_Escape, Qt::Key_Return, Qt::Key_Up, Qt::Key_Down};
    const auto states = [&] {
        std::vector<Input::State> all;
        for (const char* id : ids)
            all.push_back(stage.InputOf(id).GetState());
        return all;
    };
    const auto untouched = states();
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; clock.elapsed() < 3000 || i < 500; ++i) {
        const char* id = ids[pick(3)];
        CustomSlider& slider = stage.SliderOf(id);
        TimeCodeEdit& edit = stage.EditOf(id);
        QWidget& widget = pick(4) ? static_cast<QWidget&>(slider) : edit;
        const QPointF at(pick(widget.width() + 40) - 20, pick(widget.height() + 20) - 10);
        const Qt::KeyboardModifiers held = modifiers[pick(5)];
        switch (pick(12)) {
        case 0:
        case 1:
            Pointer::Press(widget, pick(2) ? KnobOf(slider) : at, held);
            break;
        case 2:
        case 3:
        case 4:
            Pointer::Move(widget, at, held, pick(8) ? Qt::LeftButton : Qt::NoButton);
            break;
        case 5:
        case 6:
            Pointer::Release(widget, at, held);
            break;
        case 7:
            Pointer::Key(slider, pick(2) ? QEvent::KeyPress : QEvent::KeyRelease, keys[pick(8)],
                         held);
            break;
        case 8:
            Pointer::Wheel(slider, pick(400) - 200, held);
            break;
        case 9:
            type(edit, texts[pick(10)]);
            break;
        case 10:
            QTest::keyClick(&edit, editKeys[pick(4)]);
            break;
        default:
            if (pick(3) == 0)
                stage.document->Undo().Undo();
            else if (pick(4) == 0)
                stage.InputOf(id).SetExpression({});
            else if (pick(4) == 0)
                reopenPage(stage);
            else
                QTest::qWait(pick(8));
            break;
        }
        QVERIFY(stage.ValueOf("Gain") >= -1.0 && stage.ValueOf("Gain") <= 3.0);
        QCOMPARE(std::round(stage.ValueOf("Count")), stage.ValueOf("Count"));
    }
    QWidget elsewhere;
    elsewhere.show();
    elsewhere.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&elsewhere));
    for (const char* id : ids) {
        QVERIFY(!stage.SliderOf(id).InGesture());
        QCOMPARE(stage.ControlOf(id).UndoDepth(), 0);
    }
    QCOMPARE(stage.document->Undo().Depth(), 0);
    QVERIFY(!stage.document->IsAutoProxy());
    // Every change is in the history, and there once.
    const auto reached = states();
    QVERIFY(reached != untouched && stage.UndoEntries() > 10);
    int undone = 0;
    for (; stage.document->Undo().CanUndo(); ++undone)
        stage.document->Undo().Undo();
    QVERIFY(states() == untouched);
    QCOMPARE(stage.SliderOf("Gain").Value(), 0.5);
    while (undone-- > 0) // not further: the last that happened may have been an undo
        stage.document->Undo().Redo();
    QVERIFY(states() == reached);
}

QTEST_MAIN(SliderControlTest)
#include "slider_control_test.moc"
