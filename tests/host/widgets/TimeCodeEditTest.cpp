// The number field as people use it: typing, stepping, dragging, and being interrupted.
#include "system/widgets/TimeCodeEdit.h"
#include "system/base/ScriptServices.h"
#include "system/document/Preferences.h"
#include "system/resources/LookStyle.h"
#include "system/values/Parameter.h"

#include <functional>
#include <memory>

#include <QAccessible>
#include <QHelpEvent>
#include <QLineEdit>
#include <QShortcut>
#include <QToolTip>
#include <QWheelEvent>
#include <QtTest>

using namespace Marlox;

namespace {

/// Takes every text with "time" in it for an expression.
class Services : public ScriptServices {
public:
    Services() { Install(this); }
    ~Services() override { Install(nullptr); }
    bool ParseValue(const std::string&, ScriptVal&, QString*) override { return false; }
    std::string FormatValue(const ScriptVal&, bool) override { return {}; }
    LayoutObj* BuildLayout(const ScriptVal&, QWidget*, LayoutCallback, void*, QString*) override
    {
        return nullptr;
    }
    Ref<Parameter> Evaluate(const Input&, const std::string&, double, QString*) override
    {
        return {};
    }
    bool IsExpression(const QString& text) override { return text.contains("time"); }
    int PushObject(lua_State*, LuaClass&) override { return 0; }
};

/// A window with the field at 0 to 1 on 0.5, another widget to go to, and counts of what was sent.
class Stage {
public:
    Stage()
    {
        window.resize(400, 120);
        field = new TimeCodeEdit(&window);
        field->setGeometry(100, 20, 80, 24);
        field->SetRange(0.0, 1.0);
        field->SetValue(0.5, 3);
        other = new QLineEdit(&window);
        other->setGeometry(100, 60, 80, 24);
        QObject::connect(field, &TimeCodeEdit::editingFinished, [this] { ++finished; });
        QObject::connect(field, &TimeCodeEdit::StartDrag, [this] { ++started; });
        QObject::connect(field, &TimeCodeEdit::EndDrag, [this] { ++ended; });
        window.show();
        other->setFocus();
        QApplication::setActiveWindow(&window);
    }

    void Mouse(QEvent::Type type, int x, Qt::MouseButton button, Qt::MouseButtons buttons,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        const QPoint at(x, 12);
        if (type == QEvent::MouseButtonPress)
            field->setFocus(Qt::MouseFocusReason);
        QMouseEvent event(type, at, field->mapToGlobal(at), button, buttons, modifiers);
        QApplication::sendEvent(field, &event);
    }
    void Press(int x, Qt::MouseButton button = Qt::LeftButton)
    {
        held = button;
        Mouse(QEvent::MouseButtonPress, x, button, button);
    }
    void Move(int x, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        Mouse(QEvent::MouseMove, x, Qt::NoButton, held, modifiers);
    }
    void Release(int x) { Mouse(QEvent::MouseButtonRelease, x, held, Qt::NoButton); }
    bool Wheel(int angle)
    {
        const QPoint at(10, 12);
        QWheelEvent event(at, field->mapToGlobal(at), {}, {0, angle}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(field, &event);
        return event.isAccepted();
    }
    void Type(const char* text)
    {
        field->setFocus(Qt::TabFocusReason);
        QTest::keyClicks(field, text);
    }
    void Enter() { QTest::keyClick(field, Qt::Key_Return); }

    QWidget window;
    TimeCodeEdit* field;
    QLineEdit* other;
    Qt::MouseButton held = Qt::NoButton;
    int finished = 0;
    int started = 0;
    int ended = 0;
};

using Loss = std::function<void(Stage&)>;

} // namespace

Q_DECLARE_METATYPE(Loss)

class TimeCodeEditTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { ApplyLook(*qApp); }
    void TypingCommitsOnlyWhenAsked();
    void LeavingCommits();
    void UnreadableTextStaysMarked();
    void EscapeRestores();
    void EscapeAndEnterBelongToTheWindowWithNothingTyped();
    void UndoIsTheDocumentsUntilSomethingIsTyped();
    void WholeNumbersAndRange();
    void ShowingKeepsWhatIsTyped();
    void RefusedValueComesBack();
    void ExpressionIsHandedOver();
    void TimesByPreference();
    void ArrowsStepTheDigit();
    void HeldArrowIsOneGesture();
    void WheelNeedsFocus();
    void ClickEdits();
    void DragSteps();
    void DragInText();
    void ModifiersScaleTheDrag();
    void DragDrivesTarget();
    void EscapeCancelsDrag();
    void LostDragsEndOnce_data();
    void LostDragsEndOnce();
    void DestroyedWithItsParents();
    void ListenerMayDelete();
    void ReadOnlyTakesNothing();
    void ShowsLessThanItHas();
    void OpeningMovesNoText();
    void SpeaksToScreenReaders();
};

void TimeCodeEditTest::TypingCommitsOnlyWhenAsked()
{
    Stage stage;
    stage.Type("1/4");
    QCOMPARE(stage.field->text(), QString("1/4"));
    QCOMPARE(stage.field->GetValue(), 0.5);
    QCOMPARE(stage.finished, 0);
    stage.Enter();
    QCOMPARE(stage.field->GetValue(), 0.25);
    QCOMPARE(stage.field->text(), QString("0.25"));
    QCOMPARE(stage.finished, 1);
    // All is selected: typing on replaces, on what is shown now.
    QCOMPARE(stage.field->selectedText(), QString("0.25"));
    QTest::keyClicks(stage.field, "*2");
    stage.Enter();
    QCOMPARE(stage.field->GetValue(), 0.5);
    stage.Enter(); // nothing new
    QCOMPARE(stage.finished, 2);
    // A value with more digits than are shown is not cut by passing through.
    stage.field->SetValue(0.123456789, 3);
    stage.Enter();
    stage.other->setFocus();
    QCOMPARE(stage.field->GetValue(), 0.123456789);
}

void TimeCodeEditTest::LeavingCommits()
{
    Stage stage;
    stage.Type("0,75");
    QTest::keyClick(stage.field, Qt::Key_Tab);
    QVERIFY(!stage.field->hasFocus());
    QCOMPARE(stage.field->GetValue(), 0.75);
    QCOMPARE(stage.finished, 1);
    QVERIFY(!stage.field->hasSelectedText());
}

void TimeCodeEditTest::UnreadableTextStaysMarked()
{
    Stage stage;
    stage.field->setToolTip("Gain");
    stage.Type("1/0");
    stage.Enter();
    QVERIFY(stage.field->IsUnreadable());
    QCOMPARE(stage.field->toolTip(), QString("This divides by zero."));
    QCOMPARE(stage.field->accessibleDescription(), QString("This divides by zero."));
    stage.other->setFocus();
    QCOMPARE(stage.field->text(), QString("1/0"));
    QCOMPARE(stage.field->GetValue(), 0.5);
    QCOMPARE(stage.finished, 0);
    stage.field->SetValue(0.5, 3); // a redisplay of the same value
    QCOMPARE(stage.field->text(), QString("1/0"));

    stage.Type("1/8"); // all was selected on coming back
    QVERIFY(!stage.field->IsUnreadable());
    QCOMPARE(stage.field->toolTip(), QString("Gain"));
    stage.Enter();
    QCOMPARE(stage.field->GetValue(), 0.125);

    stage.Type("nonsense");
    stage.other->setFocus();
    QVERIFY(stage.field->IsUnreadable());
    stage.field->SetValue(0.75, 3); // another value answers it
    QVERIFY(!stage.field->IsUnreadable());
    QCOMPARE(stage.field->text(), QString("0.75"));
}

void TimeCodeEditTest::EscapeRestores()
{
    Stage stage;
    stage.Type("0.9");
    QTest::keyClick(stage.field, Qt::Key_Escape);
    QCOMPARE(stage.field->text(), QString("0.5"));
    stage.other->setFocus();
    QCOMPARE(stage.finished, 0);

    stage.Type("what");
    stage.Enter();
    QTest::keyClick(stage.field, Qt::Key_Escape);
    QVERIFY(!stage.field->IsUnreadable());
    QCOMPARE(stage.field->text(), QString("0.5"));

    stage.Type(""); // a field left empty has its value again
    QTest::keyClick(stage.field, Qt::Key_Delete);
    QCOMPARE(stage.field->text(), QString());
    stage.Enter();
    QCOMPARE(stage.field->text(), QString("0.5"));
    QCOMPARE(stage.finished, 0);
}

void TimeCodeEditTest::EscapeAndEnterBelongToTheWindowWithNothingTyped()
{
    Stage stage;
    stage.Type("");
    for (const int key : {int(Qt::Key_Escape), int(Qt::Key_Return)}) {
        QKeyEvent idle(QEvent::KeyPress, key, Qt::NoModifier);
        QCoreApplication::sendEvent(stage.field, &idle);
        QVERIFY(!idle.isAccepted());
        stage.Type("1");
        QKeyEvent typing(QEvent::KeyPress, key, Qt::NoModifier);
        QCoreApplication::sendEvent(stage.field, &typing);
        QVERIFY(typing.isAccepted());
    }
}

void TimeCodeEditTest::UndoIsTheDocumentsUntilSomethingIsTyped()
{
    Stage stage;
    QShortcut undo(QKeySequence::Undo, &stage.window);
    int undone = 0;
    connect(&undo, &QShortcut::activated, [&undone] { ++undone; });
    stage.Type("");
    QTest::keyClick(stage.field, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(undone, 1);
    stage.Type("1");
    QTest::keyClick(stage.field, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(undone, 1);
    QCOMPARE(stage.field->text(), QString("0.5"));
}

void TimeCodeEditTest::WholeNumbersAndRange()
{
    Stage stage;
    stage.field->SetInteger(true);
    stage.field->SetRange(0.0, 10.0);
    for (const auto& [text, value] : {std::pair{"2.5", 3.0}, {"99", 10.0}, {"-4", 0.0}}) {
        stage.Type(text);
        stage.Enter();
        QCOMPARE(stage.field->GetValue(), value);
        QCOMPARE(stage.field->text(), QString::number(value));
        stage.other->setFocus();
    }
}

void TimeCodeEditTest::ShowingKeepsWhatIsTyped()
{
    Stage stage;
    stage.Type("*");
    stage.field->SetValue(0.1, 3); // playback goes on below the typing hand
    QCOMPARE(stage.field->text(), QString("*"));
    QTest::keyClicks(stage.field, "2");
    stage.Enter();
    QCOMPARE(stage.field->GetValue(), 0.2);
    stage.field->SetValue(1.0 / 3.0, 2);
    QCOMPARE(stage.field->text(), QString("0.33"));
    QCOMPARE(stage.finished, 1);
}

void TimeCodeEditTest::RefusedValueComesBack()
{
    Stage stage;
    connect(stage.field, &TimeCodeEdit::editingFinished,
            [&stage] { stage.field->SetValue(0.5, 3); });
    stage.Type("0.9");
    stage.Enter();
    QCOMPARE(stage.field->text(), QString("0.5"));
}

void TimeCodeEditTest::ExpressionIsHandedOver()
{
    Stage stage;
    stage.Type("=time/24");
    stage.Enter();
    QVERIFY(stage.field->IsUnreadable()); // nobody there who reads expressions
    const Services services;
    stage.Enter();
    QVERIFY(stage.field->IsExpressionText());
    QVERIFY(!stage.field->IsUnreadable());
    QCOMPARE(stage.field->ExpressionText(), QString("time/24"));
    QCOMPARE(stage.finished, 1);
    QCOMPARE(stage.field->GetValue(), 0.5);
    stage.field->MarkUnreadable("No input of that name.");
    QVERIFY(stage.field->IsUnreadable());
    stage.field->SetValue(0.25, 3);
    stage.other->setFocus();
    QCOMPARE(stage.finished, 1); // what was refused is not tried again by leaving
    QCOMPARE(stage.field->text(), QString("=time/24"));
    stage.field->SetValue(0.75, 3);
    QVERIFY(!stage.field->IsExpressionText());
    QCOMPARE(stage.field->text(), QString("0.75"));
    // Refused while Enter is handled, the text is not selected, which would hide the mark.
    connect(stage.field, &TimeCodeEdit::editingFinished, stage.field,
            [&stage] { stage.field->MarkUnreadable("No input of that name."); });
    stage.Type("=time/25");
    stage.Enter();
    QVERIFY(stage.field->IsUnreadable());
    QVERIFY(!stage.field->findChild<QLineEdit*>()->hasSelectedText());
}

void TimeCodeEditTest::TimesByPreference()
{
    Preferences& preferences = Preferences::Global();
    preferences.Remove(TimeCodeEdit::PreferenceName);
    Stage stage;
    stage.field->SetRange(0.0, 1e6);
    stage.field->SetTimeMode(true, 25.0);
    stage.field->SetValue(1500.0);
    QCOMPARE(stage.field->text(), QString("1500"));
    stage.Type("1:00");
    stage.Enter();
    QCOMPARE(stage.field->GetValue(), 25.0);
    preferences.Set(TimeCodeEdit::PreferenceName, true);
    QCOMPARE(stage.field->text(), QString("00:00:01:00"));
    stage.Type("50");
    stage.Enter();
    QCOMPARE(stage.field->text(), QString("00:00:02:00"));
    stage.field->setCursorPosition(5); // in the minutes
    QTest::keyClick(stage.field, Qt::Key_Up);
    QCOMPARE(stage.field->text(), QString("00:01:02:00"));
    QCOMPARE(stage.field->cursorPosition(), 5);
    preferences.Remove(TimeCodeEdit::PreferenceName);
    QCOMPARE(stage.field->text(), QString("1550"));
}

void TimeCodeEditTest::ArrowsStepTheDigit()
{
    Stage stage;
    stage.field->SetRange(-1000.0, 1000.0);
    stage.field->SetValue(99.5, 3);
    stage.field->setFocus();
    stage.field->setCursorPosition(2); // behind the ones
    QTest::keyClick(stage.field, Qt::Key_Up);
    QCOMPARE(stage.field->text(), QString("100.5"));
    QCOMPARE(stage.field->cursorPosition(), 3); // the same digit
    QTest::keyClick(stage.field, Qt::Key_Down, Qt::ShiftModifier);
    QCOMPARE(stage.field->text(), QString("90.5"));
    QTest::keyClick(stage.field, Qt::Key_Up, Qt::ControlModifier);
    QCOMPARE(stage.field->text(), QString("90.6"));

    // A digit that becomes an unwritten zero remains the one that is stepped.
    stage.field->SetValue(1.9, 3);
    stage.field->setCursorPosition(3);
    QTest::keyClick(stage.field, Qt::Key_Up);
    QCOMPARE(stage.field->text(), QString("2"));
    QTest::keyClick(stage.field, Qt::Key_Up);
    QCOMPARE(stage.field->text(), QString("2.1"));

    // What was typed counts first; with everything selected the range gives the step.
    stage.other->setFocus();
    stage.Type("7");
    QTest::keyClick(stage.field, Qt::Key_Up);
    QCOMPARE(stage.field->text(), QString("8"));
    stage.other->setFocus();
    stage.field->SetRange(0.0, 1.0);
    stage.field->SetValue(0.999, 3);
    stage.field->setFocus();
    QTest::keyClick(stage.field, Qt::Key_Up);
    QCOMPARE(stage.field->GetValue(), 1.0);
}

void TimeCodeEditTest::HeldArrowIsOneGesture()
{
    Stage stage;
    stage.field->setFocus();
    QTest::keyPress(stage.field, Qt::Key_Up);
    for (int i = 0; i < 5; ++i) {
        QKeyEvent repeat(QEvent::KeyRelease, Qt::Key_Up, Qt::NoModifier, QString(), true);
        QApplication::sendEvent(stage.field, &repeat);
        QTest::keyPress(stage.field, Qt::Key_Up);
    }
    QCOMPARE(stage.started, 1);
    QCOMPARE(stage.ended, 0);
    QTest::keyRelease(stage.field, Qt::Key_Up);
    QCOMPARE(stage.ended, 1);
    QCOMPARE(stage.finished, 6);
    QCOMPARE(stage.field->GetValue(), 0.56);

    QTest::keyPress(stage.field, Qt::Key_Down);
    stage.other->setFocus(); // the release goes elsewhere
    QCOMPARE(stage.ended, 2);
}

void TimeCodeEditTest::WheelNeedsFocus()
{
    Stage stage;
    QVERIFY(!stage.Wheel(120));
    QVERIFY(!stage.field->hasFocus());
    QCOMPARE(stage.field->GetValue(), 0.5);
    stage.field->setFocus();
    for (int i = 0; i < 3; ++i)
        QVERIFY(stage.Wheel(40)); // a touchpad's third of a step
    QCOMPARE(stage.field->GetValue(), 0.51);
    stage.Wheel(-240);
    QCOMPARE(stage.field->GetValue(), 0.49);
    QCOMPARE(stage.started, 1);
    QTRY_COMPARE(stage.ended, 1); // a while after the last turn

    // The panel scrolled until the field came below the pointer: the scroll stays the panel's.
    QEvent enter(QEvent::Enter);
    QApplication::sendEvent(stage.field, &enter);
    QVERIFY(!stage.Wheel(120));
    stage.Move(12);
    QVERIFY(stage.Wheel(120));
}

void TimeCodeEditTest::ClickEdits()
{
    Stage stage;
    stage.field->SetValue(0.875, 3);
    stage.Press(5);
    stage.Move(7); // no drag yet
    stage.Release(7);
    QCOMPARE(stage.started, 0);
    QVERIFY(!stage.field->hasSelectedText());
    QTest::keyClick(stage.field, Qt::Key_Home);
    QTest::keyClick(stage.field, Qt::Key_Delete);
    stage.Enter();
    QCOMPARE(stage.field->GetValue(), 0.875); // ".875"
    QTest::mouseDClick(stage.field, Qt::LeftButton, {}, {10, 12});
    QCOMPARE(stage.field->selectedText(), QString("0.875"));
}

void TimeCodeEditTest::DragSteps()
{
    Stage stage;
    stage.Press(10);
    stage.Move(13);
    QCOMPARE(stage.started, 0);
    stage.Move(34); // 20 pixels beyond the threshold, 0.001 each
    QCOMPARE(stage.started, 1);
    QCOMPARE(stage.field->GetValue(), 0.52);
    QCOMPARE(stage.finished, 1);
    stage.Move(34);
    QCOMPARE(stage.finished, 1);
    stage.Move(2014); // far beyond the end
    QCOMPARE(stage.field->GetValue(), 1.0);
    stage.Move(2004); // and back: at once
    QCOMPARE(stage.field->GetValue(), 0.99);
    stage.Release(2004);
    QCOMPARE(stage.ended, 1);
    QVERIFY(!stage.field->hasSelectedText());
    QVERIFY(!stage.field->IsDragging());

    // After it the next drag starts as easily, with the middle button too.
    stage.Press(50, Qt::MiddleButton);
    stage.Move(36);
    QCOMPARE(stage.started, 2);
    QCOMPARE(stage.field->GetValue(), 0.98);
    stage.Release(36);
    QTest::keyClicks(stage.field, "0.1"); // typing replaces
    stage.Enter();
    QCOMPARE(stage.field->GetValue(), 0.1);

    // The line edit that was typed in goes, and the drag goes on.
    stage.Press(10);
    stage.Move(34);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(stage.field->IsDragging() && stage.field->hasFocus());
    stage.Move(24);
    QCOMPARE(stage.field->GetValue(), 0.11);
    stage.Release(24);
    QCOMPARE(stage.ended, 3);
}

void TimeCodeEditTest::DragInText()
{
    Stage stage;
    stage.field->SetValue(0.875, 3);
    stage.Press(75);
    stage.Release(75); // the cursor is in the text now
    stage.Press(75);
    stage.Move(2);
    stage.Release(2);
    QCOMPARE(stage.started, 0);
    QCOMPARE(stage.field->selectedText(), QString("0.875"));
    QTest::keyClicks(stage.field, "0.2");
    // The middle button drags even so; what was typed counts first.
    stage.Press(10, Qt::MiddleButton);
    stage.Move(24);
    QCOMPARE(stage.started, 1);
    QCOMPARE(stage.field->GetValue(), 0.21);
    stage.Release(24);
    QCOMPARE(stage.ended, 1);
}

void TimeCodeEditTest::ModifiersScaleTheDrag()
{
    Stage stage;
    stage.Press(10);
    stage.Move(24);
    QCOMPARE(stage.field->GetValue(), 0.51);
    stage.Move(34, Qt::ShiftModifier);
    QCOMPARE(stage.field->GetValue(), 0.61);
    stage.Move(44, Qt::ControlModifier);
    QCOMPARE(stage.field->GetValue(), 0.611);
    stage.Move(44);
    QCOMPARE(stage.field->GetValue(), 0.611); // letting go changes nothing
    stage.Release(44);
    QCOMPARE(stage.field->GetValue(), 0.611);
}

void TimeCodeEditTest::DragDrivesTarget()
{
    Stage stage;
    QVector<double> movements;
    stage.field->SetDragTarget([&movements](double movement, double& state) {
        movements << movement;
        state = std::min(state, 15.0); // its end
    });
    stage.Press(10);
    stage.Move(19);
    stage.Move(20, Qt::ShiftModifier);
    stage.Move(90);
    stage.Move(89);
    stage.Release(89);
    QCOMPARE(movements, (QVector<double>{5.0, 15.0, 85.0, 14.0}));
    QCOMPARE(stage.finished, 0); // the target sends the values
    QCOMPARE(stage.field->GetValue(), 0.5);
    QCOMPARE(stage.started, 1);
    QCOMPARE(stage.ended, 1);
}

void TimeCodeEditTest::EscapeCancelsDrag()
{
    Stage stage;
    stage.Press(10);
    stage.Move(60);
    QVERIFY(stage.field->GetValue() != 0.5);
    QTest::keyClick(stage.field, Qt::Key_7); // no typing in mid-drag
    QTest::keyClick(stage.field, Qt::Key_Escape);
    QCOMPARE(stage.field->GetValue(), 0.5);
    QCOMPARE(stage.ended, 1);
    stage.Move(70);
    stage.Release(70);
    QCOMPARE(stage.field->GetValue(), 0.5);
    QCOMPARE(stage.started, 1);
    QCOMPARE(stage.ended, 1);

    double last = -1.0;
    stage.field->SetDragTarget([&last](double movement, double&) { last = movement; });
    stage.Press(10);
    stage.Move(60);
    QCOMPARE(last, 46.0);
    QTest::keyClick(stage.field, Qt::Key_Escape);
    QCOMPARE(last, 0.0);
    QCOMPARE(stage.ended, 2);
}

void TimeCodeEditTest::LostDragsEndOnce_data()
{
    QTest::addColumn<Loss>("lose");
    const auto row = [](const char* name, Loss lose) { QTest::newRow(name) << lose; };
    row("focus", [](Stage& stage) { stage.other->setFocus(); });
    row("hidden", [](Stage& stage) { stage.window.hide(); });
    row("disabled", [](Stage& stage) { stage.field->setEnabled(false); });
    row("read-only", [](Stage& stage) { stage.field->setReadOnly(true); });
    row("window", [](Stage&) { QApplication::setActiveWindow(nullptr); });
    row("cancelled", [](Stage& stage) { stage.field->CancelDrag(); });
    row("release unseen",
        [](Stage& stage) { stage.Mouse(QEvent::MouseMove, 80, Qt::NoButton, Qt::NoButton); });
}

void TimeCodeEditTest::LostDragsEndOnce()
{
    QFETCH(Loss, lose);
    Stage stage;
    stage.Press(10);
    stage.Move(34);
    lose(stage);
    QCOMPARE(stage.ended, 1);
    QCOMPARE(stage.field->GetValue(), 0.52); // where it was
    stage.Move(90);
    stage.Release(90);
    QCOMPARE(stage.started, 1);
    QCOMPARE(stage.ended, 1);
    QCOMPARE(stage.field->GetValue(), 0.52);
}

void TimeCodeEditTest::DestroyedWithItsParents()
{
    Stage alone;
    alone.Press(10);
    alone.Move(34);
    delete alone.field;
    QCOMPARE(alone.ended, 1);

    // With a parent in its destructor there is nobody left to tell.
    Stage stage;
    auto parent = std::make_unique<QLineEdit>(&stage.window);
    stage.field->setParent(parent.get());
    parent->show();
    stage.field->show();
    stage.Press(10);
    stage.Move(34);
    QCOMPARE(stage.started, 1);
    parent.reset();
    QCOMPARE(stage.ended, 0);
}

void TimeCodeEditTest::ListenerMayDelete()
{
    for (const bool dragging : {false, true}) {
        Stage stage;
        const QPointer<TimeCodeEdit> field(stage.field);
        connect(stage.field, &TimeCodeEdit::editingFinished, [&stage] { delete stage.field; });
        if (dragging) {
            stage.Press(10);
            stage.Move(34);
        } else {
            stage.Type("1");
            stage.Enter();
        }
        QVERIFY(!field);
    }
}

void TimeCodeEditTest::ReadOnlyTakesNothing()
{
    Stage stage;
    stage.field->SetEditDisabled(true);
    stage.other->setFocus();
    stage.Type("7");
    QTest::keyClick(stage.field, Qt::Key_Up);
    stage.Wheel(120);
    stage.Press(10);
    stage.Move(60);
    stage.Release(60);
    stage.Enter();
    QCOMPARE(stage.field->text(), QString("0.5"));
    QCOMPARE(stage.finished + stage.started, 0);
    stage.field->selectAll(); // yet can be copied
    QCOMPARE(stage.field->selectedText(), QString("0.5"));
}

void TimeCodeEditTest::ShowsLessThanItHas()
{
    Stage stage;
    const auto look = [&stage](double value, int precision, int decimals) {
        stage.field->SetShownDecimals(decimals);
        stage.field->SetValue(value, precision);
        return stage.field->grab().toImage();
    };
    const QImage rounded = look(0.0491, 6, -1);
    QVERIFY(look(0.049123456789, 6, -1) != rounded);
    QVERIFY(look(0.049123456789, 6, 4) == rounded);
    QCOMPARE(stage.field->text(), QString("0.049123")); // to be edited
    QHelpEvent help(QEvent::ToolTip, {5, 5}, stage.field->mapToGlobal({5, 5}));
    QApplication::sendEvent(stage.field, &help);
    QVERIFY(QToolTip::text().startsWith("0.0491234568\nDrag"));
    QToolTip::hideText();
    // Too long to be seen at once, it starts with its first digit and goes as a whole.
    stage.field->SetValue(-123456.123456, 6);
    stage.Type("");
    QCOMPARE(stage.field->selectedText(), QString("-123456.123456"));
    QCOMPARE(stage.field->cursorPosition(), 0);
    stage.Type("0.25");
    QCOMPARE(stage.field->text(), QString("0.25"));
}

void TimeCodeEditTest::OpeningMovesNoText()
{
    Stage stage;
    stage.field->SetValue(0.25, 3);
    const auto inside = [&stage] {
        return stage.field->grab().toImage().copy(3, 3, 60, 18); // without frame and cursor
    };
    const QImage painted = inside();
    stage.field->setFocus();
    stage.field->setCursorPosition(4);
    stage.field->findChild<QLineEdit*>()->end(false);
    const QRect cursor = stage.field->inputMethodQuery(Qt::ImCursorRectangle).toRect();
    QVERIFY(cursor.x() > 10);
    const QRect text(0, 0, cursor.x() - 6, 18);
    QCOMPARE(inside().copy(text), painted.copy(text));

    // Marked text has its colour in both.
    const auto hasErrorColor = [&inside] {
        const QImage image = inside();
        for (int i = 0; i < image.width() * image.height(); ++i) {
            const QRgb pixel = image.pixel(i % image.width(), i / image.width());
            if (qRed(pixel) - qGreen(pixel) > 50)
                return true;
        }
        return false;
    };
    QVERIFY(!hasErrorColor());
    stage.field->MarkUnreadable("No.");
    QVERIFY(hasErrorColor());
    stage.other->setFocus();
    QVERIFY(!stage.field->findChild<QLineEdit*>()->isVisible());
    QVERIFY(hasErrorColor());
}

void TimeCodeEditTest::SpeaksToScreenReaders()
{
    Stage stage;
    QAccessibleInterface* access = QAccessible::queryAccessibleInterface(stage.field);
    QVERIFY(access);
    QCOMPARE(access->role(), QAccessible::SpinBox);
    QCOMPARE(access->text(QAccessible::Value), QString("0.5"));
    QAccessibleValueInterface* value = access->valueInterface();
    QVERIFY(value);
    QCOMPARE(value->minimumValue().toDouble(), 0.0);
    QCOMPARE(value->maximumValue().toDouble(), 1.0);
    value->setCurrentValue(0.25);
    QCOMPARE(stage.field->GetValue(), 0.25);
    QCOMPARE(stage.finished, 1);
    stage.field->setReadOnly(true);
    value->setCurrentValue(0.75);
    QCOMPARE(stage.field->GetValue(), 0.25);
    QVERIFY(access->state().readOnly);
}

QTEST_MAIN(TimeCodeEditTest)
#include "TimeCodeEditTest.moc"
