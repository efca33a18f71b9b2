// Keys and wheel in the number field.
#include "TimeCodeStage.h"

#include <QShortcut>

using namespace Marlox;

class TimeCodeKeysTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { ApplyLook(*qApp); }

    void WindowHasItsKeysWithNothingTyped()
    {
        TimeCodeStage stage;
        stage.Type("");
        for (const int key : {int(Qt::Key_Escape), int(Qt::Key_Return)}) {
            for (const char* typed : {"", "1"}) {
                stage.Type(typed);
                QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
                QCoreApplication::sendEvent(stage.field, &press);
                QCOMPARE(press.isAccepted(), *typed != 0);
            }
        }
        stage.field->SetValue(0.5, 3);
        // The document's undo until something is typed.
        QShortcut undo(QKeySequence::Undo, &stage.window);
        QSignalSpy undone(&undo, &QShortcut::activated);
        for (const char* typed : {"", "1"}) {
            stage.Type(typed);
            stage.Key(Qt::Key_Z, Qt::ControlModifier);
            QCOMPARE(undone.size(), 1);
        }
        QCOMPARE(stage.Text(), QString("0.5"));
    }

    void ArrowsStepTheDigit()
    {
        TimeCodeStage stage;
        stage.field->SetRange(-1000.0, 1000.0);
        stage.field->SetValue(99.5, 3);
        stage.field->setFocus();
        stage.field->setCursorPosition(2); // behind the ones
        stage.Key(Qt::Key_Up);
        QCOMPARE(stage.Text(), QString("100.5"));
        QCOMPARE(stage.field->cursorPosition(), 3); // the same digit
        stage.Key(Qt::Key_Down, Qt::ShiftModifier);
        QCOMPARE(stage.Text(), QString("90.5"));
        stage.Key(Qt::Key_Up, Qt::ControlModifier);
        QCOMPARE(stage.Text(), QString("90.6"));

        // A digit that becomes an unwritten zero remains the one that is stepped.
        stage.field->SetValue(1.9, 3);
        stage.field->setCursorPosition(3);
        for (const char* text : {"2", "2.1"}) {
            stage.Key(Qt::Key_Up);
            QCOMPARE(stage.Text(), QString(text));
        }

        // What was typed counts first; with everything selected the range gives the step.
        stage.Leave();
        stage.Type("7");
        stage.Key(Qt::Key_Up);
        QCOMPARE(stage.Text(), QString("8"));
        stage.Leave();
        stage.field->SetRange(0.0, 1.0);
        stage.field->SetValue(0.999, 3);
        stage.field->setFocus();
        stage.Key(Qt::Key_Up);
        QCOMPARE(stage.Value(), 1.0);
    }

    void HeldArrowIsOneGesture()
    {
        TimeCodeStage stage;
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
        QCOMPARE(stage.Value(), 0.56);
        QTest::keyPress(stage.field, Qt::Key_Down);
        stage.Leave(); // the release goes elsewhere
        QCOMPARE(stage.ended, 2);
    }

    void WheelNeedsFocus()
    {
        TimeCodeStage stage;
        QVERIFY(!stage.Wheel(120));
        QVERIFY(!stage.field->hasFocus());
        QCOMPARE(stage.Value(), 0.5);
        stage.field->setFocus();
        for (int i = 0; i < 3; ++i)
            QVERIFY(stage.Wheel(40)); // a touchpad's third of a step
        QCOMPARE(stage.Value(), 0.51);
        stage.Wheel(-240);
        QCOMPARE(stage.Value(), 0.49);
        QCOMPARE(stage.started, 1);
        QTRY_COMPARE(stage.ended, 1); // a while after the last turn

        // The panel scrolled until the field came below the pointer: the scroll stays the panel's.
        QEvent enter(QEvent::Enter);
        QApplication::sendEvent(stage.field, &enter);
        QVERIFY(!stage.Wheel(120));
        stage.Move(12);
        QVERIFY(stage.Wheel(120));
    }

    void ReadOnlyTakesNothing()
    {
        TimeCodeStage stage;
        stage.field->SetEditDisabled(true);
        stage.Leave();
        stage.Type("7");
        stage.Key(Qt::Key_Up);
        stage.Wheel(120);
        stage.Drag(10, 60);
        stage.Release(60);
        stage.Enter();
        QCOMPARE(stage.Text(), QString("0.5"));
        QCOMPARE(stage.finished + stage.started, 0);
        stage.field->selectAll(); // yet can be copied
        QCOMPARE(stage.field->selectedText(), QString("0.5"));
    }
};

QTEST_MAIN(TimeCodeKeysTest)
#include "TimeCodeKeysTest.moc"
