#include "host/Rows.h"
#include "host/controls/Probe.h"

#include "script/ScriptSystem.h"
#include "system/widgets/ElideLabel.h"
#include "system/widgets/KeyFrameIndicator.h"

#include <QScrollArea>
#include <QScrollBar>
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

/// The page of a tool's controls; folding has a test of its own.
class ControlWndTest : public ProbePage {
    Q_OBJECT

    KeyFrameIndicator* Keys() const { return page_->findChild<KeyFrameIndicator*>(); }

private slots:
    void init()
    {
        qRegisterMetaType<Operator*>("Marlox::Operator*");
        Start();
    }

    void lifeCycle()
    {
        SetProbeInputs([](Operator& tool) {
            tool.AddInput("low", ProbeAttributes("Low"));
            tool.AddInput("plain", TagList({{IAS_Name, "No control"}}));
            tool.AddInput("high", ProbeAttributes("High", {{IAS_SharedWith, "low"}}));
        });
        tool_ = document_->AddTool("ProbeTool");
        page_->SetOperator(tool_);
        QCOMPARE(Log(), QStringList({"attach low", "attrs low", "add low", "attach high",
                                     "attrs high", "add high", "open"}));
        QCOMPARE(page_->Controls().size(), std::size_t(1));
        ProbeControl* control = Of("low");
        QCOMPARE(Of("high"), control);
        QVERIFY(!Of("plain"));
        QCOMPARE(In("low").GetAttr(IA_ControlIndex, -1), 0);
        QCOMPARE(In("high").GetAttr(IA_ControlIndex, -1), 1);
        QCOMPARE(control->FindInputByIndex(1), &In("high"));
        QVERIFY(control->sizesAsked > 0 && control->sizesSet > 0);
        QCOMPARE(control->objectName(), QString("low"));
        QCOMPARE(In("low").Controls().size(), std::size_t(1));

        page_->SetOperator(nullptr);
        QCOMPARE(Log(),
                 QStringList({"close", "remove low", "detach low", "remove high", "detach high"}));
        QVERIFY(In("low").Controls().empty());
        QCoreApplication::processEvents(); // controls are never ended within their own handlers
        QCOMPARE(Log(), QStringList("destroy"));
    }

    void sharingWithLaterOrUnknownInputs()
    {
        Open([](Operator& tool) {
            tool.AddInput("first", ProbeAttributes("First", {{IAS_SharedWith, "later"}}));
            tool.AddInput("lost", ProbeAttributes("Lost", {{IAS_SharedWith, "nobody"}}));
            tool.AddInput("later", ProbeAttributes("Later"));
        });
        QCOMPARE(page_->Controls().size(), std::size_t(2));
        QVERIFY(Of("first") && Of("first") == Of("later"));
        QVERIFY(Of("lost") && Of("lost") != Of("later"));
    }

    void whatCannotBeShownSaysSo_data()
    {
        const Rows<QByteArray, QString, bool, QString> row("id", "refuse", "refuseOpen", "word");
        row("unknown class", "NoSuchControl", "", false, "NoSuchControl");
        row("no control", "ProbeTool", "", false, "ProbeTool");
        row("input refused", "ProbeControl", "x", false, "Strange");
        row("open refused", "ProbeControl", "", true, "ProbeControl");
    }
    void whatCannotBeShownSaysSo()
    {
        QFETCH(QByteArray, id);
        QFETCH(QString, refuse);
        QFETCH(bool, refuseOpen);
        QFETCH(QString, word);
        ProbeControl::settings.refuseInput = refuse;
        ProbeControl::settings.refuseOpen = refuseOpen;
        QSignalSpy problems(page_.get(), &ControlWnd::Problem);
        Open([id](Operator& tool) {
            tool.AddInput("x", ProbeAttributes("Strange", {{IAS_Control, id.constData()}}));
        });
        QCOMPARE(LinesOf(*page_).size(), 1);
        QVERIFY(LinesOf(*page_).front().contains("Strange"));
        QVERIFY(LinesOf(*page_).front().contains(word));
        QCOMPARE(problems.size(), 1);
        QVERIFY(page_->Controls().empty() && In("x").Controls().empty());
        QVERIFY(page_->sizeHint().height() >= 24);
    }

    void brokenLayout()
    {
        ProbeControl::settings.spin = true;
        ProbeControl::settings.layout = "Controls.NoSuch.Layout";
        QSignalSpy problems(page_.get(), &ControlWnd::Problem);
        Open(1);
        QVERIFY(!a_->GetLayout());
        QVERIFY(a_->Fault().contains("Controls.NoSuch.Layout"));
        QCOMPARE(problems.size(), 1);
        QVERIFY(a_->child->isHidden());
        QCOMPARE(a_->height(), 48); // its name and the message
        QImage blank(a_->size(), QImage::Format_RGB32);
        blank.fill(a_->palette().color(QPalette::Window));
        QVERIFY(a_->grab().toImage().convertToFormat(QImage::Format_RGB32) != blank);
    }

    void notifiesOnlyWhoIsAffected()
    {
        Open(3);
        QVERIFY(Set("b", 4.0));
        QCOMPARE(Log(), QStringList({"notify b=4", "display b"}));
        History().Undo();
        QCOMPARE(Log(), QStringList({"notify b=0", "display b"}));
        QVERIFY(In("b").AddKey(0.0, Interpolation::Linear));
        document_->SetCurrentTime(10.0);
        QVERIFY(Set("b", 20.0, 10.0));
        Log();
        document_->SetCurrentTime(5.0);
        QCOMPARE(Log(), QStringList({"notify b=10", "display b"}));

        QVERIFY(In("c").SetExpression("a * 2 + time"));
        Log();
        QVERIFY(Set("a", 3.0));
        QCOMPARE(Log(), QStringList({"notify a=3", "display a", "notify c=11", "display c"}));
        document_->SetCurrentTime(0.0);
        QCOMPARE(Log(), QStringList({"notify b=0", "display b", "notify c=6", "display c"}));

        ControlWnd second;
        second.SetOperator(tool_);
        Log();
        QVERIFY(Set("a", 1.0));
        QCOMPARE(Log().count("notify a=1"), 2);
    }

    void connectionsAreTold()
    {
        Operator* source = document_->AddTool("ProbeTool");
        Open([](Operator& tool) {
            tool.AddInput("mask", ProbeAttributes("Mask", {{IAS_DataType, CLSID_DataType_Image}}));
        });
        QVERIFY(In("mask").Connect(source));
        QCOMPARE(Log().front(), QString("connect mask"));
        QVERIFY(In("mask").Connect(nullptr));
        QCOMPARE(Log().front(), QString("disconnect mask"));
    }

    void attributesChangeWhileOpen()
    {
        Open(1);
        input_->SetAttrsTagList({{IAS_Name, "Renamed"}, {IC_Disabled, 1}});
        QVERIFY(Log().contains("attrs a"));
        QCOMPARE(a_->accessibleName(), QString("Renamed"));
        QVERIFY(!a_->isEnabled());
        // What a script sets on the control itself wins over the input.
        a_->SetAttrsTagList(TagList({{IC_Disabled, 0}}));
        QVERIFY(a_->isEnabled());
        QCOMPARE(a_->GetAttr(IC_Disabled, -1), 0);
    }

    void sizesInOnePass()
    {
        Open(3);
        ProbeControl* c = Of("c");
        const int below = c->y();
        const int high = page_->sizeHint().height();
        QVERIFY(a_->y() < Of("b")->y() && Of("b")->y() < below);
        a_->sizesAsked = c->sizesAsked = a_->sizesSet = c->sizesSet = 0;
        QSignalSpy heights(page_.get(), &ControlWnd::HeightChanged);
        ProbeControl::settings.minimumHeight = 60;
        for (int i = 0; i < 5; ++i)
            a_->RecalcControlSize();
        QCOMPARE(a_->sizesAsked, 0);
        QCoreApplication::processEvents();
        QCOMPARE(a_->sizesSet, 1);
        QCOMPARE(a_->height(), 60);
        QCOMPARE(c->sizesAsked + c->sizesSet, 0); // only moved
        QCOMPARE(c->y(), below + 36);
        QCOMPARE(heights.size(), 1);
        QCOMPARE(heights.front().front().toInt(), high + 36);

        page_->show();
        const int width = a_->width();
        page_->resize(400, 200);
        QCOMPARE(a_->width(), width + 100);
        QCOMPARE(a_->sizesAsked, c->sizesAsked + 2); // a wider page asks nobody anew
    }

    void hiddenAndNarrowRows()
    {
        ProbeControl::settings.minimumWidth = 500;
        Open(2);
        QCOMPARE(a_->width(), 500);
        QVERIFY(page_->minimumSizeHint().width() > 500);
        ProbeControl::settings.minimumWidth = 50;
        ProbeControl::settings.maximumWidth = 120;
        page_->RecalcSizes();
        QCoreApplication::processEvents();
        QCOMPARE(a_->width(), 120);

        const int before = page_->sizeHint().height();
        for (const int hidden : {1, 0}) {
            input_->SetAttrsTagList({{IC_Hidden, hidden}});
            QCoreApplication::processEvents();
            QCOMPARE(a_->isHidden(), hidden == 1);
            QCOMPARE(page_->sizeHint().height() < before, hidden == 1);
        }
        QCOMPARE(page_->sizeHint().height(), before);
    }

    void keyButtons()
    {
        using State = KeyFrameIndicator::State;
        Open([](Operator& tool) {
            tool.AddInput("a", ProbeAttributes("A"));
            tool.AddInput("fixed", ProbeAttributes("Fixed", {{IA_Animatable, 0}}));
        });
        QCOMPARE(page_->findChildren<KeyFrameIndicator*>().size(), 1);
        KeyFrameIndicator* keys = Keys();
        QVERIFY(keys->x() >= a_->geometry().right());
        QCOMPARE(keys->GetState(), State::None);
        keys->click();
        QVERIFY(input_->IsKeyAt(0.0));
        QCOMPARE(History().UndoText(), QString("Set Key of A"));
        QCOMPARE(keys->GetState(), State::Keyed);
        document_->SetCurrentTime(3.0);
        QCOMPARE(keys->GetState(), State::Animated);
        document_->SetCurrentTime(0.0);
        keys->click();
        QVERIFY(!input_->IsAnimated());
        QCOMPARE(keys->GetState(), State::None);

        const QImage plain = page_->grab({0, 0, 8, 28}).toImage();
        input_->SetExpression("1");
        QCOMPARE(keys->GetState(), State::Expression);
        QVERIFY(page_->grab({0, 0, 8, 28}).toImage() != plain); // the mark at the row's left
    }

    void lockedTool()
    {
        Open(1);
        tool_->SetLocked(true);
        QVERIFY(!a_->isEnabled() && !Keys()->isEnabled());
        QVERIFY(!Send(a_, 1.0));
        History().Undo();
        QVERIFY(a_->isEnabled() && Keys()->isEnabled());
    }

    void wheelNeedsFocus()
    {
        ProbeControl::settings.spin = true;
        ProbeControl::settings.minimumHeight = 60;
        Open(8);
        QScrollArea area;
        area.setWidgetResizable(true);
        area.setWidget(page_.get());
        const auto taken = qScopeGuard([&area] { (void)area.takeWidget(); });
        area.resize(300, 150);
        area.show();
        area.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&area));
        auto* first = qobject_cast<QSpinBox*>(a_->child);
        auto* second = qobject_cast<QSpinBox*>(Of("b")->child);
        first->setFocus();
        Wheel(*second, -120);
        QCOMPARE(second->value(), 0);
        QVERIFY(area.verticalScrollBar()->value() > 0); // it scrolled the page
        Wheel(*first, -120);
        QCOMPARE(first->value(), 0); // the scroll goes on below the cursor
        second->setFocus();
        first->setFocus(); // a new wish of the user's
        Wheel(*first, -120);
        QCOMPARE(first->value(), -1);
    }

    void pageGoesFirst()
    {
        auto window = std::make_unique<QWidget>();
        page_->setParent(window.get());
        Open(2);
        a_->SetUndo(0, nullptr);
        (void)page_.release();
        window.reset();
        QCOMPARE(Log().count("destroy"), 2);
        QCOMPARE(History().Depth(), 0);
    }

    void documentEndsThePage_data()
    {
        const Rows<QString> row("how");
        for (const char* how : {"tool removed", "adding undone", "cleared", "document deleted"})
            row(how, how);
    }
    void documentEndsThePage()
    {
        QFETCH(QString, how);
        SetProbeInputs(NumberInputs(2));
        tool_ = document_->AddTool("ProbeTool");
        page_->SetOperator(tool_);
        Log();
        QSignalSpy shown(page_.get(), &ControlWnd::OperatorChanged);
        Of("a")->OnEditStartDrag();
        if (how == "tool removed")
            QVERIFY(document_->RemoveTool(*tool_) && History().Depth() == 0);
        else if (how == "adding undone")
            History().Undo();
        else if (how == "cleared")
            document_->Clear();
        else
            document_.reset();
        QVERIFY(!page_->GetOperator());
        QVERIFY(page_->Controls().empty());
        QCOMPARE(shown.size(), 1);
        QCoreApplication::processEvents();
        QCOMPARE(Log().count("destroy"), 2);
        QVERIFY(!document_ || !document_->IsAutoProxy());
    }

    void controlOutlivesPage()
    {
        Open(1);
        const auto kept = Ref<InputControl>::Share(page_->Controls().front().Get());
        page_.reset();
        QCOMPARE(Log().count("destroy"), 0);
        QVERIFY(!kept->IsOpen() && !kept->Owner() && !kept->parentWidget());
        QVERIFY(Set("a", 1.0));
        QVERIFY(Log().empty());
        QVERIFY(!Send(a_, 2.0));
    }

    void closedFromWithinAControl()
    {
        Open(2);
        a_->onUpdate = [this] { page_->SetOperator(nullptr); };
        QVERIFY(Send(a_, 2.0));
        QCOMPARE(Log().count("destroy"), 0);
        QCOMPARE(a_->UndoDepth(), 0); // still there
        QCoreApplication::processEvents();
        QCOMPARE(Log().count("destroy"), 2);
        QCOMPARE(History().UndoText(), QString("Adjust A"));
    }

    void releasedForUnload()
    {
        Open(2);
        const Registry* record = page_->Controls().front()->GetRegistry();
        QCOMPARE(record->LiveObjects(), 2);
        ControlWnd::ReleaseAll();
        QCOMPARE(record->LiveObjects(), 0);
        QVERIFY(!page_->GetOperator());
        ControlWnd::ReleaseAll(); // asked by two libraries
        ControlWnd::ReopenAll();
        QCOMPARE(page_->GetOperator(), tool_);
        QCOMPARE(record->LiveObjects(), 2);

        ControlWnd::ReleaseAll();
        page_->SetOperator(nullptr); // the user went elsewhere meanwhile
        ControlWnd::ReopenAll();
        QVERIFY(!page_->GetOperator());
        page_->SetOperator(tool_);
        ControlWnd::ReleaseAll();
        QVERIFY(document_->RemoveTool(*tool_));
        ControlWnd::ReopenAll(); // the tool has gone meanwhile
        QVERIFY(!page_->GetOperator());
    }
};

QTEST_MAIN(ControlWndTest)
#include "ControlWndTest.moc"
