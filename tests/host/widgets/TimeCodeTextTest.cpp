// Texts in the number field: typed, committed, refused, shown.
#include "TimeCodeStage.h"
#include "host/TestTools.h"
#include "system/document/Preferences.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QToolTip>

using namespace Marlox;

class TimeCodeTextTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { ApplyLook(*qApp); }

    void CommitsOnlyWhenAsked()
    {
        TimeCodeStage stage;
        stage.Type("1/4");
        QCOMPARE(stage.Text(), QString("1/4"));
        QCOMPARE(stage.Value(), 0.5);
        QCOMPARE(stage.finished, 0);
        stage.Enter();
        QCOMPARE(stage.Value(), 0.25);
        QCOMPARE(stage.Text(), QString("0.25"));
        QCOMPARE(stage.finished, 1);
        // All is selected: typing on replaces, on what is shown now.
        QCOMPARE(stage.field->selectedText(), QString("0.25"));
        QTest::keyClicks(stage.field, "*2");
        stage.Enter();
        QCOMPARE(stage.Value(), 0.5);
        stage.Enter(); // nothing new
        QCOMPARE(stage.finished, 2);
        // A value with more digits than are shown is not cut by passing through.
        stage.field->SetValue(0.123456789, 3);
        stage.Enter();
        stage.Leave();
        QCOMPARE(stage.Value(), 0.123456789);

        stage.Type("0,75");
        stage.Key(Qt::Key_Tab); // leaving commits
        QVERIFY(!stage.field->hasFocus() && !stage.field->hasSelectedText());
        QCOMPARE(stage.Value(), 0.75);
        QCOMPARE(stage.finished, 3);
    }

    void UnreadableTextStaysMarked()
    {
        TimeCodeStage stage;
        stage.field->setToolTip("Gain");
        stage.Enter("1/0");
        QVERIFY(stage.field->IsUnreadable());
        QCOMPARE(stage.field->toolTip(), QString("This divides by zero."));
        QCOMPARE(stage.field->accessibleDescription(), QString("This divides by zero."));
        stage.Leave();
        stage.field->SetValue(0.5, 3); // a redisplay of the same value
        QCOMPARE(stage.Text(), QString("1/0"));
        QCOMPARE(stage.Value(), 0.5);
        QCOMPARE(stage.finished, 0);

        stage.Type("1/8"); // all was selected on coming back
        QVERIFY(!stage.field->IsUnreadable());
        QCOMPARE(stage.field->toolTip(), QString("Gain"));
        stage.Enter();
        QCOMPARE(stage.Value(), 0.125);

        stage.Type("nonsense");
        stage.Leave();
        QVERIFY(stage.field->IsUnreadable());
        stage.field->SetValue(0.75, 3); // another value answers it
        QVERIFY(!stage.field->IsUnreadable());
        QCOMPARE(stage.Text(), QString("0.75"));
    }

    void EscapeRestores()
    {
        TimeCodeStage stage;
        stage.Type("0.9");
        stage.Key(Qt::Key_Escape);
        QCOMPARE(stage.Text(), QString("0.5"));
        stage.Leave();
        stage.Enter("what");
        stage.Key(Qt::Key_Escape);
        QVERIFY(!stage.field->IsUnreadable());
        QCOMPARE(stage.Text(), QString("0.5"));
        stage.Key(Qt::Key_Delete);
        QCOMPARE(stage.Text(), QString(""));
        stage.Enter(); // a field left empty has its value again
        QCOMPARE(stage.Text(), QString("0.5"));
        QCOMPARE(stage.finished, 0);
    }

    void WholeNumbersAndRange()
    {
        TimeCodeStage stage;
        stage.field->SetInteger(true);
        stage.field->SetRange(0.0, 10.0);
        for (const auto& [text, value] : {std::pair{"2.5", "3"}, {"99", "10"}}) {
            stage.Enter(text);
            QCOMPARE(stage.Text(), QString(value));
            stage.Leave();
        }
        QCOMPARE(stage.Value(), 10.0);
    }

    void ValuesFromOutside()
    {
        TimeCodeStage stage;
        stage.Type("*");
        stage.field->SetValue(0.1, 3); // playback goes on below the typing hand
        QCOMPARE(stage.Text(), QString("*"));
        stage.Enter("2");
        QCOMPARE(stage.Value(), 0.2);
        stage.field->SetValue(1.0 / 3.0, 2);
        QCOMPARE(stage.Text(), QString("0.33"));
        QCOMPARE(stage.finished, 1);
        connect(stage.field, &TimeCodeEdit::editingFinished,
                [&stage] { stage.field->SetValue(0.5, 3); }); // refuses what was typed
        stage.Enter("0.9");
        QCOMPARE(stage.Text(), QString("0.5"));
    }

    void ExpressionIsHandedOver()
    {
        TimeCodeStage stage;
        stage.Enter("=time/24");
        QVERIFY(stage.field->IsUnreadable()); // nobody there who reads expressions
        const TestScript script({});
        stage.Enter();
        QVERIFY(stage.field->IsExpressionText() && !stage.field->IsUnreadable());
        QCOMPARE(stage.field->ExpressionText(), QString("time/24"));
        QCOMPARE(stage.finished, 1);
        QCOMPARE(stage.Value(), 0.5);
        stage.field->MarkUnreadable("No input of that name.");
        stage.field->SetValue(0.25, 3);
        stage.Leave();
        QCOMPARE(stage.finished, 1); // what was refused is not tried again by leaving
        QCOMPARE(stage.Text(), QString("=time/24"));
        stage.field->SetValue(0.75, 3);
        QVERIFY(!stage.field->IsExpressionText());
        QCOMPARE(stage.Text(), QString("0.75"));
        // Refused while Enter is handled, the text is not selected, which would hide the mark.
        connect(stage.field, &TimeCodeEdit::editingFinished, stage.field,
                [&stage] { stage.field->MarkUnreadable("No input of that name."); });
        stage.Enter("=time/25");
        QVERIFY(stage.field->IsUnreadable());
        QVERIFY(!stage.field->findChild<QLineEdit*>()->hasSelectedText());
    }

    void TimesByPreference()
    {
        Preferences& preferences = Preferences::Global();
        preferences.Remove(TimeCodeEdit::PreferenceName);
        TimeCodeStage stage;
        stage.field->SetRange(0.0, 1e6);
        stage.field->SetTimeMode(true, 25.0);
        stage.field->SetValue(1500.0);
        QCOMPARE(stage.Text(), QString("1500"));
        stage.Enter("1:00");
        QCOMPARE(stage.Value(), 25.0);
        preferences.Set(TimeCodeEdit::PreferenceName, true);
        QCOMPARE(stage.Text(), QString("00:00:01:00"));
        stage.Enter("50");
        QCOMPARE(stage.Text(), QString("00:00:02:00"));
        stage.field->setCursorPosition(5); // in the minutes
        stage.Key(Qt::Key_Up);
        QCOMPARE(stage.Text(), QString("00:01:02:00"));
        QCOMPARE(stage.field->cursorPosition(), 5);
        preferences.Remove(TimeCodeEdit::PreferenceName);
        QCOMPARE(stage.Text(), QString("1550"));
    }

    void ShowsLessThanItHas()
    {
        TimeCodeStage stage;
        const auto look = [&stage](double value, int decimals) {
            stage.field->SetShownDecimals(decimals);
            stage.field->SetValue(value, 6);
            return stage.field->grab().toImage();
        };
        const QImage rounded = look(0.0491, -1);
        QVERIFY(look(0.049123456789, -1) != rounded);
        QVERIFY(look(0.049123456789, 4) == rounded);
        QCOMPARE(stage.Text(), QString("0.049123")); // to be edited
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
        QCOMPARE(stage.Text(), QString("0.25"));
    }

    void OpeningMovesNoText()
    {
        TimeCodeStage stage;
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
        stage.Leave();
        QVERIFY(!stage.field->findChild<QLineEdit*>()->isVisible());
        QVERIFY(hasErrorColor());
    }

    void SpeaksToScreenReaders()
    {
        TimeCodeStage stage;
        QAccessibleInterface* access = QAccessible::queryAccessibleInterface(stage.field);
        QCOMPARE(access->role(), QAccessible::SpinBox);
        QCOMPARE(access->text(QAccessible::Value), QString("0.5"));
        QAccessibleValueInterface* value = access->valueInterface();
        QCOMPARE(value->minimumValue().toDouble(), 0.0);
        QCOMPARE(value->maximumValue().toDouble(), 1.0);
        value->setCurrentValue(0.25);
        QCOMPARE(stage.Value(), 0.25);
        QCOMPARE(stage.finished, 1);
        stage.field->setReadOnly(true);
        value->setCurrentValue(0.75);
        QCOMPARE(stage.Value(), 0.25);
        QVERIFY(access->state().readOnly);
    }
};

QTEST_MAIN(TimeCodeTextTest)
#include "TimeCodeTextTest.moc"
