#include "controls/inspector/CheckBoxControl.h"
#include "controls/inspector/ComboControl.h"
#include "host/controls/Probe.h"
#include "plugin/SliderStage.h"
#include "script/ScriptSystem.h"
#include "system/base/HostClassIds.h"
#include "system/resources/Resources.h"
#include "system/widgets/CustomCheckBox.h"
#include "system/widgets/ElideLabel.h"
#include "widgets/ComboPopup.h"
#include "widgets/CustomCombo.h"

#include <cmath>

#include <QAccessible>
#include <QScreen>
#include <QScrollBar>
#include <QSignalSpy>
#include <QToolTip>
#include <QVBoxLayout>
#include <QtTest>

using namespace Marlox;

namespace {

constexpr char combo[] = "ComboControl";
constexpr char comboID[] = "ComboIDControl";
constexpr char checkBox[] = "CheckboxControl";

struct Staged {
    const char* id;
    const char* control;
    std::vector<TagPair> attributes;
};

const std::vector<TagPair> filters = {
    {CMBS_Entry, "Nearest"}, {CMBS_Entry, "Bilinear"}, {CMBS_Entry, "Bicubic"}, {IAD_Default, 1.0}};
const std::vector<TagPair> spaces = {{IAS_DataType, CLSID_DataType_Text},
                                     {IAS_Default, "lin"},
                                     {CMBS_Entry, "Linear"},
                                     {CMBS_Entry, "Display"},
                                     {CMBS_Entry, "Raw"},
                                     {CMBS_EntryID, "lin"},
                                     {CMBS_EntryID, "srgb"}};

/// A document with one tool whose inputs stand on an open, active inspector page.
class ChoiceStage {
public:
    explicit ChoiceStage(const std::vector<Staged>& inputs);
    explicit ChoiceStage(const char* control, const std::vector<TagPair>& attributes)
        : ChoiceStage(std::vector<Staged>{{"Choice", control, attributes}})
    {
    }

    Input& In(const char* id = "Choice") const { return *tool->FindInput(id); }
    double Number(const char* id = "Choice") const { return In(id).GetNumber(Time()); }
    QString Id(const char* id = "Choice") const
    {
        const Ref<Parameter> value = In(id).GetValue(Time());
        return QString::fromStdString(dynamic_cast<const Text&>(*value).GetValue());
    }
    double Time() const { return document->CurrentTime(); }
    InputControl& Control(const char* id = "Choice") const { return *page->ControlOf(In(id)); }
    CustomCombo& Combo(const char* id = "Choice") const
    {
        return *Control(id).findChild<CustomCombo*>("combo");
    }
    CustomCheckBox& Box(const char* id = "Choice") const
    {
        return *Control(id).findChild<CustomCheckBox*>("checkbox");
    }
    ComboPopup& Open(const char* id = "Choice") const
    {
        Pointer::Press(Combo(id), {10, 10});
        Pointer::Release(Combo(id), {10, 10});
        return *Combo(id).List();
    }
    int Entries() const { return document->Undo().Stack().count(); }

    std::unique_ptr<MarloxDoc> document = std::make_unique<MarloxDoc>();
    std::unique_ptr<QWidget> window = std::make_unique<QWidget>();
    ControlWnd* page = new ControlWnd(window.get());
    Operator* tool = nullptr;
};

ChoiceStage::ChoiceStage(const std::vector<Staged>& inputs)
{
    SetProbeInputs([&inputs](Operator& added) {
        for (const Staged& input : inputs) {
            TagList tags({{IAS_Name, input.id}, {IAS_Control, input.control}});
            for (const TagPair& pair : input.attributes)
                tags.Add(u32(pair.tag), pair.value);
            added.AddInput(input.id, tags);
        }
    });
    tool = document->AddTool("ProbeTool");
    document->Undo().Clear();
    auto* column = new QVBoxLayout(window.get());
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(page);
    page->SetOperator(tool);
    window->resize(380, page->sizeHint().height());
    window->show();
    window->activateWindow();
    (void)QTest::qWaitForWindowActive(window.get());
    QCoreApplication::processEvents();
}

QPointF middleOf(const ComboPopup& list, int row)
{
    return QRectF(list.RowRect(row)).center();
}

/// Pixels of a colour in what a widget draws.
int pixelsOf(QWidget& widget, const QColor& color)
{
    const QImage image = widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += image.pixel(x, y) == color.rgb() ? 1 : 0;
    }
    return count;
}

QColor look(const char* name)
{
    return LookPack::Global().Color(name, {1, 2, 3}).ToQColor();
}

} // namespace

/// Combo boxes, plain and by id, and check boxes on an inspector page.
class ChoiceControlTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { InstallScripting(); }
    void BuildsItsWidgets();
    void ReadsEntries();
    void RefusesOtherKinds();
    void ChoosesFromTheList();
    void KeepsUnlessChosen();
    void WritesIds();
    void ShowsStrangers();
    void StepsWhileClosed();
    void LettersAndKeysOpenTheList();
    void WheelStepsWithTheFocusOnly();
    void LongListsScroll();
    void PressDragRelease();
    void ChoicesAreKeys();
    void ExpressionsRule();
    void ClosesWithItsReason();
    void TooltipsTellAll();
    void SpeaksToScreenReaders();
    void BoxToggles();
    void BoxCancelsOutside();
    void BoxShowsOtherValues();
    void BoxWithoutName();
    void BoxFollowsItsInput();
    void SurvivesTheEndOfThePage_data();
    void SurvivesTheEndOfThePage();
};

void ChoiceControlTest::BuildsItsWidgets()
{
    std::vector<TagPair> vertical = filters;
    vertical.push_back({CMB_Vertical, 1});
    std::vector<TagPair> bare = filters;
    bare.push_back({IC_NoLabel, 1});
    const ChoiceStage stage({{"Filter", combo, filters},
                             {"High", combo, vertical},
                             {"Bare", combo, bare},
                             {"Space", comboID, spaces}});
    for (const char* id : {"Filter", "High", "Bare", "Space"}) {
        const InputControl& control = stage.Control(id);
        QVERIFY2(control.Fault().isEmpty(), qPrintable(control.Fault()));
        QCOMPARE(control.FindLayoutObj("combo")->Widget(), &stage.Combo(id));
        QCOMPARE(stage.Combo(id).accessibleName(), QString(id));
    }
    const auto label = [&](const char* id) {
        return stage.Control(id).findChild<ElideLabel*>("label");
    };
    QCOMPARE(label("Filter")->Text(), QString("Filter"));
    QCOMPARE(label("Filter")->focusProxy(), &stage.Combo("Filter"));
    QVERIFY(label("Filter")->geometry().right() < stage.Combo("Filter").x());
    QVERIFY(label("High")->geometry().bottom() <= stage.Combo("High").y());
    QVERIFY(label("Filter")->isVisible() && label("High")->isVisible());
    QVERIFY(!label("Bare")->isVisible());
    QVERIFY(stage.Combo("Bare").width() > stage.Combo("Filter").width());
    QCOMPARE(stage.Combo("Filter").EntryTexts(), QStringList({"Nearest", "Bilinear", "Bicubic"}));
    QCOMPARE(stage.Combo("Filter").Text(), QString("Bilinear"));
    QCOMPARE(stage.Combo("Space").Text(), QString("Linear"));
    QCOMPARE(stage.Control("Filter").GetInputFrom(label("Filter"), nullptr), &stage.In("Filter"));
}

void ChoiceControlTest::ReadsEntries()
{
    const ChoiceStage stage(comboID, spaces);
    InputControl& control = stage.Control();
    const auto all = [&control](u32 tag) {
        TagList tags({{tag, 0}});
        QStringList texts;
        if (control.DoTagList(Object::CommandGetRepeated, tags) == 1) {
            for (const TagPair* pair = tags.First(); pair; pair = tags.Next(pair))
                texts += pair->value.text;
        }
        return texts.join(' ');
    };
    QCOMPARE(all(CMBS_Entry), QString("Linear Display Raw"));
    QCOMPARE(all(CMBS_EntryID), QString("lin srgb Raw")); // its text, where none is given
    QCOMPARE(all(CMB_Vertical), QString());
    QCOMPARE(QString(control.GetAttrS(CMBS_Entry)), QString("Linear"));
    // Others from a script, then from the tool: those of the script stay.
    control.SetAttrsTagList(TagList({{CMBS_Entry, "One"}, {CMBS_Entry, "Two"}}));
    QCOMPARE(all(CMBS_Entry), QString("One Two"));
    QCOMPARE(all(CMBS_EntryID), QString("lin srgb"));
    QCOMPARE(stage.Combo().Text(), QString("One"));
    stage.In().SetAttrsTagList(TagList({{CMBS_EntryID, "uno"}, {CMBS_EntryID, "lin"}}));
    QCOMPARE(all(CMBS_Entry), QString("One Two"));
    QCOMPARE(stage.Combo().Text(), QString("Two"));
    QCOMPARE(stage.Entries(), 0);

    // Made by a script, without an input.
    const Ref<Object> made(ClassRegistry::Global().Create(
        comboID, ScriptVal(), TagList({{CMBS_Entry, "a"}, {CMBS_Entry, "b"}})));
    made->SetAttrsTagList(TagList({{CMBS_EntryID, "A"}, {CMBS_EntryID, "B"}}));
    TagList tags({{CMBS_EntryID, 0}});
    QCOMPARE(made->DoTagList(Object::CommandGetRepeated, tags), u64(1));
    QCOMPARE(tags.Count(), std::size_t(2));
    QCOMPARE(QString(tags.GetString(CMBS_EntryID)), QString("A"));
}

void ChoiceControlTest::RefusesOtherKinds()
{
    const ChoiceStage stage({{"Number", comboID, filters}, {"Text", combo, spaces}});
    QVERIFY(stage.page->Controls().empty());
    QVERIFY(stage.page->findChild<ElideLabel*>()->Text().startsWith("Number: "));
}

void ChoiceControlTest::ChoosesFromTheList()
{
    const ChoiceStage stage(combo, filters);
    ComboPopup& list = stage.Open();
    QVERIFY(list.isVisible() && stage.Combo().hasFocus());
    QCOMPARE(list.Chosen(), 1);
    QCOMPARE(list.Lit(), 1);
    Pointer::Move(list, middleOf(list, 0), Qt::NoModifier, Qt::NoButton);
    QCOMPARE(list.Lit(), 0);
    Pointer::Key(list, QEvent::KeyPress, Qt::Key_Down);
    Pointer::Key(list, QEvent::KeyPress, Qt::Key_End);
    QCOMPARE(list.Lit(), 2);
    QCOMPARE(stage.Number(), 1.0); // not yet
    QCOMPARE(stage.Entries(), 0);
    Pointer::Key(list, QEvent::KeyPress, Qt::Key_Return);
    QVERIFY(!stage.Combo().IsListOpen());
    QCOMPARE(stage.Number(), 2.0);
    QCOMPARE(stage.Entries(), 1);
    QCOMPARE(stage.document->Undo().UndoText(), QString("Adjust Choice"));

    ComboPopup& again = stage.Open();
    QCOMPARE(again.Lit(), 2);
    Pointer::Press(again, middleOf(again, 0));
    Pointer::Release(again, middleOf(again, 0));
    QCOMPARE(stage.Number(), 0.0);
    QCOMPARE(stage.Entries(), 2);
    stage.document->Undo().Undo();
    QCOMPARE(stage.Combo().Index(), 2);
    QCOMPARE(stage.document->Undo().Depth(), 0);
}

void ChoiceControlTest::KeepsUnlessChosen()
{
    const ChoiceStage stage(combo, filters);
    for (const int key : {Qt::Key_Escape, Qt::Key_Tab, Qt::Key_F4, Qt::Key_Return}) {
        ComboPopup& list = stage.Open();
        if (key != Qt::Key_Return) // which chooses what is chosen
            Pointer::Key(list, QEvent::KeyPress, Qt::Key_Up);
        Pointer::Key(list, QEvent::KeyPress, key);
        QVERIFY(!stage.Combo().IsListOpen());
    }
    ComboPopup& list = stage.Open();
    Pointer::Key(list, QEvent::KeyPress, Qt::Key_Up);
    Pointer::Key(list, QEvent::KeyPress, Qt::Key_Up, Qt::AltModifier);
    QVERIFY(!stage.Combo().IsListOpen());
    ComboPopup& left = stage.Open();
    Pointer::Press(left, {-50, -200});
    QVERIFY(!stage.Combo().IsListOpen());
    QCOMPARE(stage.Number(), 1.0);
    QCOMPARE(stage.Entries(), 0);
}

void ChoiceControlTest::WritesIds()
{
    const ChoiceStage stage(comboID, spaces);
    ComboPopup& list = stage.Open();
    Pointer::Key(list, QEvent::KeyPress, Qt::Key_Down);
    Pointer::Key(list, QEvent::KeyPress, Qt::Key_Return);
    QCOMPARE(stage.Id(), QString("srgb"));
    QCOMPARE(stage.Entries(), 1);
    Pointer::Key(stage.Combo(), QEvent::KeyPress, Qt::Key_End);
    Pointer::Key(stage.Combo(), QEvent::KeyRelease, Qt::Key_End);
    QCOMPARE(stage.Id(), QString("Raw"));
    QCOMPARE(stage.Entries(), 2);
    stage.document->Undo().Undo();
    stage.document->Undo().Undo();
    QCOMPARE(stage.Combo().Text(), QString("Linear"));
}

void ChoiceControlTest::ShowsStrangers()
{
    const ChoiceStage stage({{"Filter", combo, filters}, {"Space", comboID, spaces}});
    const auto shows = [&stage](const char* id, const Ref<Parameter>& value, const char* part) {
        stage.In(id).SetValue(*value, 0.0);
        const CustomCombo& field = stage.Combo(id);
        return field.IsStranger() && field.Text().contains(part) && field.Text() != part;
    };
    for (const auto& [number, part] :
         {std::pair{7.0, "7"}, {-1.0, "-1"}, {double(NAN), "nan"}, {1e300, "e+300"}})
        QVERIFY2(shows("Filter", MakeRef<Number>(number), part), part);
    for (const char* id : {"xyz", "LIN", "Linear"})
        QVERIFY2(shows("Space", MakeRef<Text>(id), id), id);
    QVERIFY(shows("Space", MakeRef<Text>(""), "no value"));
    QVERIFY(pixelsOf(stage.Combo("Space"), look("System.ErrorTextColour")) > 0);

    const int before = stage.Entries();
    ComboPopup& list = stage.Open("Filter");
    QVERIFY(list.Lit() == ComboModel::none && list.Chosen() == ComboModel::none);
    Pointer::Key(list, QEvent::KeyPress, Qt::Key_Return); // nothing is lit
    QCOMPARE(stage.Number("Filter"), 1e300);
    QCOMPARE(stage.Entries(), before);
    Pointer::Key(stage.Combo("Filter"), QEvent::KeyPress, Qt::Key_Up);
    Pointer::Key(stage.Combo("Filter"), QEvent::KeyRelease, Qt::Key_Up);
    QCOMPARE(stage.Number("Filter"), 2.0);
    QCOMPARE(stage.Entries(), before + 1);
    // Between two entries the nearer; choosing it changes nothing.
    stage.In("Filter").SetValue(Number(1.25), 0.0);
    QCOMPARE(stage.Combo("Filter").Index(), 1);
    Pointer::Key(stage.Open("Filter"), QEvent::KeyPress, Qt::Key_Return);
    QCOMPARE(stage.Number("Filter"), 1.25);
}

void ChoiceControlTest::StepsWhileClosed()
{
    std::vector<TagPair> many;
    for (int i = 0; i < 20; ++i)
        many.push_back({CMBS_Entry, "entry"});
    const ChoiceStage stage(combo, many);
    CustomCombo& field = stage.Combo();
    field.setFocus();
    for (int i = 0; i < 3; ++i) // held down
        Pointer::Key(field, QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier, i > 0);
    QCOMPARE(stage.Number(), 3.0);
    QCOMPARE(stage.Entries(), 0);
    Pointer::Key(field, QEvent::KeyRelease, Qt::Key_Down);
    QCOMPARE(stage.Entries(), 1);
    const auto press = [&](int key) {
        Pointer::Key(field, QEvent::KeyPress, key);
        Pointer::Key(field, QEvent::KeyRelease, key);
        return stage.Number();
    };
    QCOMPARE(press(Qt::Key_PageDown), 11.0);
    QCOMPARE(press(Qt::Key_End), 19.0);
    QCOMPARE(press(Qt::Key_Down), 19.0);
    QCOMPARE(stage.Entries(), 3);
    QCOMPARE(press(Qt::Key_PageUp), 11.0);
    QCOMPARE(press(Qt::Key_Up), 10.0);
    QCOMPARE(press(Qt::Key_Home), 0.0);
    QCOMPARE(stage.document->Undo().Depth(), 0);
    QCOMPARE(press(Qt::Key_Right), 0.0); // the time's
}

void ChoiceControlTest::LettersAndKeysOpenTheList()
{
    const ChoiceStage stage(combo, filters);
    CustomCombo& field = stage.Combo();
    field.setFocus();
    const auto opens = [&](int key, Qt::KeyboardModifiers held) {
        Pointer::Key(field, QEvent::KeyPress, key, held);
        const bool open = field.IsListOpen();
        field.CloseList();
        return open;
    };
    QVERIFY(opens(Qt::Key_Down, Qt::AltModifier) && opens(Qt::Key_Up, Qt::AltModifier));
    QVERIFY(opens(Qt::Key_F4, Qt::NoModifier) && opens(Qt::Key_Space, Qt::NoModifier));
    QVERIFY(!opens(Qt::Key_Left, Qt::NoModifier) && !opens(Qt::Key_Return, Qt::NoModifier));
    QVERIFY(!opens(Qt::Key_B, Qt::ControlModifier));
    QCOMPARE(stage.Number(), 1.0);
    QTest::keyClick(&field, 'b');
    QVERIFY(field.IsListOpen());
    QCOMPARE(field.List()->Lit(), 2); // the next one
    QTest::keyClicks(field.List(), "il");
    QCOMPARE(field.List()->Lit(), 1);
    QTest::keyClicks(field.List(), "x"); // no such entry
    QCOMPARE(field.List()->Lit(), 1);
    Pointer::Key(*field.List(), QEvent::KeyPress, Qt::Key_Home);
    QCOMPARE(stage.Number(), 1.0);
    Pointer::Key(*field.List(), QEvent::KeyPress, Qt::Key_Enter);
    QCOMPARE(stage.Number(), 0.0);
    // Before any shortcut gets them.
    QKeyEvent letter(QEvent::ShortcutOverride, Qt::Key_B, Qt::NoModifier, "b");
    letter.ignore();
    QApplication::sendEvent(&field, &letter);
    QVERIFY(letter.isAccepted());
    QKeyEvent other(QEvent::ShortcutOverride, Qt::Key_Left, Qt::NoModifier);
    other.ignore();
    QApplication::sendEvent(&field, &other);
    QVERIFY(!other.isAccepted());
}

void ChoiceControlTest::WheelStepsWithTheFocusOnly()
{
    const ChoiceStage stage(combo, filters);
    CustomCombo& field = stage.Combo();
    stage.page->setFocusPolicy(Qt::StrongFocus);
    stage.page->setFocus();
    Pointer::Wheel(field, -120);
    QCOMPARE(stage.Number(), 1.0);
    QVERIFY(!field.hasFocus());
    field.setFocus();
    Pointer::Wheel(field, -120);
    QCOMPARE(stage.Number(), 2.0);
    for (int i = 0; i < 5; ++i) // of a touchpad
        Pointer::Wheel(field, 30);
    QCOMPARE(stage.Number(), 1.0);
    QCOMPARE(stage.Entries(), 0);
    Pointer::Wheel(field, -120);
    QTRY_COMPARE(stage.Entries(), 1);
    QCOMPARE(stage.Number(), 2.0);
    QCOMPARE(stage.document->Undo().Depth(), 0);
}

void ChoiceControlTest::LongListsScroll()
{
    std::vector<TagPair> many = {{IAD_Default, 150.0}};
    const QByteArray wide(400, 'w');
    for (int i = 0; i < 200; ++i)
        many.push_back({CMBS_Entry, i == 150 ? wide.constData() : "entry"});
    const ChoiceStage stage(combo, many);
    ComboPopup& list = stage.Open();
    auto* bar = list.findChild<QScrollBar*>();
    QVERIFY(bar && bar->isVisible());
    const int shown = list.List().Shown();
    QVERIFY(shown > 4 && shown <= 16);
    QVERIFY(list.FirstShown() <= 150 && 150 < list.FirstShown() + shown);
    QVERIFY(list.width() <= list.screen()->availableGeometry().width());
    const int first = list.FirstShown();
    Pointer::Wheel(list, -120);
    QCOMPARE(list.FirstShown(), first + 3);
    QCOMPARE(bar->value(), first + 3);
    QCOMPARE(list.Lit(), first + 3); // what the pointer is on
    bar->setValue(0);
    QCOMPARE(list.FirstShown(), 0);
    Pointer::Key(list, QEvent::KeyPress, Qt::Key_End);
    QCOMPARE(list.FirstShown(), 200 - shown);
    Pointer::Key(list, QEvent::KeyPress, Qt::Key_PageUp);
    QCOMPARE(list.Lit(), 199 - (shown - 1));
    QCOMPARE(stage.Number(), 150.0);
    Pointer::Key(list, QEvent::KeyPress, Qt::Key_Escape);
    QVERIFY(pixelsOf(stage.Combo(), stage.Combo().palette().color(QPalette::ButtonText)) > 0);
}

void ChoiceControlTest::PressDragRelease()
{
    const ChoiceStage stage(combo, filters);
    Pointer::Press(stage.Combo(), {10, 10});
    ComboPopup& list = *stage.Combo().List();
    Pointer::Release(list, {10, -12}); // still on the field
    QVERIFY(stage.Combo().IsListOpen());
    Pointer::Move(list, middleOf(list, 0));
    Pointer::Move(list, {-40, 400});
    Pointer::Release(list, {-40, 400}); // outside: stays open, lit
    QCOMPARE(list.Lit(), 0);
    Pointer::Move(list, middleOf(list, 2));
    Pointer::Release(list, middleOf(list, 2));
    QCOMPARE(stage.Number(), 2.0);
    QCOMPARE(stage.Entries(), 1);
    Pointer::Press(stage.Combo(), {10, 10}, Qt::NoModifier, Qt::MiddleButton);
    QVERIFY(!stage.Combo().IsListOpen());
}

void ChoiceControlTest::ChoicesAreKeys()
{
    const ChoiceStage stage({{"Filter", combo, filters}, {"Space", comboID, spaces}});
    const QColor key = look("System.KeyColour");
    QCOMPARE(pixelsOf(stage.Combo("Filter"), key), 0);
    for (const char* id : {"Filter", "Space"}) {
        stage.document->SetCurrentTime(0.0);
        stage.In(id).AddKey(0.0, Interpolation::Step);
        QVERIFY2(pixelsOf(stage.Combo(id), key) > 100, id);
        stage.document->SetCurrentTime(10.0);
        QCOMPARE(pixelsOf(stage.Combo(id), key), 0); // paler between keys
        const int before = stage.Entries();
        Pointer::Key(stage.Combo(id), QEvent::KeyPress, Qt::Key_Down);
        Pointer::Key(stage.Combo(id), QEvent::KeyRelease, Qt::Key_Down);
        QVERIFY2(stage.In(id).IsKeyAt(10.0) && stage.In(id).IsKeyAt(0.0), id);
        QCOMPARE(stage.Entries(), before + 1);
        QVERIFY2(pixelsOf(stage.Combo(id), key) > 100, id);
    }
    QCOMPARE(stage.Combo("Filter").Text(), QString("Bicubic"));
    stage.document->SetCurrentTime(5.0);
    QCOMPARE(stage.Combo("Filter").Text(), QString("Bilinear"));
    QCOMPARE(stage.Combo("Space").Text(), QString("Linear"));
}

void ChoiceControlTest::ExpressionsRule()
{
    const ChoiceStage stage({{"Filter", combo, filters}, {"Space", comboID, spaces}});
    const QColor yellow = look("Controls.ExpressionColour");
    QSignalSpy problems(stage.page, &ControlWnd::Problem);
    stage.In("Filter").SetExpression("time / 10");
    stage.In("Space").SetExpression("time > 5 and 'srgb' or 'none'");
    const int before = stage.Entries();
    for (const char* id : {"Filter", "Space"}) {
        CustomCombo& field = stage.Combo(id);
        QVERIFY2(pixelsOf(field, yellow) > 100, id);
        problems.clear();
        Pointer::Press(field, {10, 10});
        QVERIFY2(!field.IsListOpen() && problems.count() == 1, id);
        for (const int key : {Qt::Key_Down, Qt::Key_Space, Qt::Key_B})
            QTest::keyClick(&field, Qt::Key(key));
        Pointer::Wheel(field, -120);
        QVERIFY2(!field.IsListOpen() && field.IsLocked(), id);
    }
    QCOMPARE(stage.Combo("Filter").Text(), QString("Nearest"));
    QVERIFY(stage.Combo("Space").IsStranger());
    stage.document->SetCurrentTime(20.0);
    QCOMPARE(stage.Combo("Filter").Text(), QString("Bicubic"));
    QCOMPARE(stage.Combo("Space").Text(), QString("Display"));
    QCOMPARE(stage.Entries(), before);
    QVERIFY(stage.Control("Filter").findChild<QWidget*>("expression")->isVisible());
    stage.In("Filter").SetExpression("");
    QCOMPARE(pixelsOf(stage.Combo("Filter"), yellow), 0);
    stage.Open("Filter");
    QVERIFY(stage.Combo("Filter").IsListOpen());
}

void ChoiceControlTest::ClosesWithItsReason()
{
    const ChoiceStage stage(combo, filters);
    CustomCombo& field = stage.Combo();
    stage.Open();
    stage.In().SetValue(Number(2.0), 0.0); // meanwhile, by something else
    QCOMPARE(field.List()->Chosen(), 2);
    stage.tool->SetLocked(true);
    QVERIFY(!field.IsListOpen() && !field.isEnabled());
    Pointer::Press(field, {10, 10});
    QVERIFY(!field.IsListOpen());
    stage.tool->SetLocked(false);
    stage.Open();
    stage.Control().SetAttrsTagList(TagList({{CMBS_Entry, "Other"}}));
    QVERIFY(!field.IsListOpen());
    QVERIFY(field.IsStranger());
    stage.Open();
    stage.In().SetAttrsTagList(TagList({{IA_ReadOnly, 1}}));
    QVERIFY(!field.IsListOpen() && !field.isEnabled());
    stage.In().SetAttrsTagList(TagList({{IA_ReadOnly, 0}, {IC_EditDisabled, 1}}));
    QVERIFY(field.isEnabled());
    Pointer::Press(field, {10, 10});
    QVERIFY(!field.IsListOpen());
    QCOMPARE(stage.Number(), 2.0);
}

void ChoiceControlTest::TooltipsTellAll()
{
    const QByteArray wide(80, 'w');
    const ChoiceStage stage(
        {{"Filter", combo, {{CMBS_Entry, "short"}, {CMBS_Entry, wide.constData()}}},
         {wide.constData(), checkBox, {{IAS_Help, "What it does."}}}});
    const auto told = [](QWidget& widget) {
        QToolTip::hideText();
        QHelpEvent asks(QEvent::ToolTip, {5, 5}, widget.mapToGlobal({5, 5}));
        QApplication::sendEvent(&widget, &asks);
        return QToolTip::text();
    };
    CustomCombo& field = stage.Combo("Filter");
    QCOMPARE(told(field), QString());
    stage.In("Filter").SetValue(Number(1.0), 0.0);
    QCOMPARE(told(field), QString(wide));
    field.SetHelp("Help.");
    QCOMPARE(told(field), wide + "\nHelp.");
    stage.In("Filter").SetValue(Number(9.0), 0.0);
    QVERIFY(told(field).contains("\"9\"") && told(field).endsWith("\nHelp."));
    QCOMPARE(told(stage.Box(wide)), wide + "\nWhat it does.");
}

void ChoiceControlTest::SpeaksToScreenReaders()
{
    const ChoiceStage stage({{"Filter", combo, filters}, {"Clip", checkBox, {}}});
    QAccessibleInterface* field = QAccessible::queryAccessibleInterface(&stage.Combo("Filter"));
    QCOMPARE(field->role(), QAccessible::ComboBox);
    QCOMPARE(field->text(QAccessible::Name), QString("Filter"));
    QCOMPARE(field->text(QAccessible::Value), QString("Bilinear"));
    QVERIFY(field->state().hasPopup && field->state().collapsed);
    field->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
    QVERIFY(field->state().expanded);
    QAccessibleInterface* list =
        QAccessible::queryAccessibleInterface(stage.Combo("Filter").List());
    QCOMPARE(list->childCount(), 3);
    QCOMPARE(list->focusChild(), list->child(1));
    QAccessibleInterface* row = list->child(2);
    QCOMPARE(row->role(), QAccessible::ListItem);
    QCOMPARE(row->text(QAccessible::Name), QString("Bicubic"));
    QCOMPARE(list->indexOfChild(row), 2);
    QCOMPARE(list->childAt(row->rect().center().x(), row->rect().center().y()), row);
    row->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    QCOMPARE(stage.Number("Filter"), 2.0);
    QVERIFY(field->state().collapsed);

    QAccessibleInterface* box = QAccessible::queryAccessibleInterface(&stage.Box("Clip"));
    QCOMPARE(box->role(), QAccessible::CheckBox);
    QCOMPARE(box->text(QAccessible::Name), QString("Clip"));
    stage.In("Clip").SetValue(Number(0.5), 0.0);
    QVERIFY(box->state().checkStateMixed);
}

// Check boxes ------------------------------------------------------------------------------------

void ChoiceControlTest::BoxToggles()
{
    const char* id = "Clip & keep";
    const ChoiceStage stage(std::vector<Staged>{{id, checkBox, {}}});
    CustomCheckBox& box = stage.Box(id);
    QCOMPARE(box.text(), QString("Clip && keep"));
    QVERIFY(!box.isChecked());
    QTest::mouseClick(&box, Qt::LeftButton, {}, {8, box.height() / 2}); // the box
    QCOMPARE(stage.Number(id), 1.0);
    QTest::mouseClick(&box, Qt::LeftButton, {}, {60, box.height() / 2}); // the name
    QCOMPARE(stage.Number(id), 0.0);
    QTest::keyClick(&box, Qt::Key_Space);
    QCOMPARE(stage.Number(id), 1.0);
    QCOMPARE(stage.Entries(), 3);
    QCOMPARE(stage.document->Undo().UndoText(), QString("Adjust Clip & keep"));
    stage.document->Undo().Undo();
    QVERIFY(!box.isChecked());
}

void ChoiceControlTest::BoxCancelsOutside()
{
    const ChoiceStage stage(checkBox, {});
    CustomCheckBox& box = stage.Box();
    Pointer::Press(box, {8, 8});
    QVERIFY(box.isDown());
    Pointer::Move(box, {8, 200});
    QVERIFY(!box.isDown());
    Pointer::Release(box, {8, 200});
    QCOMPARE(stage.Number(), 0.0);
    QCOMPARE(stage.Entries(), 0);
    Pointer::Press(box, {8, 8});
    Pointer::Move(box, {8, 200});
    Pointer::Move(box, {12, 8}); // back again
    Pointer::Release(box, {12, 8});
    QCOMPARE(stage.Number(), 1.0);
}

void ChoiceControlTest::BoxShowsOtherValues()
{
    const ChoiceStage stage(checkBox, {});
    CustomCheckBox& box = stage.Box();
    for (const double value : {0.5, -1.0, 2.0, double(NAN)}) {
        stage.In().SetValue(Number(value), 0.0);
        QCOMPARE(box.checkState(), Qt::PartiallyChecked);
        box.click();
        QCOMPARE(stage.Number(), 1.0);
        QCOMPARE(box.checkState(), Qt::Checked);
        box.click();
        QCOMPARE(stage.Number(), 0.0);
        QCOMPARE(box.checkState(), Qt::Unchecked);
    }
}

void ChoiceControlTest::BoxWithoutName()
{
    const ChoiceStage stage(checkBox, {{IC_NoLabel, 1}});
    CustomCheckBox& box = stage.Box();
    QVERIFY(box.text().isEmpty() && box.isVisible());
    QCOMPARE(box.accessibleName(), QString("Choice"));
    QTest::mouseClick(&box, Qt::LeftButton, {}, {8, box.height() / 2});
    QCOMPARE(stage.Number(), 1.0);
}

void ChoiceControlTest::BoxFollowsItsInput()
{
    const ChoiceStage stage(checkBox, {});
    CustomCheckBox& box = stage.Box();
    QSignalSpy problems(stage.page, &ControlWnd::Problem);
    stage.In().SetExpression("time > 5 and 1 or 0");
    const int before = stage.Entries();
    QVERIFY(pixelsOf(box, look("Controls.ExpressionColour")) > 20);
    box.click();
    QVERIFY(!box.isChecked() && problems.count() == 1);
    stage.document->SetCurrentTime(6.0);
    QVERIFY(box.isChecked());
    QCOMPARE(stage.Entries(), before);
    stage.In().SetExpression("");
    QCOMPARE(pixelsOf(box, look("Controls.ExpressionColour")), 0);
    stage.In().AddKey(6.0);
    QVERIFY(pixelsOf(box, look("System.KeyColour")) > 20);
    stage.document->SetCurrentTime(9.0);
    box.click();
    QVERIFY(stage.In().IsKeyAt(9.0) && stage.In().IsKeyAt(6.0));
    stage.tool->SetLocked(true);
    const double kept = stage.Number();
    QTest::mouseClick(&box, Qt::LeftButton, {}, {8, 8});
    QCOMPARE(stage.Number(), kept);
}

void ChoiceControlTest::SurvivesTheEndOfThePage_data()
{
    QTest::addColumn<QString>("how");
    for (const char* how : {"list", "key", "box", "while open"})
        QTest::newRow(how) << QString(how);
}

void ChoiceControlTest::SurvivesTheEndOfThePage()
{
    QFETCH(QString, how);
    const ChoiceStage stage({{"Filter", combo, filters}, {"Clip", checkBox, {}}});
    const auto close = [&stage] { stage.page->SetOperator(nullptr); };
    CustomCombo& field = stage.Combo("Filter");
    if (how == "while open") {
        stage.Open("Filter");
        close();
    } else {
        connect(&stage.document->Undo().Stack(), &QUndoStack::indexChanged, stage.page, close);
        if (how == "list") {
            ComboPopup& list = stage.Open("Filter");
            Pointer::Key(list, QEvent::KeyPress, Qt::Key_Home);
            Pointer::Key(list, QEvent::KeyPress, Qt::Key_Return);
        } else if (how == "key") {
            Pointer::Key(field, QEvent::KeyPress, Qt::Key_Home);
            Pointer::Key(field, QEvent::KeyRelease, Qt::Key_Home);
        } else {
            stage.Box("Clip").click();
        }
    }
    QVERIFY(stage.page->Controls().empty());
    QVERIFY(!QApplication::activePopupWidget());
    QCOMPARE(stage.Entries(), how == "while open" ? 0 : 1);
    QCOMPARE(stage.document->Undo().Depth(), 0);
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QTEST_MAIN(ChoiceControlTest)
#include "choice_control_test.moc"
