#include "plugin/ExpectedRecords.h"
#include "plugin/PluginLibrary.h"
#include "script/ScriptSystem.h"
#include "system/controls/ControlWnd.h"
#include "system/document/MarloxDoc.h"
#include "system/viewer/PreviewControl.h"
#include "system/widgets/ElideLabel.h"
#include "system/widgets/MxLineEdit.h"
#include "system/widgets/TimeCodeEdit.h"

#include <QUndoStack>
#include <QtTest>

using namespace Marlox;

namespace {

MxID controlClass; // of the inputs of the next tool

/// A tool with a Number, a Point and a Text input that share one control.
class RowsTool : public Operator {
public:
    explicit RowsTool(const Registry* record) : Operator(record)
    {
        const char* control = controlClass.c_str();
        AddInput("Gain", TagList({{IAS_Name, "Gain"},
                                  {IAS_Control, control},
                                  {IAD_Default, 0.25},
                                  {IAD_Maximum, 10.0}}));
        AddInput("Center", TagList({{IAS_Name, "Center"},
                                    {IAS_DataType, CLSID_DataType_Point},
                                    {IAS_SharedWith, "Gain"}}));
        AddInput("Caption", TagList({{IAS_Name, "Caption"},
                                     {IAS_DataType, CLSID_DataType_Text},
                                     {IAS_Default, "hello"},
                                     {IAS_SharedWith, "Gain"}}));
    }
    std::unique_ptr<ToolProcess> Prepare(double) const override { return nullptr; }
};

Object* makeRowsTool(const Registry* record, const ScriptVal&, const TagList&)
{
    return new RowsTool(record);
}

constexpr TagPair rowsToolTags[] = {{REG_RegInit, &Object::RegInit},
                                    {REG_RegCleanup, &Object::RegCleanup},
                                    {REG_Kind, u32(ClassKind::Tool)},
                                    {REG_Create, &makeRowsTool},
                                    {}};

/// Runs a script operation of the object's class.
ScriptVal run(Object& object, const Registry& record, std::string_view name)
{
    ScriptVal result;
    for (const ScriptOperation* at = record.GetScriptInfo()->operations; at->name; ++at) {
        if (at->name == name && at->run(object, {}, result))
            return result;
    }
    return {};
}

bool isGeneric(const Registry& record)
{
    for (const ScriptOperation* at = record.GetScriptInfo()->operations; at->name; ++at) {
        if (std::string_view(at->name) == "IsGeneric")
            return true;
    }
    return false;
}

template <class Edit>
void type(Edit& edit, const QString& text)
{
    edit.setFocus();
    edit.selectAll();
    QTest::keyClicks(&edit, text);
    QTest::keyClick(&edit, Qt::Key_Return);
}

} // namespace

/// The classes that have no behaviour of their own, on a page of the inspector and in a viewer.
class GenericControlsTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void LifeCycle_data();
    void LifeCycle();
    void EditsWriteOneUndoEntryEach();
    void DragIsOneUndoEntry();
    void TypedExpressionBecomesTheInputs();
    void ValuesComeBack();
    void SeveralLinesAreNotLost();
    void EditThatClosesThePage();
    void OverlaysHoldAndForward();

private:
    void OpenTool(const char* control);
    InputControl* Control() const { return page_->Controls().front().Get(); }
    template <class Widget>
    Widget* Find(const char* name) const
    {
        return Control()->findChild<Widget*>(name);
    }
    int UndoCount() const { return document_->Undo().Stack().count(); }

    PluginLibrary plugin_;
    std::unique_ptr<Registry> record_;
    std::unique_ptr<MarloxDoc> document_;
    std::unique_ptr<ControlWnd> page_;
    Operator* tool_ = nullptr;
};

void GenericControlsTest::initTestCase()
{
    InstallScripting();
    QVERIFY2(plugin_.IsLoaded(), plugin_.Error().constData());
    record_ = std::make_unique<Registry>(MxID("RowsTool"), rowsToolTags);
}

void GenericControlsTest::init()
{
    document_ = std::make_unique<MarloxDoc>();
    page_ = std::make_unique<ControlWnd>();
    page_->resize(320, 240);
}

void GenericControlsTest::cleanup()
{
    page_.reset();
    document_.reset();
}

void GenericControlsTest::OpenTool(const char* control)
{
    controlClass = control;
    tool_ = document_->AddTool("RowsTool");
    QVERIFY(tool_);
    page_->SetOperator(tool_);
    page_->show();
    page_->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(page_.get()));
}

void GenericControlsTest::LifeCycle_data()
{
    QTest::addColumn<QByteArray>("id");
    for (const Expected::Record& row : Expected::records) {
        // Those that take no number as their main input are tested with their own kind.
        if (row.family == Expected::Inspector && MxID(row.id) != MxID(CLSID_InputControl_ComboID) &&
            MxID(row.id) != MxID("ColorRangesControl"))
            QTest::newRow(row.id) << QByteArray(row.id);
    }
}

void GenericControlsTest::LifeCycle()
{
    QFETCH(QByteArray, id);
    OpenTool(id);
    QCOMPARE(page_->Controls().size(), std::size_t(1));
    const Ref<InputControl> control = page_->Controls().front();
    QCOMPARE(control->GetRegistry(), ClassRegistry::Global().Find(MxID(id.constData())));
    QVERIFY2(control->Fault().isEmpty(), qPrintable(control->Fault()));
    QVERIFY(control->IsOpen());

    tool_->FindInput("Gain")->SetValue(Number(0.75), 0.0);
    document_->SetCurrentTime(10.0);
    int width = 0;
    int height = 0;
    QVERIFY(control->GetMinSize(width, height, nullptr));
    QVERIFY(height > 0);
    QVERIFY(!page_->grab().isNull());

    page_->SetOperator(nullptr);
    QVERIFY(!control->IsOpen());
    QVERIFY(control->Inputs().empty());
    QTRY_COMPARE(control->RefCount(), 1); // the page lets go at the next turn of the event loop
}

void GenericControlsTest::EditsWriteOneUndoEntryEach()
{
    OpenTool("ScrewControl");
    const int before = UndoCount();
    type(*Find<TimeCodeEdit>("edit"), "0.5");
    QCOMPARE(tool_->FindInput("Gain")->GetNumber(0.0), 0.5);
    QCOMPARE(UndoCount(), before + 1);
    type(*Find<TimeCodeEdit>("edit"), "0.5"); // no change, no entry
    QCOMPARE(UndoCount(), before + 1);
    type(*Find<TimeCodeEdit>("edit"), "400"); // more than the input takes
    QCOMPARE(tool_->FindInput("Gain")->GetNumber(0.0), 10.0);
    QCOMPARE(Find<TimeCodeEdit>("edit")->GetValue(), 10.0);

    type(*Find<TimeCodeEdit>("edity2"), "0.125");
    const Ref<Parameter> center = tool_->FindInput("Center")->GetValue(0.0);
    QCOMPARE(dynamic_cast<const Point&>(*center).X(), 0.5);
    QCOMPARE(dynamic_cast<const Point&>(*center).Y(), 0.125);

    type(*Find<MxLineEdit>("edit3"), "two");
    const Ref<Parameter> caption = tool_->FindInput("Caption")->GetValue(0.0);
    QCOMPARE(dynamic_cast<const Text&>(*caption).GetValue(), std::string("two"));
    QCOMPARE(UndoCount(), before + 4);

    document_->Undo().Undo();
    QCOMPARE(Find<MxLineEdit>("edit3")->text(), QString("hello"));
    QCOMPARE(Control()->UndoDepth(), 0);
    for (const char* name : {"edit", "edity2", "edit3"}) {
        QVERIFY2(Control()->GetInputFrom(Find<QWidget>(name), nullptr), name);
    }
    QCOMPARE(Control()->GetInputFrom(Find<QWidget>("edity2"), nullptr), tool_->FindInput("Center"));
}

void GenericControlsTest::DragIsOneUndoEntry()
{
    OpenTool("ScrewControl");
    auto* edit = Find<TimeCodeEdit>("edit");
    const int before = UndoCount();
    const QPoint start = edit->rect().center();
    const auto move = [edit](const QPoint& to) {
        QMouseEvent event(QEvent::MouseMove, to, edit->mapToGlobal(to), Qt::NoButton,
                          Qt::MiddleButton, Qt::NoModifier);
        QCoreApplication::sendEvent(edit, &event);
    };
    QTest::mousePress(edit, Qt::MiddleButton, Qt::NoModifier, start);
    for (int x = 1; x <= 40; ++x)
        move(start + QPoint(x, 0));
    const double reached = tool_->FindInput("Gain")->GetNumber(0.0);
    QVERIFY(reached > 0.25);
    QTest::mouseRelease(edit, Qt::MiddleButton, Qt::NoModifier, start + QPoint(40, 0));
    QCOMPARE(tool_->FindInput("Gain")->GetNumber(0.0), reached);
    QCOMPARE(UndoCount(), before + 1);
    QCOMPARE(Control()->UndoDepth(), 0);
    document_->Undo().Undo();
    QCOMPARE(edit->GetValue(), 0.25);
}

void GenericControlsTest::TypedExpressionBecomesTheInputs()
{
    OpenTool("RangeControl");
    type(*Find<TimeCodeEdit>("edit"), "time / 10");
    QCOMPARE(tool_->FindInput("Gain")->GetExpression(), std::string("time / 10"));
    document_->SetCurrentTime(20.0);
    QCOMPARE(Find<TimeCodeEdit>("edit")->GetValue(), 2.0);
    // A point can't take one for half of itself: the text stays, marked.
    type(*Find<TimeCodeEdit>("edit2"), "time / 10");
    QVERIFY(Find<TimeCodeEdit>("edit2")->IsUnreadable());
    QVERIFY(tool_->FindInput("Center")->GetExpression().empty());
}

void GenericControlsTest::ValuesComeBack()
{
    OpenTool("FileControl");
    tool_->FindInput("Gain")->SetValue(Number(3.5), 0.0);
    tool_->FindInput("Center")->SetValue(Point(0.1, 0.2), 0.0);
    QCOMPARE(Find<TimeCodeEdit>("edit")->GetValue(), 3.5);
    QCOMPARE(Find<TimeCodeEdit>("edit2")->GetValue(), 0.1);
    QCOMPARE(Find<TimeCodeEdit>("edity2")->GetValue(), 0.2);
    QCOMPARE(Find<ElideLabel>("label2")->Text(), QString("Center"));
    const ScriptVal shown = run(*Control(), *Control()->GetRegistry(), "GetValues");
    QCOMPARE(shown.Get("Gain").ToNumber(), 3.5);
    QCOMPARE(shown.Get("Caption").ToString(), std::string("hello"));
    QVERIFY(run(*Control(), *Control()->GetRegistry(), "IsGeneric").ToBool());
}

void GenericControlsTest::SeveralLinesAreNotLost()
{
    OpenTool("TextEditControl");
    auto* edit = Find<MxLineEdit>("edit3");
    QVERIFY(!edit->isReadOnly());
    tool_->FindInput("Caption")->SetValue(Text("one\ntwo"), 0.0);
    QVERIFY(edit->isReadOnly());
    QVERIFY(!edit->toolTip().isEmpty());
    tool_->FindInput("Caption")->SetValue(Text("one"), 0.0);
    QVERIFY(!edit->isReadOnly());
}

void GenericControlsTest::EditThatClosesThePage()
{
    const auto closePage = [this] { page_->SetOperator(nullptr); };
    for (const char* name : {"edit", "edit2", "edit3"}) {
        OpenTool("ScrewControl");
        const int before = UndoCount();
        const auto closing =
            connect(&document_->Undo().Stack(), &QUndoStack::indexChanged, page_.get(), closePage);
        if (auto* text = Find<MxLineEdit>(name))
            type(*text, "two");
        else
            type(*Find<TimeCodeEdit>(name), "0.75");
        disconnect(closing);
        QVERIFY2(page_->Controls().empty(), name);
        QCOMPARE(UndoCount(), before + 1);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

void GenericControlsTest::OverlaysHoldAndForward()
{
    controlClass = MxID();
    tool_ = document_->AddTool("RowsTool");
    Input* gain = tool_->FindInput("Gain");
    gain->SetAttrsTagList(TagList({{IA_OverlayIndex, 2}}));
    for (const Expected::Record& row : Expected::records) {
        if (row.family != Expected::Overlay || !isGeneric(*ClassRegistry::Global().Find(row.id)))
            continue;
        const Ref<Object> made(ClassRegistry::Global().Create(row.id));
        auto& overlay = dynamic_cast<PreviewControl&>(*made);
        const Registry& record = *overlay.GetRegistry();
        overlay.SetOperator(tool_);
        QVERIFY2(overlay.AddInput(gain, nullptr), row.id);
        QCOMPARE(run(overlay, record, "GetValues").Get("Gain").ToNumber(), gain->GetNumber(0.0));
        const double sent = gain->GetNumber(0.0) + 0.125;
        QVERIFY2(overlay.SetInputs(MakeRef<Number>(sent).Get(), 0.0, 2, nullptr), row.id);
        QCOMPARE(gain->GetNumber(0.0), sent);
        overlay.NotifyChanged(gain, gain->GetValue(0.0).Get(), nullptr);
        QCOMPARE(run(overlay, record, "GetValues").Get("Gain").ToNumber(), sent);
        PreviewInfo view;
        QCOMPARE(overlay.ControlDown(&view, {0, 0}, nullptr), DragType::None);
        QVERIFY2(overlay.RemoveInput(gain, nullptr), row.id);
        QVERIFY2(overlay.Inputs().empty(), row.id);
    }
}

QTEST_MAIN(GenericControlsTest)
#include "GenericControlsTest.moc"
