// The small widgets that controls are put together from.
#include "system/resources/LookStyle.h"
#include "system/widgets/Container.h"
#include "system/widgets/CustomButton.h"
#include "system/widgets/CustomCheckBox.h"
#include "system/widgets/ElideLabel.h"
#include "system/widgets/KeyFrameIndicator.h"
#include "system/widgets/MxLineEdit.h"

#include <QAccessible>
#include <QtTest>

using namespace Marlox;

namespace {

/// How many of the widget's pixels differ clearly from its top left one.
int Marked(QWidget& widget)
{
    const QImage image = widget.grab().toImage();
    int marked = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            marked += std::abs(qGray(image.pixel(x, y)) - qGray(image.pixel(0, 0))) > 40;
    }
    return marked;
}

class Block : public QWidget {
public:
    explicit Block(int height) { setFixedHeight(height); }
};

} // namespace

class SmallWidgetsTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { ApplyLook(*qApp); }
    void ContainerStacks();
    void LineEditCommitsOnce();
    void LineEditShowsError();
    void IndicatorStates();
    void IndicatorAsks();
    void ButtonKeysAndSizes();
    void CheckBoxTakesItsLabel();
    void LabelElides_data();
    void LabelElides();
    void SpeakToScreenReaders();
};

void SmallWidgetsTest::ContainerStacks()
{
    Container container;
    QCOMPARE(container.sizeHint().height(), 0);
    QSignalSpy heights(&container, &Container::HeightChanged);
    auto* upper = new Block(20);
    auto* lower = new Block(30);
    container.AddWidget(nullptr);
    container.AddWidget(upper);
    container.AddWidget(lower);
    container.resize(200, 50);
    container.show();
    QTRY_COMPARE(heights.size(), 1);
    QCOMPARE(heights.last().first().toInt(), 50);
    QCOMPARE(upper->geometry(), QRect(0, 0, 200, 20));
    QCOMPARE(lower->geometry(), QRect(0, 20, 200, 30));
    upper->hide();
    QTRY_COMPARE(heights.size(), 2);
    QCOMPARE(container.minimumSizeHint().height(), 30);
    upper->show();
    container.AddWidget(upper); // to the end
    QTRY_COMPARE(lower->y(), 0);
    QCOMPARE(upper->y(), 30);
    container.RemoveWidget(lower);
    QTRY_COMPARE(container.sizeHint().height(), 20);
    QVERIFY(lower->isHidden());
}

void SmallWidgetsTest::LineEditCommitsOnce()
{
    QWidget window;
    MxLineEdit edit("old", &window);
    QLineEdit other(&window);
    window.show();
    QApplication::setActiveWindow(&window);
    QSignalSpy committed(&edit, &MxLineEdit::Committed);
    edit.setFocus();
    QTest::keyClicks(&edit, "er");
    QCOMPARE(committed.size(), 0);
    QTest::keyClick(&edit, Qt::Key_Return);
    other.setFocus();
    QCOMPARE(committed.size(), 1);
    QCOMPARE(committed.last().first().toString(), QString("older"));
    edit.setFocus();
    edit.selectAll();
    QTest::keyClicks(&edit, "gone");
    QTest::keyClick(&edit, Qt::Key_Escape);
    QCOMPARE(edit.text(), QString("older"));
    edit.setText("set"); // by the program, even in mid-typing
    QTest::keyClicks(&edit, "s");
    edit.setText("again");
    QTest::keyClick(&edit, Qt::Key_Escape);
    other.setFocus();
    QCOMPARE(edit.text(), QString("again"));
    QCOMPARE(committed.size(), 1);
    edit.setFocus();
    QTest::keyClicks(&edit, "!");
    other.setFocus();
    QCOMPARE(committed.size(), 2);
}

void SmallWidgetsTest::LineEditShowsError()
{
    MxLineEdit edit;
    edit.setToolTip("Path");
    const QColor plain = edit.palette().color(QPalette::Text);
    edit.SetError("No such file.");
    QCOMPARE(edit.toolTip(), QString("No such file."));
    QCOMPARE(edit.accessibleDescription(), QString("No such file."));
    QVERIFY(edit.palette().color(QPalette::Text) != plain);
    QTest::keyClicks(&edit, "x");
    QVERIFY(edit.Error().isEmpty());
    QCOMPARE(edit.toolTip(), QString("Path"));
    QCOMPARE(edit.palette().color(QPalette::Text), plain);
}

void SmallWidgetsTest::IndicatorStates()
{
    KeyFrameIndicator indicator;
    indicator.resize(indicator.sizeHint());
    using State = KeyFrameIndicator::State;
    QSet<QByteArray> pictures;
    QSet<QString> words;
    QMap<State, int> marked;
    for (const State state : {State::None, State::Animated, State::Keyed, State::Expression}) {
        indicator.SetState(state);
        const QImage image = indicator.grab().toImage();
        pictures.insert(
            {reinterpret_cast<const char*>(image.constBits()), int(image.sizeInBytes())});
        words.insert(KeyFrameIndicator::StateText(state));
        marked[state] = Marked(indicator);
    }
    QCOMPARE(pictures.size(), 4);
    QCOMPARE(words.size(), 4);
    QVERIFY(marked[State::None] < marked[State::Animated]);
    QVERIFY(marked[State::Animated] < marked[State::Keyed]);
}

void SmallWidgetsTest::IndicatorAsks()
{
    KeyFrameIndicator indicator;
    indicator.show();
    QSignalSpy toggled(&indicator, &KeyFrameIndicator::Toggled);
    QTest::mouseClick(&indicator, Qt::LeftButton);
    QTest::keyClick(&indicator, Qt::Key_Space);
    QTest::keyClick(&indicator, Qt::Key_Return);
    QCOMPARE(toggled.size(), 3);
    QCOMPARE(indicator.GetState(), KeyFrameIndicator::State::None); // its owner decides
    indicator.setEnabled(false);
    QTest::mouseClick(&indicator, Qt::LeftButton);
    QCOMPARE(toggled.size(), 3);
}

void SmallWidgetsTest::ButtonKeysAndSizes()
{
    CustomButton button("Apply");
    QSignalSpy clicked(&button, &CustomButton::clicked);
    button.show();
    QTest::keyClick(&button, Qt::Key_Return);
    QTest::keyClick(&button, Qt::Key_Space);
    QCOMPARE(clicked.size(), 2);
    const int words = button.sizeHint().width();
    QVERIFY(words > button.fontMetrics().horizontalAdvance("Apply"));
    button.SetBitmaps("Controls.Color.PickButton.1", "Controls.Color.PickButton.2");
    QVERIFY(button.sizeHint().width() > words);
    button.SetBitmaps("Controls.None.Such");
    QCOMPARE(button.sizeHint().width(), words);
}

void SmallWidgetsTest::CheckBoxTakesItsLabel()
{
    CustomCheckBox box("Premultiplied");
    box.resize(200, 20);
    box.show();
    QTest::mouseClick(&box, Qt::LeftButton, {}, {190, 10});
    QVERIFY(!box.isChecked());
    const int label = box.sizeHint().width() - 2;
    box.setLayoutDirection(Qt::RightToLeft);
    QTest::mouseClick(&box, Qt::LeftButton, {}, {label - 60, 10});
    QVERIFY(!box.isChecked());
    box.setLayoutDirection(Qt::LeftToRight);
    QTest::mouseClick(&box, Qt::LeftButton, {}, {label, 10});
    QVERIFY(box.isChecked());
    const int ticked = Marked(box);
    QTest::keyClick(&box, Qt::Key_Space);
    QVERIFY(!box.isChecked());
    QVERIFY(Marked(box) != ticked);
    QVERIFY(box.minimumSizeHint().width() < box.sizeHint().width());
}

void SmallWidgetsTest::LabelElides_data()
{
    QTest::addColumn<int>("mode");
    for (int mode = 0; mode < 4; ++mode)
        QTest::addRow("%d", mode) << mode;
}

void SmallWidgetsTest::LabelElides()
{
    QFETCH(int, mode);
    const QString text("Brightness of the lower left corner");
    ElideLabel label(nullptr, mode);
    label.SetText(text);
    label.resize(label.sizeHint());
    QCOMPARE(label.ShownText(), text);
    label.resize(60, 20);
    const QString shown = label.ShownText();
    const QChar dots(0x2026);
    const bool whole = mode == 3;
    QCOMPARE(shown == text, whole);
    QCOMPARE(shown.startsWith(dots), mode == 0);
    QCOMPARE(shown.endsWith(dots), mode == 1);
    QVERIFY(whole || label.fontMetrics().horizontalAdvance(shown) <= 60);
    QCOMPARE(label.minimumSizeHint().width(), 0);
}

void SmallWidgetsTest::SpeakToScreenReaders()
{
    KeyFrameIndicator indicator;
    indicator.SetState(KeyFrameIndicator::State::Keyed);
    QSignalSpy toggled(&indicator, &KeyFrameIndicator::Toggled);
    QAccessibleInterface* access = QAccessible::queryAccessibleInterface(&indicator);
    QCOMPARE(access->role(), QAccessible::PushButton);
    QVERIFY(!access->text(QAccessible::Name).isEmpty());
    QCOMPARE(access->text(QAccessible::Value),
             KeyFrameIndicator::StateText(KeyFrameIndicator::State::Keyed));
    access->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    QCOMPARE(toggled.size(), 1);

    CustomButton button("&Apply");
    button.setCheckable(true);
    button.setChecked(true);
    access = QAccessible::queryAccessibleInterface(&button);
    QCOMPARE(access->text(QAccessible::Name), QString("Apply"));
    QVERIFY(access->state().checked);

    ElideLabel label;
    label.SetText("Gain");
    access = QAccessible::queryAccessibleInterface(&label);
    QCOMPARE(access->role(), QAccessible::StaticText);
    QCOMPARE(access->text(QAccessible::Name), QString("Gain"));

    CustomCheckBox box("Clip");
    access = QAccessible::queryAccessibleInterface(&box);
    QCOMPARE(access->role(), QAccessible::CheckBox);
    QCOMPARE(access->text(QAccessible::Name), QString("Clip"));
}

QTEST_MAIN(SmallWidgetsTest)
#include "SmallWidgetsTest.moc"
