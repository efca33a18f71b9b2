// The toolbar, the menus and the keys of overlays on a stage, and drawing with a pen.

#include "host/controls/ButtonsOverlay.h"
#include "host/controls/Probe.h"
#include "script/ScriptSystem.h"
#include "system/controls/Menu.h"
#include "system/viewer/OverlayStage.h"
#include "system/viewer/ToolbarEvents.h"

#include <QMenu>
#include <QSignalSpy>
#include <QtTest>

using namespace Marlox;

class OverlayButtonsTest : public QObject {
    Q_OBJECT
private slots:
    void init();
    void eventsAreNumbersWithNames();
    void toolbarFollowsTheFocus();
    void buttonsAreClicked();
    void menusOfTheOverlayUnderThePointer();
    void menusAreShownAsSuch();
    void drawingTakesPressesAnywhere();
    void penTellsMoreThanItsPlace();
    void wantedKeys();

private:
    ButtonsOverlay& Of(const char* id)
    {
        return dynamic_cast<ButtonsOverlay&>(*stage_->OverlayOf(*tool_->FindInput(id)));
    }
    void Click(const MxPoint& at, const TagList& more = TagList())
    {
        stage_->Press(at, 0, more);
        stage_->Release(at, 0, more);
    }
    std::vector<ToolbarButton> Buttons() { return ToolbarOf(*stage_->ToolbarOwner()); }

    std::unique_ptr<MarloxDoc> document_;
    Operator* tool_ = nullptr;
    std::unique_ptr<OverlayStage> stage_;
};

/// Two overlays, "a" in the middle (300, 150) and "b" at (500, 200).
void OverlayButtonsTest::init()
{
    InstallScripting();
    stage_ = nullptr;
    document_ = std::make_unique<MarloxDoc>();
    SetProbeInputs([](Operator& tool) {
        for (const auto& [id, x, y] : {std::tuple("a", 0.5, 0.5), {"b", 1.0, 0.75}})
            tool.AddInput(id, TagList({{IAS_Name, id},
                                       {IAS_DataType, CLSID_DataType_Point},
                                       {IAS_Overlay, "ButtonsOverlay"},
                                       {IAD_DefaultX, x},
                                       {IAD_DefaultY, y}}));
    });
    tool_ = document_->AddTool("ProbeTool");
    stage_ = std::make_unique<OverlayStage>(*document_);
    PreviewInfo& view = stage_->View();
    view.imageLeft = 100.0;
    view.imageBottom = 50.0;
    view.imageWidth = view.pixelWidth = 400;
    view.imageHeight = view.pixelHeight = 200;
    stage_->SetOperator(tool_);
    document_->Undo().Clear();
}

void OverlayButtonsTest::eventsAreNumbersWithNames()
{
    QCOMPARE(ViewerEvent(0x2000e), MxID("ViewerEvent.2000e"));
    for (const u32 number : {1u, 0x20071u, 0xffffffffu})
        QCOMPARE(ViewerEventNumber(ViewerEvent(number)), number);
    for (const char* other :
         {"ViewerEvent.", "ViewerEvent.2000g", "ViewerEvent.100000000", "DisplayChanged", ""})
        QCOMPARE(ViewerEventNumber(other), 0u);
}

void OverlayButtonsTest::toolbarFollowsTheFocus()
{
    QCOMPARE(stage_->ToolbarOwner(), &Of("a"));
    const std::vector<ToolbarButton> buttons = Buttons();
    QCOMPARE(buttons.size(), std::size_t(6)); // not the one that it does not describe
    QCOMPARE(buttons[0].icon, QString("Icons.Polyline.DrawClick"));
    QVERIFY(!buttons[2].enabled && buttons[3].icon.isEmpty() && buttons[5].clicks);
    QSignalSpy changes(stage_.get(), &OverlayStage::ToolbarChanged);
    stage_->SetFocus(&Of("b"));
    QCOMPARE(stage_->ToolbarOwner(), &Of("b"));
    stage_->SetShown(false);
    QVERIFY(!stage_->ToolbarOwner());
    stage_->SetShown(true);
    QCOMPARE(changes.count(), 3);
    stage_->SetOperator(nullptr);
    QVERIFY(!stage_->ToolbarOwner());
    QVERIFY(changes.count() > 3);
}

void OverlayButtonsTest::buttonsAreClicked()
{
    QSignalSpy keyboard(stage_.get(), &OverlayStage::KeyboardWanted);
    QVERIFY(stage_->ClickButton(ButtonsOverlay::Draw));
    QVERIFY(Buttons()[0].checked && !Buttons()[1].checked);
    QCOMPARE(keyboard.count(), 1);
    QCOMPARE(stage_->Focus(), &Of("a"));
    QVERIFY(stage_->ClickButton(ButtonsOverlay::Skin));
    Of("a").log.clear();
    for (const u32 refused :
         {ButtonsOverlay::Lock, ButtonsOverlay::Publish, ButtonsOverlay::Unseen})
        QVERIFY(!stage_->ClickButton(refused));
    QVERIFY(Of("a").log.isEmpty());
    stage_->View().services->TakeFocus(*MakeRef<ProbeOverlay>(nullptr, ScriptVal(), TagList()));
    QCOMPARE(stage_->Focus(), &Of("a")); // that one is not on this stage
}

void OverlayButtonsTest::menusOfTheOverlayUnderThePointer()
{
    const auto fill = [this](u32 event = 0) {
        Menu menu;
        return stage_->FillMenu(menu, event) ? int(menu.Entries().size()) : 0;
    };
    stage_->Move({30, 30}, 0);
    QCOMPARE(fill(), 6);
    QVERIFY(stage_->RunMenu(ButtonsOverlay::Close));
    QVERIFY(Of("a").closed);
    QVERIFY(!stage_->RunMenu(ButtonsOverlay::Close)); // no menu is open
    stage_->Move({500, 200}, 0);
    fill();
    QCOMPARE(stage_->Focus(), &Of("a")); // until an entry is chosen
    QVERIFY(stage_->RunMenu(ButtonsOverlay::Close));
    QVERIFY(Of("b").closed);
    QCOMPARE(stage_->Focus(), &Of("b"));
    QCOMPARE(fill(ButtonsOverlay::Publish), 2);
    QVERIFY(stage_->RunMenu(ButtonsOverlay::ToPath));
    QCOMPARE(Of("b").log.last(), QString("menu 6 of 20022"));
    QVERIFY(stage_->Press({300, 150}, 0));
    stage_->Move({320, 150}, 0);
    fill(); // in a drag, which ends
    QVERIFY(!stage_->IsPressed());
    QCOMPARE(document_->Undo().Depth(), 0);
    document_->RemoveTool(*tool_);
    QVERIFY(!stage_->RunMenu(ButtonsOverlay::Close));
    QCOMPARE(fill(), 0);
}

void OverlayButtonsTest::menusAreShownAsSuch()
{
    Menu entries;
    QVERIFY(stage_->FillMenu(entries));
    QMenu menu;
    entries.Fill(menu);
    const QList<QAction*> actions = menu.actions();
    QVERIFY(actions[1]->isChecked());
    actions[0]->trigger(); // one of a group
    QVERIFY(actions[0]->isChecked() && !actions[1]->isChecked() && !actions[3]->isChecked());
    QVERIFY(menu.toolTipsVisible());
    QCOMPARE(actions.last()->toolTip(), QString("There is no tracker yet."));
    QVERIFY(!actions.last()->isEnabled());
}

void OverlayButtonsTest::drawingTakesPressesAnywhere()
{
    stage_->Move({200, 100}, 0);
    QVERIFY(!stage_->Press({200, 100}, 0));
    stage_->SetFocus(&Of("b"));
    QVERIFY(stage_->KeyDown(Qt::Key_C, KeyShift));
    stage_->KeyUpAll();
    stage_->Move({201, 100}, 0);
    QCOMPARE(stage_->View().cursorShape, ViewCursor::Cross);
    Click({300, 150}); // on the other's mark, twice
    Click({300, 150});
    QCOMPARE(stage_->Focus(), &Of("b"));
    QCOMPARE(Of("b").log.filter("down").size(), 2);
    QVERIFY(Of("a").log.isEmpty());
    QCOMPARE(document_->Undo().UndoText(), QString("Add Point"));
    const Ref<Parameter> place = tool_->FindInput("b")->GetValue(0.0);
    QCOMPARE(dynamic_cast<Point&>(*place).X(), 0.5);
    QVERIFY(stage_->KeyDown(Qt::Key_Escape, 0));
    QVERIFY(!stage_->KeyDown(Qt::Key_Escape, 0));
}

void OverlayButtonsTest::penTellsMoreThanItsPlace()
{
    stage_->Press({300, 150}, 0,
                  {{PVD_Pressure, 0.25}, {PVD_AngleXY, 90.0}, {PV_DoubleClick, true}});
    stage_->Move({310, 150}, 0, {{PVD_Pressure, 0.5}});
    stage_->Release({320, 150}, 0, {{PVD_Pressure, 0.75}});
    QCOMPARE(Of("a").log, QStringList({"down 0.25 90 double", "move 0.5", "move 0.75"}));
}

void OverlayButtonsTest::wantedKeys()
{
    Of("a").draws = true;
    QVERIFY(!stage_->WantsKey(Qt::Key_Escape, 0)); // nobody has the focus
    QVERIFY(!stage_->KeyDown(Qt::Key_G, 0));
    QVERIFY(!stage_->Focus());
    QVERIFY(stage_->KeyDown(Qt::Key_R, 0)); // as the toolbar tells
    stage_->KeyUpAll();
    QCOMPARE(stage_->Focus(), &Of("a"));
    QVERIFY(stage_->KeyDown(Qt::Key_Escape, 0));
    stage_->KeyUpAll();
    Of("a").log.clear();
    QVERIFY(stage_->WantsKey(Qt::Key_R, 0));
    QVERIFY(!stage_->WantsKey(Qt::Key_C, 0));
    QVERIFY(stage_->WantsKey(Qt::Key_C, KeyShift));
    QVERIFY(Of("a").log.isEmpty() && !Of("a").draws); // asked only
    stage_->Press({300, 150}, 0);
    QVERIFY(!stage_->WantsKey(Qt::Key_R, 0));
    stage_->EndDrag();
    tool_->SetLocked(true);
    QVERIFY(stage_->WantsKey(Qt::Key_R, 0)); // the overlay knows what a lock forbids
    QVERIFY(!stage_->WantsKey(Qt::Key_Escape, 0));
}

QTEST_MAIN(OverlayButtonsTest)
#include "OverlayButtonsTest.moc"
