// Texts in the number field: typed, committed, refused, shown.
#include "TimeCodeStage.h"
#include "host/Rows.h"
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

    void Typing_data()
    {
        // On 0.5; \n is Enter, \t Tab, \x1b Escape and \x7f Delete.
        const Rows<QString, QString, double, int> row("keys", "shown", "value", "sent");
        row("nothing sent before it is asked for", "1/4", "1/4", 0.5, 0);
        row("Enter", "1/4\n", "0.25", 0.25, 1);
        row("all is selected, on what is shown", "1/4\n*3\n", "0.75", 0.75, 2);
        row("nothing new", "1/4\n\n\t", "0.25", 0.25, 1);
        row("leaving", "0,75\t", "0.75", 0.75, 1);
        row("range", "99\n-4\n", "0", 0.0, 2);
        row("unreadable", "1/0\n\t", "1/0", 0.5, 0);
        row("Escape", "0.9\x1b\t", "0.5", 0.5, 0);
        row("Escape from unreadable text", "what\n\x1b", "0.5", 0.5, 0);
        row("emptied", "\x7f", "", 0.5, 0);
        row("left empty", "\x7f\n", "0.5", 0.5, 0);
    }
    void Typing()
    {
        QFETCH(QString, keys);
        TimeCodeStage stage;
        stage.Type("");
        const QHash<QChar, Qt::Key> named{{'\n', Qt::Key_Return},
                                          {'\t', Qt::Key_Tab},
                                          {'\x1b', Qt::Key_Escape},
                                          {'\x7f', Qt::Key_Delete}};
        for (const QChar key : qAsConst(keys)) {
            if (named.contains(key))
                stage.Key(named[key]);
            else
                QTest::keyClick(stage.field, key.toLatin1());
        }
        QTEST(stage.Text(), "shown");
        QTEST(stage.Value(), "value");
        QTEST(stage.finished, "sent");
        QCOMPARE(stage.field->IsUnreadable(), keys.endsWith("0\n\t"));
        QCOMPARE(stage.field->hasFocus(), !keys.endsWith('\t'));
        QVERIFY(stage.field->hasFocus() || !stage.field->hasSelectedText());
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
        stage.Enter(); // digits that are not shown are not cut by passing through
        stage.Leave();
        QCOMPARE(stage.Value(), 1.0 / 3.0);
        QCOMPARE(stage.finished, 1);
        stage.field->SetInteger(true);
        stage.field->SetRange(0.0, 10.0);
        stage.Enter("2.5");
        QCOMPARE(stage.Text(), QString("3"));
        connect(stage.field, &TimeCodeEdit::editingFinished,
                [&stage] { stage.field->SetValue(5.0); }); // refuses what was typed
        stage.Enter("7");
        QCOMPARE(stage.Text(), QString("5"));
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
