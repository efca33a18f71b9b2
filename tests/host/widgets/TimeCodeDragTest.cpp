// Drags in the number field, and how they are interrupted.
#include "TimeCodeStage.h"
#include "host/Rows.h"

#include <functional>
#include <memory>

using namespace Marlox;

using Loss = std::function<void(TimeCodeStage&)>;
Q_DECLARE_METATYPE(Loss)

class TimeCodeDragTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { ApplyLook(*qApp); }

    void ClickEdits()
    {
        TimeCodeStage stage;
        stage.field->SetValue(0.875, 3);
        stage.Drag(5, 7); // no drag yet
        stage.Release(7);
        QCOMPARE(stage.started, 0);
        QVERIFY(!stage.field->hasSelectedText());
        stage.Key(Qt::Key_Home);
        stage.Key(Qt::Key_Delete);
        stage.Enter();
        QCOMPARE(stage.Value(), 0.875); // ".875"
        QTest::mouseDClick(stage.field, Qt::LeftButton, {}, {10, 12});
        QCOMPARE(stage.field->selectedText(), QString("0.875"));
    }

    void DragSteps()
    {
        TimeCodeStage stage;
        stage.Drag(10, 13);
        QCOMPARE(stage.started, 0);
        stage.Move(34); // 20 pixels beyond the threshold, 0.001 each
        QCOMPARE(stage.started, 1);
        QCOMPARE(stage.Value(), 0.52);
        stage.Move(34);
        QCOMPARE(stage.finished, 1);
        stage.Move(2014); // far beyond the end
        QCOMPARE(stage.Value(), 1.0);
        stage.Move(2004); // and back: at once
        QCOMPARE(stage.Value(), 0.99);
        stage.Release(2004);
        QCOMPARE(stage.ended, 1);
        QVERIFY(!stage.field->hasSelectedText() && !stage.field->IsDragging());

        // After it the next drag starts as easily, with the middle button too.
        stage.Drag(50, 36, Qt::MiddleButton);
        QCOMPARE(stage.started, 2);
        QCOMPARE(stage.Value(), 0.98);
        stage.Release(36);
        QTest::keyClicks(stage.field, "0.1"); // typing replaces
        stage.Enter();
        QCOMPARE(stage.Value(), 0.1);

        // The line edit that was typed in goes, and the drag goes on.
        stage.Drag(10, 34);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(stage.field->IsDragging() && stage.field->hasFocus());
        stage.Move(24);
        QCOMPARE(stage.Value(), 0.11);
        stage.Release(24);
        QCOMPARE(stage.ended, 3);
    }

    void DragInText()
    {
        TimeCodeStage stage;
        stage.field->SetValue(0.875, 3);
        stage.Press(75);
        stage.Release(75); // the cursor is in the text now
        stage.Drag(75, 2);
        stage.Release(2);
        QCOMPARE(stage.started, 0);
        QCOMPARE(stage.field->selectedText(), QString("0.875"));
        QTest::keyClicks(stage.field, "0.2");
        // The middle button drags even so; what was typed counts first.
        stage.Drag(10, 24, Qt::MiddleButton);
        QCOMPARE(stage.Value(), 0.21);
        stage.Release(24);
        QVERIFY(stage.started == 1 && stage.ended == 1);
    }

    void ModifiersScaleTheDrag()
    {
        TimeCodeStage stage;
        stage.Drag(10, 24);
        QCOMPARE(stage.Value(), 0.51);
        stage.Move(34, Qt::ShiftModifier);
        QCOMPARE(stage.Value(), 0.61);
        stage.Move(44, Qt::ControlModifier);
        QCOMPARE(stage.Value(), 0.611);
        stage.Move(44);
        QCOMPARE(stage.Value(), 0.611); // letting go changes nothing
    }

    void DragDrivesTarget()
    {
        TimeCodeStage stage;
        QVector<double> movements;
        stage.field->SetDragTarget([&movements](double movement, double& state) {
            movements << movement;
            state = std::min(state, 15.0); // its end
        });
        stage.Drag(10, 19);
        stage.Move(20, Qt::ShiftModifier);
        stage.Move(90);
        stage.Move(89);
        stage.Release(89);
        QCOMPARE(movements, (QVector<double>{5.0, 15.0, 85.0, 14.0}));
        QCOMPARE(stage.finished, 0); // the target sends the values
        QCOMPARE(stage.Value(), 0.5);
        QVERIFY(stage.started == 1 && stage.ended == 1);
        stage.Drag(10, 60);
        stage.Key(Qt::Key_Escape);
        QCOMPARE(movements.last(), 0.0);
    }

    void EscapeCancelsDrag()
    {
        TimeCodeStage stage;
        stage.Drag(10, 60);
        QVERIFY(stage.Value() != 0.5);
        stage.Key(Qt::Key_7); // no typing in mid-drag
        stage.Key(Qt::Key_Escape);
        stage.Move(70);
        stage.Release(70);
        QCOMPARE(stage.Value(), 0.5);
        QVERIFY(stage.started == 1 && stage.ended == 1);
    }

    void LostDragsEndOnce_data()
    {
        const Rows<Loss> row("lose");
        row("focus", [](TimeCodeStage& stage) { stage.Leave(); });
        row("hidden", [](TimeCodeStage& stage) { stage.window.hide(); });
        row("disabled", [](TimeCodeStage& stage) { stage.field->setEnabled(false); });
        row("read-only", [](TimeCodeStage& stage) { stage.field->setReadOnly(true); });
        row("window", [](TimeCodeStage&) { QApplication::setActiveWindow(nullptr); });
        row("cancelled", [](TimeCodeStage& stage) { stage.field->CancelDrag(); });
        row("release unseen", [](TimeCodeStage& stage) {
            stage.Mouse(QEvent::MouseMove, 80, Qt::NoButton, Qt::NoButton);
        });
    }
    void LostDragsEndOnce()
    {
        QFETCH(Loss, lose);
        TimeCodeStage stage;
        stage.Drag(10, 34);
        lose(stage);
        QCOMPARE(stage.ended, 1);
        stage.Move(90);
        stage.Release(90);
        QVERIFY(stage.started == 1 && stage.ended == 1);
        QCOMPARE(stage.Value(), 0.52); // where it was
    }

    void DestroyedWithItsParents()
    {
        TimeCodeStage alone;
        alone.Drag(10, 34);
        delete alone.field;
        QCOMPARE(alone.ended, 1);

        // With a parent in its destructor there is nobody left to tell.
        TimeCodeStage stage;
        auto parent = std::make_unique<QLineEdit>(&stage.window);
        stage.field->setParent(parent.get());
        parent->show();
        stage.field->show();
        stage.Drag(10, 34);
        QCOMPARE(stage.started, 1);
        parent.reset();
        QCOMPARE(stage.ended, 0);
    }

    void ListenerMayDelete()
    {
        for (const bool dragging : {false, true}) {
            TimeCodeStage stage;
            const QPointer<TimeCodeEdit> field(stage.field);
            connect(stage.field, &TimeCodeEdit::editingFinished, [&stage] { delete stage.field; });
            if (dragging)
                stage.Drag(10, 34);
            else
                stage.Enter("1");
            QVERIFY(!field);
        }
    }
};

QTEST_MAIN(TimeCodeDragTest)
#include "TimeCodeDragTest.moc"
