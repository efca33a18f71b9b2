#include "plugin/InspectorStage.h"

#include <cmath>
#include <random>

#include <QtTest>

using namespace Marlox;

namespace {

/// Perhaps in the middle of a gesture.
void reopenPage(const InspectorStage& stage)
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

/// Sliders and their edits under any sequence of mouse, keys, wheel, typing, undo and reopening.
class SliderRandomTest : public QObject {
    Q_OBJECT
private slots:
    void StandsRandomUse();
};

void SliderRandomTest::StandsRandomUse()
{
    const InspectorStage stage(
        {{"Gain", {{IAD_Default, 0.5}, {IAD_Minimum, -1.0}, {IAD_Maximum, 3.0}}},
         {"Count", {{IA_Integer, 1}, {IAD_HighScale, 12.0}}},
         {"Balance", {{IAD_LowScale, -1.0}, {IAD_Default, 0.0}}}});
    std::mt19937 random(20240607);
    const auto pick = [&random](int count) { return int(random() % unsigned(count)); };
    const char* const ids[] = {"Gain", "Count", "Balance"};
    constexpr int keys[] = {Qt::Key_Home,   Qt::Key_End,      Qt::Key_Left,    Qt::Key_Right,
                            Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Control, Qt::Key_Shift};
    const Qt::KeyboardModifiers modifiers[] = {Qt::NoModifier, Qt::NoModifier, Qt::ControlModifier,
                                               Qt::ShiftModifier, Qt::AltModifier};
    const char* const texts[] = {"0.3", "1/0", "+10%", "abc", "7", "-4", "2,5", "time", "", "*2"};
    constexpr Qt::Key editKeys[] = {Qt::Key_Escape, Qt::Key_Return, Qt::Key_Up, Qt::Key_Down};
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
        const int act = pick(15);
        if (act < 2)
            Pointer::Press(widget, pick(2) ? KnobOf(slider) : at, held);
        else if (act < 5)
            Pointer::Move(widget, at, held, pick(8) ? Qt::LeftButton : Qt::NoButton);
        else if (act < 7)
            Pointer::Release(widget, at, held);
        else if (act < 9)
            Pointer::Key(slider, pick(2) ? QEvent::KeyPress : QEvent::KeyRelease, keys[pick(8)],
                         held);
        else if (act == 9)
            Pointer::Wheel(slider, pick(400) - 200, held);
        else if (act == 10)
            type(edit, texts[pick(10)]);
        else if (act == 11)
            QTest::keyClick(&edit, editKeys[pick(4)]);
        else if (act == 12)
            stage.document->Undo().Undo();
        else if (act == 13 && pick(2))
            stage.InputOf(id).SetExpression({});
        else if (act == 14 && pick(8) == 0)
            reopenPage(stage);
        else
            QTest::qWait(pick(8));
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
    QVERIFY(stage.IsIdle());
    // Every change is in the history, and there once.
    const auto reached = states();
    QVERIFY(reached != untouched && stage.UndoEntries() > 10);
    int undone = 0;
    for (; stage.document->Undo().CanUndo(); ++undone)
        stage.document->Undo().Undo();
    QVERIFY(states() == untouched);
    QCOMPARE(stage.SliderOf().Value(), 0.5);
    while (undone-- > 0) // not further: the last that happened may have been an undo
        stage.document->Undo().Redo();
    QVERIFY(states() == reached);
}

QTEST_MAIN(SliderRandomTest)
#include "slider_random_test.moc"
