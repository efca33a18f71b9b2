#include "controls/inspector/SliderControl.h"

#include "plugin/InspectorStage.h"
#include "system/resources/Resources.h"
#include "system/widgets/ElideLabel.h"

#include <cmath>
#include <functional>

#include <QLineEdit>
#include <QSignalSpy>
#include <QtTest>

using namespace Marlox;

namespace {

const std::vector<StagedInput> gain = {{"Gain", {{IAD_Default, 0.5}}}};

SliderControl& controlOf(const InspectorStage& stage, const char* id = nullptr)
{
    return stage.ControlOf<SliderControl>(id);
}

void type(TimeCodeEdit& edit, const QString& text)
{
    edit.setFocus();
    edit.setText(text);
    edit.Commit();
}

} // namespace

/// The slider control on an inspector page, from the tags of its input to the undo history.
class SliderControlTest : public QObject {
    Q_OBJECT
private slots:
    void ReadsRanges();
    void KeepsToTheGrid();
    void BuildsItsWidgets();
    void ShowsRangeNames();
    void PicksKnobs();
    void ReadsAttributesAnew();
    void OneDragOneEntry();
    void NothingChangedNoEntry();
    void KeysAndWheelCloseTheirEntry();
    void SmallChangesWriteNothing();
    void ShowsItsOwnInputOnly();
    void TypesNumbersAndExpressions();
    void DragsInTheEdit();
    void LostGesturesEndCleanly();
    void SurvivesItsEndInMidDrag();
};

void SliderControlTest::ReadsRanges()
{
    const struct {
        const char* what;
        double low, high, plainStep, displayStep;
        int shownDecimals;
        TagList tags;
    } rows[] = {
        {"nothing given", 0.0, 1.0, 0.01, 1e-6, 4, {}},
        {"scale", -2.0, 48.0, 0.1, 1e-5, 3, {{IAD_LowScale, -2.0}, {IAD_HighScale, 48.0}}},
        {"bounds", 1.0, 300.0, 1.0, 1e-4, 2, {{IAD_Minimum, 1.0}, {IAD_Maximum, 300.0}}},
        {"beyond", 0.0, 1.0, 0.01, 1e-6, 4, {{IAD_Minimum, 0.0}, {IAD_LowScale, -5.0}}},
        {"low above 1", 20.0, 21.0, 0.01, 1e-6, 4, {{IAD_Minimum, 20.0}}},
        {"reversed", 1.0, 3.0, 0.01, 1e-6, 4, {{IAD_LowScale, 3.0}, {IAD_HighScale, 1.0}}},
        {"endless", 0.0, 1.0, 0.01, 1e-6, 4, {{IAD_LowScale, -1e308}, {IAD_HighScale, 1e308}}},
        {"wide", 0.0, 1e6, 1e4, 1e-4, 2, {{IAD_HighScale, 1e6}}},
        {"tiny", 0.0, 1e-9, 1e-11, 1e-12, 12, {{IAD_HighScale, 1e-9}}},
        {"whole", 0.0, 255.0, 1.0, 1.0, 0, {{IA_Integer, 1}, {IAD_HighScale, 255.0}}},
        {"few whole", 0.0, 10.0, 1.0, 1.0, 0, {{IA_Integer, 1}, {IAD_HighScale, 10.0}}},
        {"frames", 0, 100, 1, 1e-4, 2, {{IA_Integer, 1}, {IC_Time, 1}, {IAD_HighScale, 100.0}}},
        {"own step", 0.0, 1.0, 0.25, 1e-6, 3, {{ICD_Step, 0.25}}},
    };
    for (const auto& row : rows) {
        const SliderSettings read(row.tags);
        QVERIFY2(read.range.low == row.low && read.range.high == row.high, row.what);
        QVERIFY2(qFuzzyCompare(read.plainStep, row.plainStep), row.what);
        QVERIFY2(qFuzzyCompare(read.displayStep, row.displayStep), row.what);
        QVERIFY2(qFuzzyCompare(read.fineStep, read.plainStep / 10), row.what);
        QVERIFY2(read.shownDecimals == row.shownDecimals, row.what);
    }
}

void SliderControlTest::KeepsToTheGrid()
{
    const SliderSettings unit{TagList()};
    QCOMPARE(unit.OnGrid(0.1234564), 0.123456);
    QCOMPARE(unit.OnGrid(-0.1234566), -0.123457);
    const SliderSettings whole(TagList({{IA_Integer, 1}}));
    QCOMPARE(whole.OnGrid(2.5), 3.0);
    QCOMPARE(whole.OnGrid(-2.5), -2.0); // halves upwards, unlike a drag's rounding
    // What is moved or typed is kept to it, times are not.
    const InspectorStage stage({{"Start", {{IC_Time, 1}, {IAD_HighScale, 100.0}}},
                                {"Count", {{IA_Integer, 1}, {IAD_HighScale, 100.0}}}});
    controlOf(stage, "Start").OnValueChanged(12.3456789);
    QCOMPARE(stage.ValueOf("Start"), 12.3456789);
    controlOf(stage, "Count").OnValueChanged(12.5);
    QCOMPARE(stage.ValueOf("Count"), 13.0);
}

void SliderControlTest::BuildsItsWidgets()
{
    const InspectorStage stage({{"Gain",
                                 {{IAD_Default, 0.25},
                                  {IAD_HighScale, 4.0},
                                  {IAD_Maximum, 10.0},
                                  {IC_TickFreq, 5},
                                  {IAS_Help, "How bright."},
                                  {IC_TabStop, 0}}}});
    const SliderControl& control = controlOf(stage);
    for (const char* name : {"slider", "edit", "label", "minlabel", "midlabel", "maxlabel"}) {
        const LayoutObj* object = control.FindLayoutObj(name);
        QVERIFY2(object && object->Widget() == stage.PartOf<QWidget>(name), name);
    }
    const CustomSlider& slider = stage.SliderOf();
    TimeCodeEdit& edit = stage.EditOf();
    const auto* label = stage.PartOf<ElideLabel>("label");
    QCOMPARE(label->Text(), QString("Gain"));
    QCOMPARE(label->focusProxy(), &slider);
    QVERIFY(label->isVisible() && slider.isVisible() && edit.isVisible() && control.HasValue());
    QVERIFY(slider.Value() == 0.25 && slider.DefaultValue() == 0.25);
    QVERIFY(slider.MaxValue() == 4.0 && edit.Maximum() == 10.0 && slider.TickCount() == 5.0);
    QVERIFY(slider.toolTip().startsWith("How bright.\n") && slider.toolTip().contains("Alt+click"));
    QCOMPARE(slider.accessibleName(), QString("Gain"));
    QCOMPARE(edit.text(), QString("0.25"));
    QVERIFY(!(edit.focusPolicy() & Qt::TabFocus));
    QCOMPARE(stage.ControlOf().GetInputFrom(&edit, nullptr), &stage.InputOf());
}

void SliderControlTest::ShowsRangeNames()
{
    const InspectorStage stage({{"Gain", {{SLCS_HighName, "Hard"}}}});
    const auto shown = [&stage] {
        QStringList texts;
        for (const char* name : {"minlabel", "midlabel", "maxlabel"}) {
            const auto* label = stage.PartOf<ElideLabel>(name);
            texts += label->isVisible() ? label->Text() : QString("-");
        }
        return texts.join(' ');
    };
    const auto name = [&stage](u32 tag, const char* text) { // by a script
        stage.ControlOf().SetAttrsTagList(TagList({{tag, text}}));
    };
    const CustomSlider& slider = stage.SliderOf();
    QCOMPARE(shown(), QString("- - Hard"));
    name(SLCS_LowName, "Soft");
    QCOMPARE(shown(), QString("Soft - Hard"));
    QVERIFY(!slider.testAttribute(Qt::WA_OpaquePaintEvent));
    name(SLCS_LowName, "");
    name(SLCS_HighName, "");
    QCOMPARE(shown(), QString("- - -"));
    QVERIFY(slider.testAttribute(Qt::WA_OpaquePaintEvent));
}

void SliderControlTest::PicksKnobs()
{
    const InspectorStage stage({{"Gain", {{IC_KnobStyle, 6}}}});
    CustomSlider& slider = stage.SliderOf();
    const QPoint middle(int(slider.KnobPixel()), slider.height() / 2);
    int style = 5;
    for (const char* name : {"Slider.Knob.1", "Color.Knob.2.1", "Color.Knob.3.1", "Color.Knob.4.1",
                             "Color.Knob.5.1", "Slider.Knob.1"}) {
        stage.ControlOf().SetAttrsTagList(TagList({{IC_KnobStyle, style++}})); // redisplays
        const QImage knob = ResDIB::PixmapOf(QByteArray("Controls.") + name, 1.0).toImage();
        const QImage seen = slider.grab().toImage();
        for (int x = -1; x <= 1; ++x) // the inlay tells the knobs apart
            QCOMPARE(seen.pixelColor(middle + QPoint(x, 0)).rgb(),
                     knob.pixelColor(knob.width() / 2 + x, knob.height() / 2).rgb());
    }
}

void SliderControlTest::ReadsAttributesAnew()
{
    const InspectorStage stage(gain);
    InputControl& control = stage.ControlOf();
    const CustomSlider& slider = stage.SliderOf();
    control.SetAttrsTagList(TagList({{IC_TickFreq, 7}, {SLCS_MidName, "half"}}));
    QCOMPARE(slider.TickCount(), 7.0);
    QCOMPARE(control.GetAttr(IC_TickFreq), int64(7));
    QCOMPARE(QString(control.GetAttrS(SLCS_MidName)), QString("half"));
    QCOMPARE(QString(control.GetAttrS(SLCS_LowName)), QString());
    // The input's own attributes are followed too; what the script said stays.
    stage.InputOf().SetAttrsTagList(TagList({{IAD_LowScale, -1.0}, {IC_Centred, 1}}));
    QVERIFY(slider.MinValue() == -1.0 && slider.IsCentred() && slider.Centre() == 0.0);
    QVERIFY(slider.Value() == 0.5 && slider.TickCount() == 7.0);
}

void SliderControlTest::OneDragOneEntry()
{
    const InspectorStage stage(gain);
    CustomSlider& slider = stage.SliderOf();
    QSignalSpy full(stage.document.get(), &MarloxDoc::SyncRenderRequested);
    DragKnob(slider, {10, 20, 30, 25});
    QVERIFY(stage.document->IsAutoProxy());
    QCOMPARE(stage.UndoEntries() + full.count(), 0); // not yet
    const double dragged = stage.ValueOf();
    QVERIFY(dragged > 0.6);
    Pointer::Release(slider, {});
    QCOMPARE(stage.UndoTexts(), QStringList("Adjust Gain"));
    QCOMPARE(full.count(), 1);
    QVERIFY(stage.IsIdle());
    QCOMPARE(stage.EditOf().GetValue(), dragged);
    stage.document->Undo().Undo();
    QVERIFY(stage.ValueOf() == 0.5 && slider.Value() == 0.5);
    QCOMPARE(stage.EditOf().text(), QString("0.5"));
    const InspectorStage passive({{"Note", {{IA_Passive, 1}}}});
    DragKnob(passive.SliderOf(), {10});
    QVERIFY(!passive.document->IsAutoProxy() && passive.ValueOf() != 0.0);
    Pointer::Stroke(passive.SliderOf(), Qt::Key_Escape); // without undo's help
    QCOMPARE(passive.ValueOf(), 0.0);
}

void SliderControlTest::NothingChangedNoEntry()
{
    const InspectorStage stage({{"Gain", {{IAD_Default, 0.123456}}}, {"Sum", {}}});
    CustomSlider& slider = stage.SliderOf();
    const QPointF knob = KnobOf(slider);
    Pointer::Press(slider, knob);
    Pointer::Move(slider, knob + QPointF(0, 3));
    Pointer::Release(slider, knob);
    QCOMPARE(stage.Outcome(), QString("0.123456 (0)")); // not rounded either
    DragKnob(slider, {30, 0});                          // there and back
    Pointer::Release(slider, knob);
    Pointer::Click(slider, knob, Qt::AltModifier); // is the default already
    DragKnob(slider, {30});
    QVERIFY(Pointer::IsWanted(slider, Qt::Key_Escape));
    Pointer::Stroke(slider, Qt::Key_Escape); // gives it up
    QVERIFY(slider.Value() == 0.123456 && stage.IsIdle());
    Pointer::Move(slider, knob + QPointF(50, 0));
    QVERIFY(!Pointer::IsWanted(slider, Qt::Key_Escape));
    QCOMPARE(stage.Outcome(), QString("0.123456 (0)"));
    // Driven by an expression, it can't be dragged away.
    stage.InputOf("Sum").SetExpression("0.25 + 0.5");
    QSignalSpy problems(stage.page, &ControlWnd::Problem);
    DragKnob(stage.SliderOf("Sum"), {-30});
    QCOMPARE(stage.SliderOf("Sum").Value(), 0.75);
    Pointer::Release(stage.SliderOf("Sum"), {});
    QVERIFY(!problems.isEmpty() && stage.IsIdle());
    QCOMPARE(stage.UndoEntries(), 1); // the expression itself
}

void SliderControlTest::KeysAndWheelCloseTheirEntry()
{
    const InspectorStage stage(gain);
    CustomSlider& slider = stage.SliderOf();
    slider.setFocus();
    for (int i = 0; i < 5; ++i) { // held down
        Pointer::Key(slider, QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier, i > 0);
        if (i < 4)
            Pointer::Key(slider, QEvent::KeyRelease, Qt::Key_Right, Qt::NoModifier, true);
    }
    QCOMPARE(stage.Outcome(), QString("0.55 (0)"));
    Pointer::Key(slider, QEvent::KeyRelease, Qt::Key_Right);
    QCOMPARE(stage.Outcome(), QString("0.55 (1)"));
    Pointer::Stroke(slider, Qt::Key_Home);
    Pointer::Stroke(slider, Qt::Key_Home); // is there already
    Pointer::Wheel(slider, 120);
    Pointer::Wheel(slider, 120);
    QCOMPARE(stage.Outcome(), QString("0.02 (2)"));
    QTRY_COMPARE(stage.Outcome(), QString("0.02 (3)"));
    Pointer::Wheel(slider, 120);
    DragKnob(slider, {40}); // ends the wheel's entry and begins its own
    Pointer::Release(slider, {});
    QCOMPARE(stage.UndoEntries(), 5);
    slider.setProperty("value", 0.9); // a script: complete by itself
    QCOMPARE(stage.Outcome(), QString("0.9 (6)"));
}

void SliderControlTest::SmallChangesWriteNothing()
{
    const InspectorStage stage(gain);
    SliderControl& control = controlOf(stage);
    CustomSlider& slider = stage.SliderOf();
    slider.SetValue(0.5 + 0.4e-6); // less than half the display step
    QCOMPARE(stage.Outcome(), QString("0.5 (0)"));
    QCOMPARE(slider.Value(), 0.5); // redisplayed
    slider.SetValue(0.5 + 0.6e-6);
    QCOMPARE(stage.Outcome(), QString("0.500001 (1)"));
    // The same from the host.
    for (const Ref<Parameter>& told :
         {Ref<Parameter>(MakeRef<Number>(0.5000014)), Ref<Parameter>()}) {
        control.NotifyChanged(&stage.InputOf(), told.Get(), nullptr);
        QCOMPARE(control.ShownValue(), 0.500001);
    }
}

void SliderControlTest::ShowsItsOwnInputOnly()
{
    const InspectorStage stage({{"Gain", {{IAD_Default, 0.5}}},
                                {"Twin", {{IAS_SharedWith, "Gain"}, {IAD_HighScale, 9.0}}}});
    SliderControl& control = controlOf(stage);
    Input& twin = stage.InputOf("Twin");
    QCOMPARE(&controlOf(stage, "Twin"), &control);
    QCOMPARE(control.Inputs().size(), std::size_t(2));
    QCOMPARE(stage.PartOf<ElideLabel>("label")->Text(), QString("Gain"));
    QCOMPARE(stage.SliderOf().MaxValue(), 1.0);
    twin.SetValue(Number(0.75), 0.0);
    QCOMPARE(control.ShownValue(), 0.5);
    stage.SliderOf().SetValue(0.25);
    QCOMPARE(stage.ValueOf(), 0.25);
    QCOMPARE(stage.ValueOf("Twin"), 0.75);
    // What came through a lost connection stays; another's value is none of its business.
    stage.InputOf().AddKey(0.0);
    control.OnDisconnect(&twin, nullptr);
    QCOMPARE(stage.ValueOf("Twin"), 0.75);
    QVERIFY(stage.InputOf().IsAnimated());
    control.OnDisconnect(&stage.InputOf(), nullptr);
    QCOMPARE(stage.ValueOf(), 0.25);
    QVERIFY(!stage.InputOf().IsAnimated());
}

void SliderControlTest::TypesNumbersAndExpressions()
{
    const InspectorStage stage(
        {{"Gain", {{IAD_Maximum, 10.0}, {IAD_HighScale, 1.0}, {IAD_Default, 1.0}}}});
    TimeCodeEdit& edit = stage.EditOf();
    CustomSlider& slider = stage.SliderOf();
    for (const auto& [text, outcome] : {std::pair{"1/3", "0.333333 (1)"},
                                        {"4", "4 (2)"}, // beyond the slider's end
                                        {"99", "10 (3)"}}) {
        type(edit, text);
        QCOMPARE(stage.Outcome(), QString(outcome));
    }
    QCOMPARE(slider.KnobPixel(), slider.PixelHigh());
    type(edit, "gian * 2"); // a slip: no expression comes of it
    QVERIFY(!stage.InputOf().HasExpression() && edit.IsUnreadable());
    QCOMPARE(edit.text(), QString("gian * 2"));
    Pointer::Click(slider, KnobOf(slider)); // the knob is at the default's pixel already
    QCOMPARE(stage.Outcome(), QString("10 (3)"));
    Pointer::Click(slider, KnobOf(slider), Qt::AltModifier);
    QCOMPARE(stage.Outcome(), QString("1 (4)"));
    type(edit, "time / 10 + 0.1");
    QCOMPARE(stage.InputOf().GetExpression(), std::string("time / 10 + 0.1"));
    QCOMPARE(stage.UndoEntries(), 5);
    stage.document->SetCurrentTime(3.0);
    QCOMPARE(slider.Value(), 0.4);
    // Its line opens in the layout's place for it.
    const auto* line = stage.PartOf<QLineEdit>("expression");
    QVERIFY(line && line->isVisible());
    QCOMPARE(line->text(), QString("time / 10 + 0.1"));
}

void SliderControlTest::DragsInTheEdit()
{
    const InspectorStage stage(gain);
    TimeCodeEdit& edit = stage.EditOf();
    const auto move = [&edit](int x) { Pointer::Move(edit, {20.0 + x, 10.0}); };
    Pointer::Press(edit, {20, 10});
    move(4); // the drag begins here
    move(104);
    QVERIFY(edit.IsDragging() && stage.SliderOf().IsDragging() && stage.document->IsAutoProxy());
    QCOMPARE(stage.ValueOf(), 0.6);
    move(2004);
    move(1904); // back: it acts at once
    QCOMPARE(stage.Outcome(), QString("0.9 (0)"));
    Pointer::Release(edit, {});
    QVERIFY(!stage.SliderOf().IsDragging() && stage.IsIdle());
    QCOMPARE(stage.UndoTexts(), QStringList("Adjust Gain"));
}

void SliderControlTest::LostGesturesEndCleanly()
{
    const auto send = [](CustomSlider& slider, QEvent::Type type) {
        QEvent event(type);
        QCoreApplication::sendEvent(&slider, &event);
    };
    const struct {
        const char* what;
        std::function<void(InspectorStage& stage, CustomSlider& slider)> end;
    } rows[] = {
        {"focus", [](auto& stage, auto&) { stage.EditOf().setFocus(); }},
        {"hidden", [](auto&, auto& slider) { slider.hide(); }},
        {"page hidden", [](auto& stage, auto&) { stage.page->hide(); }},
        {"disabled",
         [](auto& stage, auto&) {
             stage.ControlOf().SetAttrsTagList(TagList({{IC_Disabled, 1}}));
         }},
        {"tool locked", [](auto& stage, auto&) { stage.tool->SetLocked(true); }},
        {"page closed", [](auto& stage, auto&) { stage.page->SetOperator(nullptr); }},
        {"dialog", [&](auto&, auto& slider) { send(slider, QEvent::WindowBlocked); }},
        {"window inactive", [&](auto&, auto& slider) { send(slider, QEvent::WindowDeactivate); }},
        {"deleted", [](auto& stage, auto&) { stage.window.reset(); }},
    };
    for (const auto& [what, end] : rows) {
        InspectorStage stage(gain);
        DragKnob(stage.SliderOf(), {10, 40});
        const double dragged = stage.ValueOf();
        end(stage, stage.SliderOf());
        QVERIFY2(stage.IsIdle() && stage.ValueOf() == dragged && dragged > 0.6, what);
        QVERIFY2(stage.UndoTexts().value(0) == "Adjust Gain", what);
        QVERIFY2(stage.UndoEntries() == (stage.tool->IsLocked() ? 2 : 1), what);
    }
}

void SliderControlTest::SurvivesItsEndInMidDrag()
{
    InspectorStage stage(gain);
    // Whoever hears of the first value removes the tool.
    connect(stage.document.get(), &MarloxDoc::InputChanged, stage.document.get(), [&stage] {
        if (Operator* tool = std::exchange(stage.tool, nullptr))
            stage.document->RemoveTool(*tool);
    });
    const QPointer<CustomSlider> slider(&stage.SliderOf());
    DragKnob(*slider, {30});
    QCOMPARE(stage.page->GetOperator(), nullptr);
    QCoreApplication::processEvents();
    QVERIFY(!slider && stage.IsIdle());
}

QTEST_MAIN(SliderControlTest)
#include "slider_control_test.moc"
