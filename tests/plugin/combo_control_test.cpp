#include "controls/inspector/ComboControl.h"

#include "plugin/InspectorStage.h"
#include "system/widgets/ElideLabel.h"
#include "widgets/ComboPopup.h"
#include "widgets/CustomCombo.h"

#include <cmath>

#include <QAccessible>
#include <QScreen>
#include <QScrollBar>
#include <QSignalSpy>
#include <QtTest>

using namespace Marlox;

namespace {

const StagedInput filter{"Filter",
                         {{CMBS_Entry, "Nearest"},
                          {CMBS_Entry, "Bilinear"},
                          {CMBS_Entry, "Bicubic"},
                          {IAD_Default, 1.0}},
                         CLSID_InputControl_Combo};
const StagedInput space{"Space",
                        {{IAS_DataType, CLSID_DataType_Text},
                         {IAS_Default, "lin"},
                         {CMBS_Entry, "Linear"},
                         {CMBS_Entry, "Display"},
                         {CMBS_Entry, "Raw"},
                         {CMBS_EntryID, "lin"},
                         {CMBS_EntryID, "srgb"}},
                        CLSID_InputControl_ComboID};

/// Another input, with one more attribute.
StagedInput variant(StagedInput input, const char* id, const TagPair& more)
{
    input.id = id;
    input.attributes.push_back(more);
    return input;
}

struct ComboStage : InspectorStage {
    using InspectorStage::InspectorStage;

    CustomCombo& Combo(const char* id = nullptr) const { return *PartOf<CustomCombo>("combo", id); }
    ElideLabel& Label(const char* id) const { return *PartOf<ElideLabel>("label", id); }
    ComboPopup& Open(const char* id = nullptr) const
    {
        Pointer::Click(Combo(id), {10, 10});
        return *Combo(id).List();
    }
    /// Opens the list and presses keys there.
    void Choose(std::initializer_list<int> keys, const char* id = nullptr) const
    {
        ComboPopup& list = Open(id);
        for (const int key : keys)
            Pointer::Key(list, QEvent::KeyPress, key);
    }
    QString SpaceId() const
    {
        const Ref<Parameter> value = InputOf("Space").GetValue(document->CurrentTime());
        return QString::fromStdString(dynamic_cast<const Text&>(*value).GetValue());
    }
};

QPointF middleOf(const ComboPopup& list, int row)
{
    return QRectF(list.RowRect(row)).center();
}

/// All values of a tag that an object has several times.
QString allOf(Object& object, u32 tag)
{
    TagList tags({{tag, 0}});
    QStringList texts;
    if (object.DoTagList(Object::CommandGetRepeated, tags) == 1) {
        for (const TagPair* pair = tags.First(); pair; pair = tags.Next(pair))
            texts += pair->value.text;
    }
    return texts.join(' ');
}

} // namespace

/// Combo boxes, plain and by id, on an inspector page.
class ComboControlTest : public QObject {
    Q_OBJECT
private slots:
    void BuildsItsWidgets();
    void ReadsEntries();
    void ChoosesFromTheList();
    void KeepsUnlessChosen();
    void ShowsStrangers();
    void StepsWhileClosed();
    void LettersAndKeysOpenTheList();
    void LongListsScroll();
    void TellsKeysAndExpressions();
    void ClosesWithItsReason();
    void TooltipsTellAll();
    void SpeaksToScreenReaders();
    void SurvivesTheEndOfThePage();
};

void ComboControlTest::BuildsItsWidgets()
{
    const ComboStage stage({filter, variant(filter, "High", {CMB_Vertical, 1}),
                            variant(filter, "Bare", {IC_NoLabel, 1}), space});
    for (const char* id : {"Filter", "High", "Bare", "Space"}) {
        const InputControl& control = stage.ControlOf(id);
        QVERIFY2(control.Fault().isEmpty(), qPrintable(control.Fault()));
        QCOMPARE(control.FindLayoutObj("combo")->Widget(), &stage.Combo(id));
        QCOMPARE(stage.Combo(id).Text(), QString(id == space.id ? "Linear" : "Bilinear"));
        QCOMPARE(stage.Label(id).Text(), QString(id));
        QCOMPARE(stage.Label(id).isVisible(), id != QByteArray("Bare"));
    }
    QCOMPARE(stage.Label("Filter").focusProxy(), &stage.Combo("Filter"));
    QVERIFY(stage.Label("Filter").geometry().right() < stage.Combo("Filter").x());
    QVERIFY(stage.Label("High").geometry().bottom() <= stage.Combo("High").y());
    QVERIFY(stage.Combo("Bare").width() > stage.Combo("Filter").width());
    QCOMPARE(stage.ControlOf("High").GetInputFrom(&stage.Label("High"), nullptr),
             &stage.InputOf("High"));
    // Values of another kind are refused.
    const ComboStage wrong(
        {{"Number", filter.attributes, space.control}, {"Text", space.attributes, filter.control}});
    QVERIFY(wrong.page->Controls().empty());
    QVERIFY(wrong.page->findChild<ElideLabel*>()->Text().startsWith("Number: "));
}

void ComboControlTest::ReadsEntries()
{
    const ComboStage stage({space});
    InputControl& control = stage.ControlOf();
    QCOMPARE(allOf(control, CMBS_Entry), QString("Linear Display Raw"));
    QCOMPARE(allOf(control, CMBS_EntryID), QString("lin srgb Raw")); // its text if none is given
    QCOMPARE(allOf(control, CMB_Vertical), QString());
    QCOMPARE(QString(control.GetAttrS(CMBS_Entry)), QString("Linear"));
    // Others from a script, then from the tool: those of the script stay.
    control.SetAttrsTagList(TagList({{CMBS_Entry, "One"}, {CMBS_Entry, "Two"}}));
    QCOMPARE(allOf(control, CMBS_Entry), QString("One Two"));
    QCOMPARE(allOf(control, CMBS_EntryID), QString("lin srgb"));
    QCOMPARE(stage.Combo().Text(), QString("One"));
    stage.InputOf().SetAttrsTagList(TagList({{CMBS_EntryID, "uno"}, {CMBS_EntryID, "lin"}}));
    QCOMPARE(allOf(control, CMBS_Entry), QString("One Two"));
    QCOMPARE(stage.Combo().Text(), QString("Two"));
    QCOMPARE(stage.UndoEntries(), 0);

    // Made by a script, without an input.
    const Ref<Object> made(ClassRegistry::Global().Create(
        space.control, ScriptVal(), TagList({{CMBS_Entry, "a"}, {CMBS_Entry, "b"}})));
    made->SetAttrsTagList(TagList({{CMBS_EntryID, "A"}, {CMBS_EntryID, "B"}}));
    QCOMPARE(allOf(*made, CMBS_EntryID), QString("A B"));
}

void ComboControlTest::ChoosesFromTheList()
{
    const ComboStage stage({filter, space});
    ComboPopup& list = stage.Open();
    QVERIFY(list.isVisible() && stage.Combo().hasFocus());
    QVERIFY(list.Chosen() == 1 && list.Lit() == 1);
    Pointer::Move(list, middleOf(list, 0), Qt::NoModifier, Qt::NoButton);
    QCOMPARE(list.Lit(), 0);
    Pointer::Key(list, QEvent::KeyPress, Qt::Key_Down);
    Pointer::Key(list, QEvent::KeyPress, Qt::Key_End);
    QCOMPARE(list.Lit(), 2);
    QCOMPARE(stage.Outcome(), QString("1 (0)")); // not yet
    Pointer::Key(list, QEvent::KeyPress, Qt::Key_Return);
    QVERIFY(!stage.Combo().IsListOpen());
    QCOMPARE(stage.ValueOf(), 2.0);
    QCOMPARE(stage.UndoTexts(), QStringList("Adjust Filter"));
    ComboPopup& again = stage.Open();
    QCOMPARE(again.Lit(), 2);
    Pointer::Click(again, middleOf(again, 0));
    QCOMPARE(stage.ValueOf(), 0.0);
    stage.Choose({Qt::Key_Down, Qt::Key_Return}, "Space");
    QCOMPARE(stage.SpaceId(), QString("srgb"));
    Pointer::Stroke(stage.Combo("Space"), Qt::Key_End);
    QCOMPARE(stage.SpaceId(), QString("Raw"));
    QCOMPARE(stage.UndoEntries(), 4);
    for (int i = 0; i < 3; ++i)
        stage.document->Undo().Undo();
    QCOMPARE(stage.Combo("Space").Text(), QString("Linear"));
    QCOMPARE(stage.Combo("Filter").Index(), 2);
    QVERIFY(stage.IsIdle());

    // Press, drag and release.
    Pointer::Press(stage.Combo(), {10, 10});
    ComboPopup& third = *stage.Combo().List();
    Pointer::Release(third, {10, -12}); // still on the field
    QVERIFY(stage.Combo().IsListOpen());
    Pointer::Move(third, middleOf(third, 0));
    Pointer::Move(third, {-40, 400});
    Pointer::Release(third, {-40, 400}); // outside: stays open, lit
    QCOMPARE(third.Lit(), 0);
    Pointer::Move(third, middleOf(third, 1));
    Pointer::Release(third, middleOf(third, 1));
    QCOMPARE(stage.Outcome(), QString("1 (2)")); // what was undone is gone
    Pointer::Press(stage.Combo(), {10, 10}, Qt::NoModifier, Qt::MiddleButton);
    QVERIFY(!stage.Combo().IsListOpen());
}

void ComboControlTest::KeepsUnlessChosen()
{
    const ComboStage stage({filter});
    for (const auto& [key, held] : {std::pair{Qt::Key_Escape, Qt::NoModifier},
                                    {Qt::Key_Tab, Qt::NoModifier},
                                    {Qt::Key_F4, Qt::NoModifier},
                                    {Qt::Key_Up, Qt::AltModifier}}) {
        stage.Choose({Qt::Key_Up});
        Pointer::Key(*stage.Combo().List(), QEvent::KeyPress, key, held);
        QVERIFY(!stage.Combo().IsListOpen());
    }
    stage.Choose({Qt::Key_Return}); // what is chosen already
    QVERIFY(!stage.Combo().IsListOpen());
    Pointer::Press(stage.Open(), {-50, -200});
    QVERIFY(!stage.Combo().IsListOpen());
    QCOMPARE(stage.Outcome(), QString("1 (0)"));
}

void ComboControlTest::ShowsStrangers()
{
    const ComboStage stage({filter, space});
    const auto shows = [&stage](const char* id, const Parameter& value, const char* part) {
        stage.InputOf(id).SetValue(value, 0.0);
        const CustomCombo& field = stage.Combo(id);
        return field.IsStranger() && field.Text().contains(part) && field.Text() != part;
    };
    QVERIFY(shows("Filter", Number(NAN), "nan") && shows("Filter", Number(1e300), "e+300"));
    QVERIFY(shows("Space", Text("LIN"), "LIN") && shows("Space", Text(""), "no value"));
    QVERIFY(PixelsOf(stage.Combo("Space"), LookColor("System.ErrorTextColour")) > 0);

    const int before = stage.UndoEntries();
    stage.Choose({Qt::Key_Return}); // nothing is lit
    QCOMPARE(stage.ValueOf(), 1e300);
    Pointer::Stroke(stage.Combo(), Qt::Key_Up);
    QCOMPARE(stage.ValueOf(), 2.0);
    QCOMPARE(stage.UndoEntries(), before + 1);
    // Between two entries the nearer; choosing it changes nothing.
    stage.InputOf().SetValue(Number(1.25), 0.0);
    stage.Choose({Qt::Key_Return});
    QCOMPARE(stage.ValueOf(), 1.25);
}

void ComboControlTest::StepsWhileClosed()
{
    const ComboStage stage(
        {{"Many", std::vector(20, TagPair{CMBS_Entry, "entry"}), filter.control}});
    CustomCombo& field = stage.Combo();
    field.setFocus();
    for (int i = 0; i < 3; ++i) // held down
        Pointer::Key(field, QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier, i > 0);
    QCOMPARE(stage.Outcome(), QString("3 (0)"));
    Pointer::Key(field, QEvent::KeyRelease, Qt::Key_Down);
    QCOMPARE(stage.UndoEntries(), 1);
    QStringList outcomes;
    for (const int key : {Qt::Key_PageDown, Qt::Key_End, Qt::Key_Down, Qt::Key_PageUp, Qt::Key_Up,
                          Qt::Key_Home, Qt::Key_Right}) { // the last is the time's
        Pointer::Stroke(field, key);
        outcomes += stage.Outcome();
    }
    QCOMPARE(outcomes.join(' '), QString("11 (2) 19 (3) 19 (3) 11 (4) 10 (5) 0 (6) 0 (6)"));
    for (int i = 0; i < 5; ++i) // of a touchpad
        Pointer::Wheel(field, -30);
    QCOMPARE(stage.Outcome(), QString("1 (6)"));
    QTRY_COMPARE(stage.Outcome(), QString("1 (7)"));
    QVERIFY(stage.IsIdle());
    stage.page->setFocusPolicy(Qt::StrongFocus);
    stage.page->setFocus();
    Pointer::Wheel(field, -120);
    QCOMPARE(stage.Outcome(), QString("1 (7)"));
    QVERIFY(!field.hasFocus());
}

void ComboControlTest::LettersAndKeysOpenTheList()
{
    const ComboStage stage({filter});
    CustomCombo& field = stage.Combo();
    field.setFocus();
    const auto opens = [&field](int key, Qt::KeyboardModifiers held = Qt::NoModifier) {
        Pointer::Key(field, QEvent::KeyPress, key, held);
        const bool open = field.IsListOpen();
        field.CloseList();
        return open;
    };
    QVERIFY(opens(Qt::Key_Down, Qt::AltModifier) && opens(Qt::Key_Up, Qt::AltModifier));
    QVERIFY(opens(Qt::Key_F4) && opens(Qt::Key_Space));
    QVERIFY(!opens(Qt::Key_Left) && !opens(Qt::Key_Return));
    QVERIFY(!opens(Qt::Key_B, Qt::ControlModifier));
    QVERIFY(Pointer::IsWanted(field, Qt::Key_B, {}, "b"));
    QVERIFY(!Pointer::IsWanted(field, Qt::Key_Left));
    QTest::keyClick(&field, 'b');
    QVERIFY(field.IsListOpen());
    ComboPopup& list = *field.List();
    QCOMPARE(list.Lit(), 2); // the next one
    QTest::keyClicks(&list, "il");
    QCOMPARE(list.Lit(), 1);
    Pointer::Key(list, QEvent::KeyPress, Qt::Key_Home);
    QCOMPARE(stage.ValueOf(), 1.0);
    Pointer::Key(list, QEvent::KeyPress, Qt::Key_Enter);
    QCOMPARE(stage.ValueOf(), 0.0);
}

void ComboControlTest::LongListsScroll()
{
    std::vector<TagPair> many(200, {CMBS_Entry, "entry"});
    const QByteArray wide(400, 'w');
    many[150].value = wide.constData();
    many.push_back({IAD_Default, 150.0});
    const ComboStage stage({{"Many", many, filter.control}});
    ComboPopup& list = stage.Open();
    auto* bar = list.findChild<QScrollBar*>();
    QVERIFY(bar && bar->isVisible());
    const int shown = list.List().Shown();
    QVERIFY(shown > 4 && shown <= 16);
    QVERIFY(list.FirstShown() <= 150 && 150 < list.FirstShown() + shown);
    QVERIFY(list.width() <= list.screen()->availableGeometry().width());
    const int first = list.FirstShown();
    Pointer::Wheel(list, -120);
    QVERIFY(list.FirstShown() == first + 3 && bar->value() == first + 3);
    QCOMPARE(list.Lit(), first + 3); // what the pointer is on
    bar->setValue(0);
    QCOMPARE(list.FirstShown(), 0);
    Pointer::Key(list, QEvent::KeyPress, Qt::Key_End);
    QCOMPARE(list.FirstShown(), 200 - shown);
    Pointer::Key(list, QEvent::KeyPress, Qt::Key_PageUp);
    QCOMPARE(list.Lit(), 199 - (shown - 1));
    Pointer::Key(list, QEvent::KeyPress, Qt::Key_Escape);
    QVERIFY(PixelsOf(stage.Combo(), stage.Combo().palette().color(QPalette::ButtonText)) > 0);
}

void ComboControlTest::TellsKeysAndExpressions()
{
    const ComboStage stage({filter, space});
    CustomCombo& field = stage.Combo();
    Input& input = stage.InputOf();
    const QColor key = LookColor("System.KeyColour");
    QCOMPARE(PixelsOf(field, key), 0);
    for (const char* id : {"Filter", "Space"}) {
        stage.document->SetCurrentTime(0.0);
        stage.InputOf(id).AddKey(0.0, Interpolation::Step);
        stage.document->SetCurrentTime(10.0);
        Pointer::Stroke(stage.Combo(id), Qt::Key_Down);
        QVERIFY2(stage.InputOf(id).IsKeyAt(10.0) && stage.InputOf(id).IsKeyAt(0.0), id);
    }
    QVERIFY(PixelsOf(field, key) > 100);
    const auto shown = [&stage](double time) {
        stage.document->SetCurrentTime(time);
        return stage.Combo("Filter").Text() + ' ' + stage.Combo("Space").Text();
    };
    QCOMPARE(shown(10.0), QString("Bicubic Display"));
    QCOMPARE(shown(5.0), QString("Bilinear Linear"));
    QCOMPARE(PixelsOf(field, key), 0); // paler between keys

    const QColor yellow = LookColor("Controls.ExpressionColour");
    QSignalSpy problems(stage.page, &ControlWnd::Problem);
    input.SetExpression("time / 10");
    stage.InputOf("Space").SetExpression("time > 5 and 'srgb' or 'none'");
    const int before = stage.UndoEntries();
    QVERIFY(PixelsOf(field, yellow) > 100);
    Pointer::Press(field, {10, 10});
    QVERIFY(!field.IsListOpen() && problems.count() == 1);
    for (const int other : {Qt::Key_Down, Qt::Key_Space, Qt::Key_B})
        QTest::keyClick(&field, Qt::Key(other));
    Pointer::Wheel(field, -120);
    QVERIFY(!field.IsListOpen() && stage.Combo("Space").IsLocked());
    QVERIFY(shown(0.0).startsWith("Nearest ") && stage.Combo("Space").IsStranger());
    QCOMPARE(shown(20.0), QString("Bicubic Display"));
    QCOMPARE(stage.UndoEntries(), before);
    QVERIFY(stage.PartOf<QWidget>("expression")->isVisible());
    input.SetExpression("");
    QCOMPARE(PixelsOf(field, yellow), 0);
    QVERIFY(stage.Open().isVisible());
}

void ComboControlTest::ClosesWithItsReason()
{
    const ComboStage stage({filter});
    CustomCombo& field = stage.Combo();
    stage.Open();
    stage.InputOf().SetValue(Number(2.0), 0.0); // meanwhile, by something else
    QCOMPARE(field.List()->Chosen(), 2);
    stage.tool->SetLocked(true);
    QVERIFY(!field.IsListOpen() && !field.isEnabled());
    Pointer::Press(field, {10, 10});
    QVERIFY(!field.IsListOpen());
    stage.tool->SetLocked(false);
    stage.Open();
    stage.ControlOf().SetAttrsTagList(TagList({{CMBS_Entry, "Other"}}));
    QVERIFY(!field.IsListOpen() && field.IsStranger());
    stage.Open();
    stage.InputOf().SetAttrsTagList(TagList({{IA_ReadOnly, 1}}));
    QVERIFY(!field.IsListOpen() && !field.isEnabled());
    stage.InputOf().SetAttrsTagList(TagList({{IA_ReadOnly, 0}, {IC_EditDisabled, 1}}));
    QVERIFY(field.isEnabled());
    Pointer::Press(field, {10, 10});
    QVERIFY(!field.IsListOpen());
    QCOMPARE(stage.ValueOf(), 2.0);
}

void ComboControlTest::TooltipsTellAll()
{
    const QByteArray wide(80, 'w');
    const ComboStage stage(
        {{"Filter", {{CMBS_Entry, "short"}, {CMBS_Entry, wide.constData()}}, filter.control}});
    const auto told = [&stage](double value) {
        stage.InputOf().SetValue(Number(value), 0.0);
        return ToolTipOf(stage.Combo());
    };
    QCOMPARE(told(0.0), QString());
    QCOMPARE(told(1.0), QString(wide));
    stage.Combo().SetHelp("Help.");
    QCOMPARE(told(1.0), wide + "\nHelp.");
    QVERIFY(told(9.0).contains("\"9\"") && told(9.0).endsWith("\nHelp."));
}

void ComboControlTest::SpeaksToScreenReaders()
{
    const ComboStage stage({filter});
    QAccessibleInterface* field = QAccessible::queryAccessibleInterface(&stage.Combo());
    QVERIFY(field->role() == QAccessible::ComboBox && field->state().collapsed);
    QCOMPARE(field->text(QAccessible::Name), QString("Filter"));
    QCOMPARE(field->text(QAccessible::Value), QString("Bilinear"));
    field->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
    QVERIFY(field->state().expanded);
    QAccessibleInterface* list = QAccessible::queryAccessibleInterface(stage.Combo().List());
    QVERIFY(list->childCount() == 3 && list->focusChild() == list->child(1));
    QAccessibleInterface* row = list->child(2);
    QVERIFY(row->role() == QAccessible::ListItem && list->indexOfChild(row) == 2);
    QCOMPARE(row->text(QAccessible::Name), QString("Bicubic"));
    QCOMPARE(list->childAt(row->rect().center().x(), row->rect().center().y()), row);
    row->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    QCOMPARE(stage.ValueOf(), 2.0);
    QVERIFY(field->state().collapsed);
}

void ComboControlTest::SurvivesTheEndOfThePage()
{
    for (const char* how : {"list", "key", "while open"}) {
        const ComboStage stage({filter});
        const auto close = [&stage] { stage.page->SetOperator(nullptr); };
        connect(&stage.document->Undo().Stack(), &QUndoStack::indexChanged, stage.page, close);
        const bool choose = how != QByteArray("while open");
        if (how == QByteArray("key"))
            Pointer::Stroke(stage.Combo(), Qt::Key_Home);
        else if (choose)
            stage.Choose({Qt::Key_Home, Qt::Key_Return});
        else
            stage.Open(), close();
        QVERIFY2(stage.page->Controls().empty() && !QApplication::activePopupWidget(), how);
        QCOMPARE(stage.UndoEntries(), choose ? 1 : 0);
        QVERIFY(stage.IsIdle());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

QTEST_MAIN(ComboControlTest)
#include "combo_control_test.moc"
