#include "host/controls/Probe.h"

#include "script/ScriptSystem.h"
#include "system/widgets/Container.h"
#include "system/widgets/MxLineEdit.h"

#include <limits>

#include <QClipboard>
#include <QLineEdit>
#include <QMenu>
#include <QSignalSpy>
#include <QtTest>

using namespace Marlox;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

AutoNumber Number_(double value)
{
    return MakeRef<Number>(value);
}

/// The text of every entry that has an id, those of submenus behind "name/", "&" left out; disabled
/// ones in brackets, checked ones with a star.
QStringList TextsOf(const std::vector<Menu::Entry>& entries, const QString& prefix = {})
{
    QStringList texts;
    for (const Menu::Entry& entry : entries) {
        QString text = prefix + QString(entry.text).remove(QLatin1Char('&'));
        if (!entry.children.empty()) {
            texts += TextsOf(entry.children, text + QLatin1Char('/'));
        } else if (entry.id != 0) {
            if (entry.checked)
                text += QLatin1Char('*');
            texts += entry.enabled ? text : QLatin1Char('[') + text + QLatin1Char(']');
        }
    }
    return texts;
}

unsigned int IdOf(const std::vector<Menu::Entry>& entries, const QString& path)
{
    const QString head = path.section(QLatin1Char('/'), 0, 0);
    for (const Menu::Entry& entry : entries) {
        if (QString(entry.text).remove(QLatin1Char('&')) != head)
            continue;
        return entry.children.empty() ? entry.id : IdOf(entry.children, path.mid(head.size() + 1));
    }
    return 0;
}

} // namespace

class InputControlTest : public QObject {
    Q_OBJECT
private slots:
    void init();
    void writesAcceptedValues();
    void refusesValues();
    void oneGestureOneEntry();
    void lostGestures_data();
    void lostGestures();
    void undoWithinAGesture();
    void editDrag();
    void hasValueChanged();
    void attachesByName();
    void expressionLine();
    void expressionLineCommits();
    void expressionPlaces();
    void modifiers();
    void removingKeysBelowAnExpression();
    void menuLists();
    void menuRuns();
    void menuCopiesAndPastes();
    void menuConnects();
    void menuOfSeveralInputs();
    void contextMenu();

private:
    Operator* Open(int numbers);
    bool Run(const char* entry);
    QStringList Texts();
    std::unique_ptr<MarloxDoc> document_;
    std::unique_ptr<ControlWnd> page_;
    Operator* tool_ = nullptr;
    ProbeControl* a_ = nullptr; // the control of input "a"
    Input* input_ = nullptr;    // "a", named "A"
};

void InputControlTest::init()
{
    InstallScripting();
    ProbeControl::settings = {};
    page_ = std::make_unique<ControlWnd>();
    document_ = std::make_unique<MarloxDoc>();
}

Operator* InputControlTest::Open(int numbers)
{
    tool_ = AddProbeTool(*document_, numbers);
    page_->resize(300, 200);
    page_->SetOperator(tool_);
    a_ = ProbeOf(*page_, "a");
    input_ = tool_->FindInput("a");
    document_->Undo().Clear();
    ProbeControl::TakeLog();
    return tool_;
}

bool InputControlTest::Run(const char* entry)
{
    Menu menu;
    a_->BuildMenu(menu);
    TagList tags;
    return a_->HandleMenu(IdOf(menu.Entries(), QString::fromLatin1(entry)), nullptr, tags);
}

QStringList InputControlTest::Texts()
{
    Menu menu;
    a_->BuildMenu(menu);
    return TextsOf(menu.Entries());
}

void InputControlTest::writesAcceptedValues()
{
    SetProbeInputs([](Operator& tool) {
        tool.AddInput("low", ProbeAttributes("Low", {{IAD_Maximum, 1.0}}));
        tool.AddInput("high", ProbeAttributes("High", {{IAS_SharedWith, "low"}, {IA_Integer, 1}}));
    });
    Operator* tool = document_->AddTool("ProbeTool");
    page_->SetOperator(tool);
    ProbeControl* control = ProbeOf(*page_, "low");
    QVERIFY(control->SetInputs(Number_(5.0).Get(), 0.0, 0, false, nullptr));
    QCOMPARE(tool->FindInput("low")->GetNumber(0.0), 1.0);
    QCOMPARE(control->shown, 1.0); // the control itself is told what was made of its value
    QVERIFY(control->SetInputs(Number_(2.6).Get(), 0.0, 1, false, nullptr));
    QCOMPARE(tool->FindInput("high")->GetNumber(0.0), 3.0);
    QCOMPARE(document_->Undo().UndoText(), QString("Adjust High"));
    QCOMPARE(tool->FindInput("low")->GetNumber(0.0), 1.0);

    QVERIFY(tool->FindInput("low")->AddKey(0.0));
    QVERIFY(control->SetInputs(Number_(0.5).Get(), 8.0, 0, false, nullptr));
    QVERIFY(tool->FindInput("low")->IsKeyAt(8.0));
}

void InputControlTest::refusesValues()
{
    Open(1);
    QSignalSpy problems(page_.get(), &ControlWnd::Problem);
    QVERIFY(!a_->SetInputs(nullptr, 0.0, 0, false, nullptr));
    QVERIFY(!a_->SetInputs(Number_(1.0).Get(), 0.0, 7, false, nullptr));
    QVERIFY(!a_->SetInputs(MakeRef<Text>("x").Get(), 0.0, 0, false, nullptr));
    QVERIFY(input_->SetExpression("2"));
    QVERIFY(!a_->SetInputs(Number_(1.0).Get(), 0.0, 0, false, nullptr));
    QCOMPARE(problems.size(), 1);
    QVERIFY(problems.front().front().toString().contains("expression"));
    QCOMPARE(input_->GetNumber(0.0), 2.0);
    QCOMPARE(document_->Undo().Depth(), 0);
}

void InputControlTest::oneGestureOneEntry()
{
    Open(1);
    a_->SetUndo(0, nullptr);
    a_->SetUndo(0, nullptr); // open already
    QCOMPARE(document_->Undo().Depth(), 1);
    for (double value : {1.0, 2.0, 3.0})
        QVERIFY(a_->SetInputs(Number_(value).Get(), 0.0, 0, false, nullptr));
    QCOMPARE(document_->Undo().Stack().count(), 0);
    a_->ResetUndo(nullptr);
    a_->ResetUndo(nullptr);
    QCOMPARE(document_->Undo().Stack().count(), 1);
    QCOMPARE(document_->Undo().UndoText(), QString("Adjust A"));

    a_->SetUndo(0, nullptr);
    QVERIFY(a_->SetInputs(Number_(9.0).Get(), 0.0, 0, false, nullptr));
    QVERIFY(a_->SetInputs(Number_(3.0).Get(), 0.0, 0, true, nullptr)); // back where it began
    QCOMPARE(document_->Undo().Depth(), 0);                            // the last value closes it
    QCOMPARE(document_->Undo().Stack().count(), 1);

    QVERIFY(a_->SetInputs(Number_(4.0).Get(), 0.0, 0, false, nullptr)); // a group of its own
    QCOMPARE(document_->Undo().Depth(), 0);
    QCOMPARE(document_->Undo().Stack().count(), 2);
    document_->Undo().Undo();
    document_->Undo().Undo();
    QCOMPARE(input_->GetNumber(0.0), 0.0);
}

void InputControlTest::lostGestures_data()
{
    QTest::addColumn<QString>("how");
    for (const char* how : {"focus", "hidden", "other tool", "page ends", "asked"})
        QTest::newRow(how) << how;
}

void InputControlTest::lostGestures()
{
    QFETCH(QString, how);
    ProbeControl::settings.spin = true;
    Open(2);
    page_->show();
    page_->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(page_.get()));
    a_->child->setFocus();
    a_->OnEditStartDrag();
    QVERIFY(a_->SetInputs(Number_(1.0).Get(), 0.0, 0, false, nullptr));
    QVERIFY(document_->IsAutoProxy());
    if (how == "focus")
        ProbeOf(*page_, "b")->child->setFocus();
    else if (how == "hidden")
        page_->hide();
    else if (how == "other tool")
        page_->SetOperator(nullptr);
    else if (how == "page ends")
        page_.reset();
    else
        page_->EndGestures();
    QCOMPARE(document_->Undo().Depth(), 0);
    QVERIFY(!document_->IsAutoProxy());
    QCOMPARE(document_->Undo().Stack().count(), 1);
}

void InputControlTest::undoWithinAGesture()
{
    Open(1);
    a_->SetUndo(0, nullptr);
    QVERIFY(a_->SetInputs(Number_(1.0).Get(), 0.0, 0, false, nullptr));
    document_->Undo().Undo();
    QCOMPARE(input_->GetNumber(0.0), 0.0);
    for (double value : {2.0, 3.0}) // the drag goes on
        QVERIFY(a_->SetInputs(Number_(value).Get(), 0.0, 0, false, nullptr));
    document_->Undo().Begin("Somebody else's");
    document_->Undo().End();
    a_->ResetUndo(nullptr);
    QCOMPARE(document_->Undo().Depth(), 0);
    QCOMPARE(document_->Undo().Stack().count(), 1);
    document_->Undo().Undo();
    QCOMPARE(input_->GetNumber(0.0), 0.0);
}

void InputControlTest::editDrag()
{
    Open(1);
    QSignalSpy sync(document_.get(), &MarloxDoc::SyncRenderRequested);
    a_->OnEditStartDrag();
    a_->OnEditStartDrag();
    QVERIFY(document_->IsAutoProxy());
    QVERIFY(a_->SetInputs(Number_(1.0).Get(), 0.0, 0, false, nullptr));
    QVERIFY(a_->SetInputs(Number_(2.0).Get(), 0.0, 0, false, nullptr));
    a_->OnEditEndDrag();
    a_->OnEditEndDrag();
    QVERIFY(!document_->IsAutoProxy());
    QCOMPARE(sync.size(), 1);
    QCOMPARE(document_->Undo().Stack().count(), 1);

    QVERIFY(!a_->IsAllPassive(nullptr));
    input_->SetAttrsTagList({{IA_Passive, 1}});
    QVERIFY(a_->IsAllPassive(nullptr));
    a_->OnEditStartDrag();
    QVERIFY(!document_->IsAutoProxy());
    a_->OnEditEndDrag();
    QCOMPARE(sync.size(), 1);
}

void InputControlTest::hasValueChanged()
{
    const auto changed = [](bool integer, double value, double shown) {
        return InputControl::HasValueChanged(integer, value, shown, 0.125);
    };
    QVERIFY(changed(false, 1.2, 1.0));
    QVERIFY(!changed(false, 1.125, 1.0)); // the tolerance itself
    QVERIFY(!changed(false, 0.9, 1.0));
    QVERIFY(!changed(true, 1.4, 0.6)); // the same whole number
    QVERIFY(changed(true, 1.5, 1.49));
    QVERIFY(changed(false, 1.0, notANumber));
    QVERIFY(!changed(true, notANumber, notANumber));
    QVERIFY(!changed(false, infinity, infinity));
    QVERIFY(changed(false, infinity, 1.0));
}

void InputControlTest::attachesByName()
{
    Operator* tool = AddProbeTool(*document_, 2);
    Operator* other = AddProbeTool(*document_, 2);
    const Ref<Object> made(ClassRegistry::Global().Create("ProbeControl"));
    auto* control = dynamic_cast<ProbeControl*>(made.Get());
    Input* input = nullptr;
    QVERIFY(!control->AttachInput(tool, {{IAS_Name, "nobody"}}, input, 0, 0));
    QVERIFY(control->AttachInput(tool, {{IAS_Name, "B"}}, input, 0, 0));
    QCOMPARE(input, tool->FindInput("b"));
    QVERIFY(control->AddInput(input, nullptr));
    QVERIFY(!control->AddInput(other->FindInput("a"), nullptr)); // one control, one tool
    QVERIFY(control->DetachInput(input));
    QVERIFY(!input && !control->Owner());
}

void InputControlTest::expressionLine()
{
    Open(1);
    QVERIFY(input_->SetValue(*Number_(0.1), 0.0));
    const int low = page_->sizeHint().height();
    QVERIFY(!a_->GetExpressionData(0, nullptr));
    QVERIFY(a_->AddExpression(input_));
    QCOMPARE(input_->GetExpression(), std::string("0.1")); // starts as what it was
    QCOMPARE(document_->Undo().UndoText(), QString("Add Expression to A"));
    QVERIFY(!a_->AddExpression(input_));
    auto* line =
        qobject_cast<MxLineEdit*>(static_cast<QWidget*>(a_->GetExpressionData(0, nullptr)));
    QVERIFY(line && !line->isHidden());
    QCOMPARE(line->text(), QString("0.1"));
    QCoreApplication::processEvents();
    QVERIFY(page_->sizeHint().height() > low);

    a_->SetExpressions(0, QByteArray("time + 2").data());
    QCOMPARE(line->text(), QString("time + 2"));
    QCOMPARE(a_->shown, 2.0);
    QVERIFY(a_->RemoveExpression(input_));
    QVERIFY(line->isHidden());
    QCOMPARE(a_->shown, 0.1);
    QVERIFY(a_->GetExpressionRect(0, nullptr).IsEmpty());
    QCoreApplication::processEvents();
    QCOMPARE(page_->sizeHint().height(), low);
    document_->Undo().Undo();
    QVERIFY(!line->isHidden());
    QCOMPARE(line->text(), QString("time + 2"));
}

void InputControlTest::expressionLineCommits()
{
    Open(1);
    page_->show();
    page_->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(page_.get()));
    QVERIFY(a_->AddExpression(input_));
    auto* line =
        qobject_cast<MxLineEdit*>(static_cast<QWidget*>(a_->GetExpressionData(0, nullptr)));
    line->setFocus();
    line->selectAll();
    QTest::keyClicks(line, "3 +");
    QCOMPARE(input_->GetExpression(), std::string("0")); // not before it is committed
    QTest::keyClick(line, Qt::Key_Return);
    QCOMPARE(input_->GetExpression(), std::string("3 +"));
    QVERIFY(!line->Error().isEmpty());
    QCOMPARE(line->toolTip(), input_->ExpressionError());
    QCOMPARE(a_->shown, 0.0); // the last good value

    QTest::keyClicks(line, " 1");
    QVERIFY(line->Error().isEmpty());
    QTest::keyClick(line, Qt::Key_Escape);
    QCOMPARE(line->text(), QString("3 +"));
    QVERIFY(!line->Error().isEmpty()); // as wrong as before
    line->end(false);
    QTest::keyClicks(line, " 1");
    QTest::keyClick(line, Qt::Key_Return);
    QVERIFY(line->Error().isEmpty());
    QCOMPARE(a_->shown, 4.0);

    line->selectAll();
    QTest::keyClick(line, Qt::Key_Delete);
    line->clearFocus(); // leaving commits, and no text removes it
    QVERIFY(!input_->HasExpression());
    QVERIFY(line->isHidden());

    input_->SetExpression("1");
    line->selectAll();
    QTest::keyClicks(line, "8");
    a_->OnCancel();
    QCOMPARE(line->text(), QString("1"));
    line->selectAll();
    QTest::keyClicks(line, "8");
    a_->OnOK();
    QCOMPARE(a_->shown, 8.0);
}

void InputControlTest::expressionPlaces()
{
    ProbeControl::settings.layoutText =
        "{ \"VGroup\", { \"Spacer\", MinHeight = 24 }, { \"Container\", Name = \"expression\" } }";
    Open(1);
    QVERIFY2(a_->GetLayout(), qPrintable(a_->Fault()));
    input_->SetExpression("1");
    auto* line = static_cast<QWidget*>(a_->GetExpressionData(0, nullptr));
    QVERIFY(a_->isAncestorOf(line)); // in the layout's place, not below the control
    QCoreApplication::processEvents();
    QVERIFY(a_->height() > 24);

    ProbeControl::settings.layoutText.clear();
    Open(1);
    MxRect rect(10, 4, 90, 20);
    QVERIFY(!a_->CreateExpressionEdit(3, rect, nullptr)); // no such input
    QVERIFY(a_->CreateExpressionEdit(0, rect, nullptr));
    QVERIFY(!a_->CreateExpressionEdit(0, rect, nullptr)); // has one
    input_->SetExpression("1");
    QCOMPARE(a_->GetExpressionRect(0, nullptr), rect);

    Open(1);
    Container place;
    input_->SetExpression("1"); // first: the line shows at once
    QVERIFY(!a_->CreateExpressionEdit(0, &place, nullptr));
    QVERIFY(page_->isAncestorOf(static_cast<QWidget*>(a_->GetExpressionData(0, nullptr))));
}

void InputControlTest::modifiers()
{
    Open(1);
    document_->SetCurrentTime(4.0);
    QVERIFY(!a_->RemoveModifier(input_));
    QVERIFY(a_->AddModifierAt({1, 1}));
    QVERIFY(input_->IsKeyAt(4.0));
    QCOMPARE(document_->Undo().UndoText(), QString("Animate A"));
    QVERIFY(!a_->AddModifier(input_));
    QVERIFY(input_->SetValue(*Number_(10.0), 14.0));
    document_->SetCurrentTime(14.0);
    const int entries = document_->Undo().Stack().count();
    QVERIFY(a_->RemoveModifier(input_));
    QVERIFY(!input_->IsAnimated());
    QCOMPARE(input_->GetNumber(0.0), 10.0); // stays as it was shown
    QCOMPARE(document_->Undo().Stack().count(), entries + 1);
    document_->Undo().Undo();
    QVERIFY(input_->IsKeyAt(4.0));

    input_->SetAttrsTagList({{IA_Animatable, 0}});
    QVERIFY(a_->RemoveModifier(input_));
    QVERIFY(!a_->AddModifier(input_));
}

void InputControlTest::removingKeysBelowAnExpression()
{
    Open(1);
    QVERIFY(input_->SetValue(*Number_(3.0), 0.0));
    QVERIFY(input_->AddKey(0.0));
    QVERIFY(input_->SetExpression("100"));
    QVERIFY(a_->RemoveModifier(input_));
    QVERIFY(!input_->IsAnimated());
    QCOMPARE(input_->GetNumber(0.0), 100.0); // the expression goes on
    QVERIFY(a_->RemoveExpression(input_));
    QCOMPARE(input_->GetNumber(0.0), 3.0);
}

void InputControlTest::menuLists()
{
    Open(1);
    QGuiApplication::clipboard()->setText("no number");
    QCOMPARE(Texts(), QStringList({"Animate", "Set Key", "[Remove Key]", "[Previous Key]",
                                   "[Next Key]", "[Interpolation/Step]", "[Interpolation/Linear]",
                                   "[Interpolation/Smooth]", "Add Expression", "Reset to Default",
                                   "Copy Value", "[Paste Value]", "Probe"}));
    QVERIFY(input_->AddKey(0.0, Interpolation::Linear));
    QVERIFY(input_->AddKey(5.0, Interpolation::Linear));
    input_->SetExpression("1");
    QGuiApplication::clipboard()->setText(" 0,5 ");
    const QStringList texts = Texts();
    for (const char* wanted : {"Remove Animation", "Remove Key", "[Previous Key]", "Next Key",
                               "Interpolation/Linear*", "Remove Expression", "Paste Value"})
        QVERIFY2(texts.contains(wanted), wanted);
    tool_->SetLocked(true);
    const QStringList locked = Texts();
    for (const char* wanted : {"[Set Key]", "[Remove Expression]", "[Reset to Default]",
                               "[Paste Value]", "Copy Value", "Next Key"})
        QVERIFY2(locked.contains(wanted), wanted);
    QVERIFY(!Run("Remove Animation")); // listed or not, it is refused
}

void InputControlTest::menuRuns()
{
    Open(1);
    QVERIFY(input_->SetValue(*Number_(2.0), 0.0));
    QVERIFY(Run("Animate"));
    document_->SetCurrentTime(10.0);
    QVERIFY(Run("Set Key"));
    QVERIFY(Run("Previous Key"));
    QCOMPARE(document_->CurrentTime(), 0.0);
    QVERIFY(!Run("Previous Key"));
    QVERIFY(Run("Next Key"));
    QCOMPARE(document_->CurrentTime(), 10.0);
    document_->SetCurrentTime(3.0);
    QVERIFY(Run("Interpolation/Step"));
    QCOMPARE(input_->GetAnimation().Keys().at(0.0).interpolation, Interpolation::Step);
    QCOMPARE(input_->GetAnimation().Keys().at(10.0).interpolation, Interpolation::Smooth);
    QVERIFY(!Run("Remove Key")); // none here
    document_->SetCurrentTime(10.0);
    QVERIFY(Run("Remove Key"));
    QVERIFY(Run("Remove Animation"));
    QCOMPARE(input_->GetNumber(0.0), 2.0);
    QVERIFY(Run("Add Expression"));
    QVERIFY(Run("Remove Expression"));
    QVERIFY(Run("Reset to Default"));
    QCOMPARE(input_->GetNumber(0.0), 0.0);
    ProbeControl::TakeLog();
    QVERIFY(Run("Probe"));
    QCOMPARE(ProbeControl::TakeLog(), QStringList("menu"));
    TagList tags;
    QVERIFY(!a_->HandleMenu(0, nullptr, tags));
    QVERIFY(!a_->HandleMenu(0x501, nullptr, tags)); // there is no sixth input
    QCOMPARE(document_->Undo().Depth(), 0);
}

void InputControlTest::menuCopiesAndPastes()
{
    SetProbeInputs([](Operator& tool) {
        tool.AddInput("a", ProbeAttributes("A", {{IAS_DataType, CLSID_DataType_Text}}));
        tool.AddInput("b", ProbeAttributes("B"));
        tool.AddInput("c", ProbeAttributes("C", {{IAS_DataType, CLSID_DataType_Point}}));
    });
    Operator* tool = document_->AddTool("ProbeTool");
    page_->SetOperator(tool);
    struct Case {
        const char* id;
        Ref<Parameter> value;
    };
    for (const Case& one : {Case{"a", MakeRef<Text>("Grüße, \"du\"")}, Case{"b", Number_(0.1)},
                            Case{"c", MakeRef<Point>(0.25, -1.5)}}) {
        a_ = ProbeOf(*page_, one.id);
        Input* input = tool->FindInput(one.id);
        QVERIFY(input->SetValue(*one.value, 0.0));
        QVERIFY(Run("Copy Value"));
        QVERIFY(input->SetDefault());
        QVERIFY(!input->GetValue(0.0)->IsEqual(*one.value));
        QVERIFY(Run("Paste Value"));
        QVERIFY(input->GetValue(0.0)->IsEqual(*one.value));
        QVERIFY(document_->Undo().UndoText().startsWith("Paste "));
    }
}

void InputControlTest::menuConnects()
{
    SetProbeInputs([](Operator& tool) {
        tool.AddInput("a", ProbeAttributes("Mask", {{IAS_DataType, CLSID_DataType_Image}}));
    });
    Operator* source = document_->AddTool("ProbeTool");
    source->SetName("Source");
    Operator* tool = document_->AddTool("ProbeTool");
    page_->SetOperator(tool);
    a_ = ProbeOf(*page_, "a");
    QCOMPARE(Texts(), QStringList({"[Disconnect]", "Connect To/Source", "Probe"}));
    QVERIFY(Run("Connect To/Source"));
    QCOMPARE(tool->FindInput("a")->GetSource(), source);
    QVERIFY(Texts().contains("Connect To/Source*"));
    // The other way round would make a loop.
    page_->SetOperator(source);
    a_ = ProbeOf(*page_, "a");
    QSignalSpy problems(page_.get(), &ControlWnd::Problem);
    QVERIFY(!Run(qPrintable("Connect To/" + tool->GetName())));
    QCOMPARE(problems.size(), 1);
    page_->SetOperator(tool);
    a_ = ProbeOf(*page_, "a");
    QVERIFY(Run("Disconnect"));
    QVERIFY(!tool->FindInput("a")->GetSource());
}

void InputControlTest::menuOfSeveralInputs()
{
    SetProbeInputs([](Operator& tool) {
        tool.AddInput("a", ProbeAttributes("Low"));
        tool.AddInput("b", ProbeAttributes("High", {{IAS_SharedWith, "a"}}));
    });
    Operator* tool = document_->AddTool("ProbeTool");
    page_->SetOperator(tool);
    a_ = ProbeOf(*page_, "a");
    QVERIFY(Texts().contains("Low/Set Key") && Texts().contains("High/Set Key"));
    QVERIFY(Run("High/Set Key"));
    QVERIFY(tool->FindInput("b")->IsAnimated() && !tool->FindInput("a")->IsAnimated());
    QVERIFY(Run("High/Interpolation/Step"));
    Menu only;
    a_->BuildMenu(only, tool->FindInput("b"));
    TagList tags;
    QVERIFY(a_->HandleMenu(IdOf(only.Entries(), "Remove Key"), nullptr, tags));
    QVERIFY(!tool->FindInput("b")->IsAnimated());
}

void InputControlTest::contextMenu()
{
    Open(1);
    page_->show();
    QContextMenuEvent event(QContextMenuEvent::Mouse, {5, 5}, a_->mapToGlobal({5, 5}));
    QApplication::sendEvent(a_, &event);
    auto* menu = a_->findChild<QMenu*>();
    QVERIFY(menu && menu->isVisible());
    const auto actions = menu->actions();
    const auto set = std::find_if(actions.begin(), actions.end(), [](const QAction* action) {
        return QString(action->text()).remove(QLatin1Char('&')) == QLatin1String("Set Key");
    });
    QVERIFY(set != actions.end());
    const QRect place = menu->actionGeometry(*set);
    QTest::mouseClick(menu, Qt::LeftButton, {}, place.center());
    QVERIFY(input_->IsKeyAt(0.0));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!a_->findChild<QMenu*>());
}

QTEST_MAIN(InputControlTest)
#include "InputControlTest.moc"
