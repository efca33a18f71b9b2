#include "host/controls/Probe.h"

#include "script/ScriptSystem.h"
#include "system/widgets/ElideLabel.h"
#include "system/widgets/KeyFrameIndicator.h"

#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSpinBox>
#include <QWheelEvent>
#include <QtTest/qtestspontaneevent.h>
#include <QtTest>

Q_DECLARE_METATYPE(Marlox::Operator*)

using namespace Marlox;

namespace {

QStringList LinesOf(const ControlWnd& page)
{
    QStringList lines;
    for (const ElideLabel* line : page.findChildren<ElideLabel*>()) {
        if (!line->isHidden())
            lines += line->Text();
    }
    return lines;
}

QList<KeyFrameIndicator*> KeysOf(const ControlWnd& page)
{
    return page.findChildren<KeyFrameIndicator*>(QString(), Qt::FindDirectChildrenOnly);
}

/// A turn of the wheel as from the window system: only such events travel up to the parents.
void Wheel(QWidget& over, int delta)
{
    const QPoint at = over.rect().center();
    QWheelEvent event(at, over.mapToGlobal(at), {}, {0, delta}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(&over, &event);
}

} // namespace

class ControlWndTest : public QObject {
    Q_OBJECT
private slots:
    void init();
    void lifeCycle();
    void sharingWithLaterOrUnknownInputs();
    void whatCannotBeShownSaysSo_data();
    void whatCannotBeShownSaysSo();
    void brokenLayout();
    void notifiesOnlyWhoIsAffected();
    void expressionsFollowOtherInputs();
    void connectionsAreTold();
    void attributesChangeWhileOpen();
    void sizesInOnePass();
    void hiddenAndNarrowRows();
    void keyButtons();
    void lockedTool();
    void wheelNeedsFocus();
    void tabOrderFollowsRows();
    void pageGoesFirst();
    void documentEndsThePage_data();
    void documentEndsThePage();
    void controlOutlivesPage();
    void closedFromWithinAControl();
    void releasedForUnload();

private:
    Operator* OpenTool(int numbers);
    std::unique_ptr<MarloxDoc> document_;
    std::unique_ptr<ControlWnd> page_;
};

void ControlWndTest::init()
{
    qRegisterMetaType<Operator*>("Marlox::Operator*");
    InstallScripting();
    ProbeControl::settings = {};
    page_ = std::make_unique<ControlWnd>();
    document_ = std::make_unique<MarloxDoc>();
    ProbeControl::TakeLog();
}

Operator* ControlWndTest::OpenTool(int numbers)
{
    Operator* tool = AddProbeTool(*document_, numbers);
    page_->resize(300, 200);
    page_->SetOperator(tool);
    ProbeControl::TakeLog();
    return tool;
}

void ControlWndTest::lifeCycle()
{
    SetProbeInputs([](Operator& tool) {
        tool.AddInput("low", ProbeAttributes("Low"));
        tool.AddInput("plain", TagList({{IAS_Name, "No control"}}));
        tool.AddInput("high", ProbeAttributes("High", {{IAS_SharedWith, "low"}}));
    });
    Operator* tool = document_->AddTool("ProbeTool");
    page_->SetOperator(tool);
    QCOMPARE(ProbeControl::TakeLog(),
             QStringList({"attach low", "attrs low", "add low", "attach high", "attrs high",
                          "add high", "open"}));
    QCOMPARE(page_->Controls().size(), std::size_t(1));
    ProbeControl* control = ProbeOf(*page_, "low");
    QCOMPARE(ProbeOf(*page_, "high"), control);
    QVERIFY(!ProbeOf(*page_, "plain"));
    QCOMPARE(tool->FindInput("low")->GetAttr(IA_ControlIndex, -1), 0);
    QCOMPARE(tool->FindInput("high")->GetAttr(IA_ControlIndex, -1), 1);
    QCOMPARE(control->FindInputByIndex(1), tool->FindInput("high"));
    QVERIFY(control->sizesAsked > 0 && control->sizesSet > 0);
    QCOMPARE(control->objectName(), QString("low"));
    QCOMPARE(tool->FindInput("low")->Controls().size(), std::size_t(1));

    page_->SetOperator(nullptr);
    QCOMPARE(ProbeControl::TakeLog(),
             QStringList({"close", "remove low", "detach low", "remove high", "detach high"}));
    QVERIFY(tool->FindInput("low")->Controls().empty());
    QCoreApplication::processEvents(); // controls are never ended within their own handlers
    QCOMPARE(ProbeControl::TakeLog(), QStringList("destroy"));
}

void ControlWndTest::sharingWithLaterOrUnknownInputs()
{
    SetProbeInputs([](Operator& tool) {
        tool.AddInput("first", ProbeAttributes("First", {{IAS_SharedWith, "later"}}));
        tool.AddInput("lost", ProbeAttributes("Lost", {{IAS_SharedWith, "nobody"}}));
        tool.AddInput("later", ProbeAttributes("Later"));
    });
    page_->SetOperator(document_->AddTool("ProbeTool"));
    QCOMPARE(page_->Controls().size(), std::size_t(2));
    QVERIFY(ProbeOf(*page_, "first"));
    QCOMPARE(ProbeOf(*page_, "first"), ProbeOf(*page_, "later"));
    QVERIFY(ProbeOf(*page_, "lost") && ProbeOf(*page_, "lost") != ProbeOf(*page_, "later"));
}

void ControlWndTest::whatCannotBeShownSaysSo_data()
{
    QTest::addColumn<QByteArray>("classID");
    QTest::addColumn<QString>("refuse");
    QTest::addColumn<bool>("refuseOpen");
    QTest::addColumn<QString>("word");
    QTest::newRow("unknown class") << QByteArray("NoSuchControl") << "" << false << "NoSuchControl";
    QTest::newRow("no control") << QByteArray("ProbeTool") << "" << false << "ProbeTool";
    QTest::newRow("input refused") << QByteArray("ProbeControl") << "x" << false << "Strange";
    QTest::newRow("open refused") << QByteArray("ProbeControl") << "" << true << "ProbeControl";
}

void ControlWndTest::whatCannotBeShownSaysSo()
{
    QFETCH(QByteArray, classID);
    QFETCH(QString, refuse);
    QFETCH(bool, refuseOpen);
    QFETCH(QString, word);
    ProbeControl::settings.refuseInput = refuse;
    ProbeControl::settings.refuseOpen = refuseOpen;
    SetProbeInputs([classID](Operator& tool) {
        tool.AddInput("x", ProbeAttributes("Strange", {{IAS_Control, classID.constData()}}));
    });
    QSignalSpy problems(page_.get(), &ControlWnd::Problem);
    Operator* tool = document_->AddTool("ProbeTool");
    page_->SetOperator(tool);
    QCOMPARE(LinesOf(*page_).size(), 1);
    QVERIFY(LinesOf(*page_).front().contains("Strange"));
    QVERIFY(LinesOf(*page_).front().contains(word));
    QCOMPARE(problems.size(), 1);
    QVERIFY(page_->Controls().empty());
    QVERIFY(tool->FindInput("x")->Controls().empty());
    QVERIFY(page_->sizeHint().height() >= 24);
}

void ControlWndTest::brokenLayout()
{
    ProbeControl::settings.spin = true;
    ProbeControl::settings.layout = "Controls.NoSuch.Layout";
    QSignalSpy problems(page_.get(), &ControlWnd::Problem);
    OpenTool(1);
    ProbeControl* control = ProbeOf(*page_, "a");
    QVERIFY(control && !control->GetLayout());
    QVERIFY(control->Fault().contains("Controls.NoSuch.Layout"));
    QCOMPARE(problems.size(), 1);
    QVERIFY(control->child->isHidden());
    QCOMPARE(control->height(), 48); // its name and the message
    QImage blank(control->size(), QImage::Format_RGB32);
    blank.fill(control->palette().color(QPalette::Window));
    QVERIFY(control->grab().toImage().convertToFormat(QImage::Format_RGB32) != blank);
}

void ControlWndTest::notifiesOnlyWhoIsAffected()
{
    Operator* tool = OpenTool(3);
    Input* b = tool->FindInput("b");
    QVERIFY(b->SetValue(*MakeRef<Number>(4.0), 0.0));
    QCOMPARE(ProbeControl::TakeLog(), QStringList({"notify b=4", "display b"}));
    document_->Undo().Undo();
    QCOMPARE(ProbeControl::TakeLog(), QStringList({"notify b=0", "display b"}));

    QVERIFY(b->AddKey(0.0, Interpolation::Linear));
    document_->SetCurrentTime(10.0);
    QVERIFY(b->SetValue(*MakeRef<Number>(20.0), 10.0));
    ProbeControl::TakeLog();
    document_->SetCurrentTime(5.0);
    QCOMPARE(ProbeControl::TakeLog(), QStringList({"notify b=10", "display b"}));

    ControlWnd second;
    second.SetOperator(tool);
    ProbeControl::TakeLog();
    QVERIFY(tool->FindInput("a")->SetValue(*MakeRef<Number>(1.0), 5.0));
    QCOMPARE(ProbeControl::TakeLog().count("notify a=1"), 2);
}

void ControlWndTest::expressionsFollowOtherInputs()
{
    Operator* tool = OpenTool(2);
    QVERIFY(tool->FindInput("b")->SetExpression("a * 2 + time"));
    ProbeControl::TakeLog();
    QVERIFY(tool->FindInput("a")->SetValue(*MakeRef<Number>(3.0), 0.0));
    QCOMPARE(ProbeControl::TakeLog(),
             QStringList({"notify a=3", "display a", "notify b=6", "display b"}));
    document_->SetCurrentTime(1.0);
    QCOMPARE(ProbeControl::TakeLog(), QStringList({"notify b=7", "display b"}));
}

void ControlWndTest::connectionsAreTold()
{
    SetProbeInputs([](Operator& tool) {
        tool.AddInput("mask", ProbeAttributes("Mask", {{IAS_DataType, CLSID_DataType_Image}}));
    });
    Operator* source = document_->AddTool("ProbeTool");
    Operator* tool = document_->AddTool("ProbeTool");
    page_->SetOperator(tool);
    ProbeControl::TakeLog();
    QVERIFY(tool->FindInput("mask")->Connect(source));
    QCOMPARE(ProbeControl::TakeLog().front(), QString("connect mask"));
    QVERIFY(tool->FindInput("mask")->Connect(nullptr));
    QCOMPARE(ProbeControl::TakeLog().front(), QString("disconnect mask"));
}

void ControlWndTest::attributesChangeWhileOpen()
{
    Operator* tool = OpenTool(1);
    tool->FindInput("a")->SetAttrsTagList({{IAS_Name, "Renamed"}, {IC_Disabled, 1}});
    QVERIFY(ProbeControl::TakeLog().contains("attrs a"));
    QCOMPARE(ProbeOf(*page_, "a")->accessibleName(), QString("Renamed"));
    QVERIFY(!ProbeOf(*page_, "a")->isEnabled());
    // What a script sets on the control itself wins over the input.
    ProbeOf(*page_, "a")->SetAttrsTagList(TagList({{IC_Disabled, 0}}));
    QVERIFY(ProbeOf(*page_, "a")->isEnabled());
    QCOMPARE(ProbeOf(*page_, "a")->GetAttr(IC_Disabled, -1), 0);
}

void ControlWndTest::sizesInOnePass()
{
    OpenTool(3);
    ProbeControl* a = ProbeOf(*page_, "a");
    ProbeControl* c = ProbeOf(*page_, "c");
    const int below = c->y();
    const int high = page_->sizeHint().height();
    QVERIFY(a->y() < ProbeOf(*page_, "b")->y() && ProbeOf(*page_, "b")->y() < below);
    a->sizesAsked = c->sizesAsked = a->sizesSet = c->sizesSet = 0;
    QSignalSpy heights(page_.get(), &ControlWnd::HeightChanged);
    ProbeControl::settings.minimumHeight = 60;
    for (int i = 0; i < 5; ++i)
        a->RecalcControlSize();
    QCOMPARE(a->sizesAsked, 0);
    QCoreApplication::processEvents();
    QCOMPARE(a->sizesSet, 1);
    QCOMPARE(a->height(), 60);
    QCOMPARE(c->sizesAsked + c->sizesSet, 0); // only moved
    QCOMPARE(c->y(), below + 36);
    QCOMPARE(heights.size(), 1);
    QCOMPARE(heights.front().front().toInt(), high + 36);

    page_->show();
    const int width = a->width();
    page_->resize(400, 200);
    QCOMPARE(a->width(), width + 100);
    QCOMPARE(a->sizesAsked, c->sizesAsked + 2); // a wider page asks nobody anew
}

void ControlWndTest::hiddenAndNarrowRows()
{
    ProbeControl::settings.minimumWidth = 500;
    Operator* tool = OpenTool(2);
    QCOMPARE(ProbeOf(*page_, "a")->width(), 500);
    QVERIFY(page_->minimumSizeHint().width() > 500);
    ProbeControl::settings.minimumWidth = 50;
    ProbeControl::settings.maximumWidth = 120;
    page_->RecalcSizes();
    QCoreApplication::processEvents();
    QCOMPARE(ProbeOf(*page_, "a")->width(), 120);

    const int before = page_->sizeHint().height();
    tool->FindInput("a")->SetAttrsTagList({{IC_Hidden, 1}});
    QCoreApplication::processEvents();
    QVERIFY(ProbeOf(*page_, "a")->isHidden());
    QVERIFY(page_->sizeHint().height() < before);
    tool->FindInput("a")->SetAttrsTagList({{IC_Hidden, 0}});
    QCoreApplication::processEvents();
    QVERIFY(!ProbeOf(*page_, "a")->isHidden());
    QCOMPARE(page_->sizeHint().height(), before);
}

void ControlWndTest::keyButtons()
{
    SetProbeInputs([](Operator& tool) {
        tool.AddInput("a", ProbeAttributes("A"));
        tool.AddInput("fixed", ProbeAttributes("Fixed", {{IA_Animatable, 0}}));
    });
    Operator* tool = document_->AddTool("ProbeTool");
    page_->resize(300, 100);
    page_->SetOperator(tool);
    QCOMPARE(KeysOf(*page_).size(), 1);
    KeyFrameIndicator* keys = KeysOf(*page_).front();
    QVERIFY(keys->x() >= ProbeOf(*page_, "a")->geometry().right());
    QCOMPARE(keys->GetState(), KeyFrameIndicator::State::None);

    keys->click();
    Input* a = tool->FindInput("a");
    QVERIFY(a->IsKeyAt(0.0));
    QCOMPARE(document_->Undo().UndoText(), QString("Set Key of A"));
    QCOMPARE(keys->GetState(), KeyFrameIndicator::State::Keyed);
    document_->SetCurrentTime(3.0);
    QCOMPARE(keys->GetState(), KeyFrameIndicator::State::Animated);
    document_->SetCurrentTime(0.0);
    keys->click();
    QVERIFY(!a->IsAnimated());
    QCOMPARE(keys->GetState(), KeyFrameIndicator::State::None);

    const QImage plain = page_->grab({0, 0, 8, 28}).toImage();
    a->SetExpression("1");
    QCOMPARE(keys->GetState(), KeyFrameIndicator::State::Expression);
    QVERIFY(page_->grab({0, 0, 8, 28}).toImage() != plain); // the mark at the row's left
}

void ControlWndTest::lockedTool()
{
    Operator* tool = OpenTool(1);
    QVERIFY(ProbeOf(*page_, "a")->isEnabled() && KeysOf(*page_).front()->isEnabled());
    tool->SetLocked(true);
    QVERIFY(!ProbeOf(*page_, "a")->isEnabled() && !KeysOf(*page_).front()->isEnabled());
    QVERIFY(!ProbeOf(*page_, "a")->SetInputs(MakeRef<Number>(1.0).Get(), 0.0, 0, false, nullptr));
    document_->Undo().Undo();
    QVERIFY(ProbeOf(*page_, "a")->isEnabled() && KeysOf(*page_).front()->isEnabled());
}

void ControlWndTest::wheelNeedsFocus()
{
    ProbeControl::settings.spin = true;
    ProbeControl::settings.minimumHeight = 60;
    QScrollArea area;
    area.setWidgetResizable(true);
    auto* page = new ControlWnd;
    area.setWidget(page);
    page->SetOperator(AddProbeTool(*document_, 8));
    area.resize(300, 150);
    area.show();
    area.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&area));
    auto* first = qobject_cast<QSpinBox*>(ProbeOf(*page, "a")->child);
    auto* second = qobject_cast<QSpinBox*>(ProbeOf(*page, "b")->child);
    first->setFocus();

    QScrollBar* bar = area.verticalScrollBar();
    Wheel(*second, -120);
    QCOMPARE(second->value(), 0);
    QVERIFY(bar->value() > 0); // it scrolled the page
    Wheel(*first, -120);
    QCOMPARE(first->value(), 0); // the scroll goes on below the cursor
    second->setFocus();
    first->setFocus(); // a new wish of the user's
    Wheel(*first, -120);
    QCOMPARE(first->value(), -1);
}

void ControlWndTest::tabOrderFollowsRows()
{
    ProbeControl::settings.spin = true;
    Operator* tool = OpenTool(2);
    tool->FindInput("a")->SetExpression("1"); // its line comes later, yet belongs to the row
    QWidget* line = static_cast<QWidget*>(ProbeOf(*page_, "a")->GetExpressionData(0, nullptr));
    QVERIFY(line);
    QList<QWidget*> order;
    for (QWidget* next = page_->nextInFocusChain(); next != page_.get();
         next = next->nextInFocusChain())
        order += next;
    const int childA = order.indexOf(ProbeOf(*page_, "a")->child);
    QVERIFY(childA >= 0 && childA < order.indexOf(line));
    QVERIFY(order.indexOf(line) < order.indexOf(ProbeOf(*page_, "b")->child));
    QVERIFY(order.indexOf(KeysOf(*page_).front()) < order.indexOf(ProbeOf(*page_, "b")->child));
}

void ControlWndTest::pageGoesFirst()
{
    auto window = std::make_unique<QWidget>();
    page_->setParent(window.get());
    OpenTool(2);
    ProbeOf(*page_, "a")->SetUndo(0, nullptr);
    (void)page_.release();
    window.reset();
    QCOMPARE(ProbeControl::TakeLog().count("destroy"), 2);
    QCOMPARE(document_->Undo().Depth(), 0);
}

void ControlWndTest::documentEndsThePage_data()
{
    QTest::addColumn<int>("how");
    QTest::newRow("tool removed") << 0;
    QTest::newRow("adding undone") << 1;
    QTest::newRow("cleared") << 2;
    QTest::newRow("document deleted") << 3;
}

void ControlWndTest::documentEndsThePage()
{
    QFETCH(int, how);
    Operator* tool = OpenTool(2);
    QSignalSpy shown(page_.get(), &ControlWnd::OperatorChanged);
    ProbeOf(*page_, "a")->OnEditStartDrag();
    switch (how) {
    case 0:
        QVERIFY(document_->RemoveTool(*tool));
        QCOMPARE(document_->Undo().Depth(), 0);
        break;
    case 1:
        document_->Undo().Undo();
        break;
    case 2:
        document_->Clear();
        break;
    default:
        document_.reset();
    }
    QVERIFY(!page_->GetOperator());
    QVERIFY(page_->Controls().empty());
    QCOMPARE(shown.size(), 1);
    QCoreApplication::processEvents();
    QCOMPARE(ProbeControl::TakeLog().count("destroy"), 2);
    QVERIFY(!document_ || !document_->IsAutoProxy());
}

void ControlWndTest::controlOutlivesPage()
{
    Operator* tool = OpenTool(1);
    const auto kept = Ref<InputControl>::Share(page_->Controls().front().Get());
    page_.reset();
    QCOMPARE(ProbeControl::TakeLog().count("destroy"), 0);
    QVERIFY(!kept->IsOpen() && !kept->Owner() && !kept->parentWidget());
    QVERIFY(tool->FindInput("a")->SetValue(*MakeRef<Number>(1.0), 0.0));
    QVERIFY(ProbeControl::TakeLog().empty());
    QVERIFY(!kept->SetInputs(MakeRef<Number>(2.0).Get(), 0.0, 0, false, nullptr));
}

void ControlWndTest::closedFromWithinAControl()
{
    OpenTool(2);
    ProbeControl* a = ProbeOf(*page_, "a");
    a->onUpdate = [this] { page_->SetOperator(nullptr); };
    QVERIFY(a->SetInputs(MakeRef<Number>(2.0).Get(), 0.0, 0, false, nullptr));
    QCOMPARE(ProbeControl::TakeLog().count("destroy"), 0);
    QCOMPARE(a->UndoDepth(), 0); // still there
    QCoreApplication::processEvents();
    QCOMPARE(ProbeControl::TakeLog().count("destroy"), 2);
    QCOMPARE(document_->Undo().UndoText(), QString("Adjust A"));
}

void ControlWndTest::releasedForUnload()
{
    Operator* tool = OpenTool(2);
    const Registry* record = page_->Controls().front()->GetRegistry();
    QCOMPARE(record->LiveObjects(), 2);
    ControlWnd::ReleaseAll();
    QCOMPARE(record->LiveObjects(), 0);
    QVERIFY(!page_->GetOperator());
    ControlWnd::ReopenAll();
    QCOMPARE(page_->GetOperator(), tool);
    QCOMPARE(record->LiveObjects(), 2);

    ControlWnd::ReleaseAll();
    ControlWnd::ReleaseAll(); // asked by two libraries
    ControlWnd::ReopenAll();
    QCOMPARE(page_->GetOperator(), tool);

    ControlWnd::ReleaseAll();
    page_->SetOperator(nullptr); // the user went elsewhere meanwhile
    ControlWnd::ReopenAll();
    QVERIFY(!page_->GetOperator());
    page_->SetOperator(tool);
    ControlWnd::ReleaseAll();
    QVERIFY(document_->RemoveTool(*tool));
    ControlWnd::ReopenAll(); // the tool has gone meanwhile
    QVERIFY(!page_->GetOperator());
}

QTEST_MAIN(ControlWndTest)
#include "ControlWndTest.moc"
