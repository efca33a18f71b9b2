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
    void headingsFold_data();
    void headingsFold();
    void foldedRowsWait();
    void foldingEndsWhatGoesOn();
    void headingsShowWhatTheyUnfold();
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
    Operator* OpenFolded(const QString& rows);
    void Fold(const char* id, int inputs, bool open)
    {
        page_->SetHeading(*ProbeOf(*page_, id), inputs, open);
        QCoreApplication::processEvents();
    }
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

/// Rows of one letter each: capitals are headings, followed by the number of inputs that they count
/// (0: none), and by "-" where they are folded. An apostrophe marks an input that joins the row
/// before.
Operator* ControlWndTest::OpenFolded(const QString& rows)
{
    const QStringList words = rows.split(' ');
    const auto wordOf = [words](const QString& id) {
        return *std::find_if(words.begin(), words.end(),
                             [&id](const QString& word) { return word.startsWith(id); });
    };
    SetProbeInputs([words](Operator& tool) {
        QByteArray before;
        for (const QString& word : words) {
            const QByteArray id = word.left(1).toLatin1();
            TagList tags = ProbeAttributes(id);
            if (word[0].isUpper())
                tags.Set(IAS_Control, "ProbeHeading");
            if (word.endsWith('\''))
                tags.Set(IAS_SharedWith, before.constData());
            tool.AddInput(MxID(id.constData()), tags);
            before = id;
        }
    });
    ProbeControl::settings.onOpen = [this, wordOf](ProbeControl& control) {
        const QString word = wordOf(control.Inputs().front()->GetID().ToString());
        if (word[0].isUpper())
            page_->SetHeading(control, word.mid(1, 1).toInt(), !word.endsWith('-'));
    };
    page_->resize(300, 200);
    page_->SetOperator(document_->AddTool("ProbeTool"));
    return page_->GetOperator();
}

void ControlWndTest::headingsFold_data()
{
    QTest::addColumn<QString>("rows");
    QTest::addColumn<QString>("shown");
    QTest::newRow("counted") << "a H2- b c d"
                             << "a H d";
    QTest::newRow("open") << "H2 a b c"
                          << "H a b c";
    QTest::newRow("to the next heading") << "H0- a b G0 c"
                                         << "H G c";
    QTest::newRow("to the next that counts") << "H0- a G1 b c"
                                             << "H G b c";
    QTest::newRow("to the end") << "a H0- b c"
                                << "a H";
    QTest::newRow("more than there are") << "H9- a b"
                                         << "H";
    QTest::newRow("joined inputs count") << "H3- a b' c d"
                                         << "H d";
    QTest::newRow("inside") << "H3 a G1- b c"
                            << "H a G c";
    QTest::newRow("inside a folded one") << "H3- a G1 b c"
                                         << "H c";
    QTest::newRow("no further than outside") << "H2 a G9- b c"
                                             << "H a G b c";
    QTest::newRow("uncounted inside") << "H3 G0- a b c"
                                      << "H G c";
    QTest::newRow("next to each other inside") << "H4 G0- a K0 b c"
                                               << "H G K b c";
    QTest::newRow("three deep") << "H6 a G4 b K2- c d e"
                                << "H a G b K e";
}

void ControlWndTest::headingsFold()
{
    QFETCH(QString, rows);
    QFETCH(QString, shown);
    OpenFolded(rows);
    QStringList seen;
    int bottom = 0;
    for (const Ref<InputControl>& control : page_->Controls()) {
        QCOMPARE(control->isHidden(), page_->IsFolded(*control));
        if (control->isHidden())
            continue;                       // a heading inside a folded one
        QCOMPARE(control->y(), bottom + 4); // no room for the folded ones
        bottom = control->geometry().bottom() + 1;
        seen += control->objectName();
    }
    QCOMPARE(seen.join(' '), shown);
    QCOMPARE(page_->sizeHint().height(), bottom + 8);
}

void ControlWndTest::foldedRowsWait()
{
    ProbeControl::settings.spin = true;
    Operator* tool = OpenFolded("a H3- b c d e");
    tool->FindInput("c")->SetAttrsTagList({{IC_Hidden, 1}});
    QVERIFY(ProbeControl::TakeLog().filter("b").empty());
    QCOMPARE(page_->Controls().size(), std::size_t(3));
    const InputControl* asked = ProbeOf(*page_, "d"); // made for whoever wants it
    QVERIFY(asked && asked->isHidden() && page_->IsFolded(*asked));
    QCOMPARE(page_->Controls()[2].Get(), asked);

    tool->FindInput("b")->SetValue(Number(3.0), 0.0);
    Fold("H", 3, true);
    QString order;
    for (const Ref<InputControl>& control : page_->Controls())
        order += control->objectName();
    QCOMPARE(order, QString("aHbcde"));
    QVERIFY(!ProbeOf(*page_, "b")->isHidden() && !asked->isHidden());
    QVERIFY(ProbeOf(*page_, "c")->isHidden()); // for its own reason
    QVERIFY(!ProbeOf(*page_, "b")->size().isEmpty());

    // Tabbing takes the rows in their order, a line that comes later too.
    tool->FindInput("b")->SetExpression("1");
    QWidget* line = static_cast<QWidget*>(ProbeOf(*page_, "b")->GetExpressionData(0, nullptr));
    QStringList tabs;
    for (QWidget* next = page_->nextInFocusChain(); next != page_.get();
         next = next->nextInFocusChain()) {
        if (next == line)
            tabs += "line";
        else if (qobject_cast<QSpinBox*>(next) || qobject_cast<KeyFrameIndicator*>(next))
            tabs += next->parent() == page_.get() ? next->accessibleName().right(1) + " key"
                                                  : next->parentWidget()->objectName();
    }
    QStringList rows{"a", "a key", "H", "H key", "b", "line", "b key"};
    for (const char* id : {"c", "d", "e"})
        rows << id << QString(id) + " key";
    QCOMPARE(tabs, rows);

    // One that takes the page away while it opens.
    OpenFolded("H0- a b c");
    ProbeControl::settings.onOpen = [this](ProbeControl&) { page_->SetOperator(nullptr); };
    Fold("H", 0, true);
    QVERIFY(page_->Controls().empty());
    // The page shows the tool anew while its second row opens.
    int opened = 0;
    ProbeControl::settings.onOpen = [this, &opened](ProbeControl&) {
        Operator* const shown = page_->GetOperator();
        if (++opened != 2)
            return;
        page_->SetOperator(nullptr);
        page_->SetOperator(shown);
    };
    page_->SetOperator(document_->AddTool("ProbeTool"));
    const std::size_t inputs = page_->GetOperator()->Inputs().size();
    QVERIFY(inputs > 2);
    QCOMPARE(page_->Controls().size(), inputs);
    QCOMPARE(opened, int(inputs) + 2);
}

void ControlWndTest::foldingEndsWhatGoesOn()
{
    ProbeControl::settings.spin = true;
    Operator* tool = OpenFolded("H2 a b c");
    page_->show();
    page_->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(page_.get()));
    ProbeControl* heading = ProbeOf(*page_, "H");
    ProbeControl* b = ProbeOf(*page_, "b");
    heading->setFocusPolicy(Qt::StrongFocus);
    b->child->setFocus();
    ProbeOf(*page_, "a")->SetUndo(0, nullptr);
    ProbeOf(*page_, "a")->SetInputs(MakeRef<Number>(2.0).Get(), 0.0, 0, false, nullptr);
    QCOMPARE(document_->Undo().Depth(), 1);

    page_->SetHeading(*heading, 2, false);
    QVERIFY(b->isHidden()); // at once
    QVERIFY(heading->hasFocus());
    QCOMPARE(document_->Undo().Depth(), 0);
    QCOMPARE(document_->Undo().UndoText(), QString("Adjust a"));
    QVERIFY(KeysOf(*page_).at(2)->isHidden());

    // What is folded goes on following its input.
    ProbeControl::TakeLog();
    tool->FindInput("b")->SetValue(Number(5.0), 0.0);
    QCOMPARE(ProbeControl::TakeLog(), QStringList({"notify b=5", "display b"}));
    document_->Undo().Undo();
    QCOMPARE(b->shown, 0.0);

    // A heading that takes no focus: it must not stay in what is hidden, nor pass to another row.
    Fold("H", 2, true);
    b->child->setFocus();
    heading->setEnabled(false);
    Fold("H", 2, false);
    QVERIFY(!page_->window()->focusWidget() ||
            !page_->isAncestorOf(page_->window()->focusWidget()));

    // The end of the gesture takes the page away.
    Fold("H", 2, true);
    b->SetUndo(0, nullptr);
    b->child->setFocus();
    connect(qApp, &QApplication::focusChanged, page_.get(),
            [this] { page_->SetOperator(nullptr); });
    page_->SetHeading(*heading, 2, false);
    QVERIFY(page_->Controls().empty());
    QCOMPARE(document_->Undo().Depth(), 0);
}

void ControlWndTest::headingsShowWhatTheyUnfold()
{
    ProbeControl::settings.minimumHeight = 60;
    QScrollArea area;
    area.setWidgetResizable(true);
    area.setWidget(page_.get());
    const auto taken = qScopeGuard([&area] { (void)area.takeWidget(); });
    OpenFolded("a b c d H3- e f g i j");
    area.resize(300, 300);
    area.show();
    QVERIFY(QTest::qWaitForWindowExposed(&area));
    QScrollBar* bar = area.verticalScrollBar();
    ProbeControl* heading = ProbeOf(*page_, "H");
    const auto unfold = [&](int inputs) {
        page_->SetHeading(*heading, inputs, true);
        page_->Reveal(*heading);
        for (int turn = 0; turn < 3; ++turn) // the page's, the area's, the scrolling
            QCoreApplication::processEvents();
    };
    bar->setValue(20);
    unfold(1);
    const QRect last = ProbeOf(*page_, "e")->geometry();
    QCOMPARE(bar->value(), last.bottom() + 4 - area.viewport()->height()); // just so far
    unfold(0); // more than there is room for: the heading stays
    QCOMPARE(bar->value(), heading->y() - 4);
    page_->SetHeading(*heading, 0, false);
    QCoreApplication::processEvents();
    QVERIFY(bar->value() <= bar->maximum());
    QVERIFY(area.viewport()->rect().contains(heading->mapTo(area.viewport(), QPoint(0, 0))));
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
