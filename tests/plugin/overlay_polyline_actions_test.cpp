// What the polyline overlay's actions say of themselves: groups, reasons, locks, texts of undo; the
// windows that they open.

#include "plugin/PolyRig.h"
#include "script/ScriptSystem.h"
#include "system/controls/Menu.h"
#include "system/shapes/ShapePublish.h"
#include "system/viewer/ToolGroup.h"
#include "system/viewer/ToolbarEvents.h"

#include <QApplication>
#include <QDialog>
#include <QtTest>

using namespace Marlox;

namespace {

constexpr u32 PLC_CanPublishPoints = 0x10058007;
constexpr u32 PLC_ShowHandles = 0x1005800a;
constexpr u32 PLC_LastTag = 0x10058015;

ToolbarButton Button(const PolyRig& rig, const char* text)
{
    for (const ToolbarButton& button : ToolbarOf(rig.Poly())) {
        if (button.text == text)
            return button;
    }
    return {};
}

std::vector<Menu::Entry> ContextMenu(const PolyRig& rig)
{
    Menu menu;
    TagList tags;
    rig.Poly().AddToMenu(&menu, tags);
    return menu.Entries();
}

/// All that can be chosen in a menu and those below it, but for the dialogs that wait for a user.
void Flatten(const std::vector<Menu::Entry>& entries, std::vector<Menu::Entry>& flat)
{
    for (const Menu::Entry& entry : entries) {
        Flatten(entry.children, flat);
        if (entry.children.empty() && !entry.text.isEmpty() &&
            entry.text != QString::fromUtf8("Onion skin settings…"))
            flat.push_back(entry);
    }
}

/// What is stored with the tool: values, and the overlay's attributes.
std::string Stored(const PolyRig& rig)
{
    std::string text = rig.document->ToText();
    for (const char* id : {"Polyline", "Polyline2"}) {
        for (u32 tag = PLC_DrawMode; tag <= PLC_LastTag; ++tag)
            text += std::to_string(rig.InputOf(id).GetAttr(tag)) + ' ';
    }
    return text;
}

struct ToolRemover : AnsweringDialogs {
    explicit ToolRemover(PolyRig& rig) : rig(rig) {}
    std::optional<QString> AskText(const TextRequest&) override
    {
        rig.document->RemoveTool(*rig.tool);
        return QStringLiteral("3");
    }
    PolyRig& rig;
};

} // namespace

class OverlayPolylineActionsTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { InstallScripting(); }
    void GroupsAreDeclared();
    void ReasonsAreTold_data();
    void ReasonsAreTold();
    void TogglesWithoutMeaningAreUnlit();
    void LockedToolsKeepWhatIsStored();
    void LockedToolsShowWhatIsAsked();
    void TextsOfMovesOfSeveral();
    void MatchingPointsAreSelected();
    void RotoUndoConcernsOneView();
    void WindowsBelongToTheViews();
    void DialogsOutliveTheirTool();
    void FollowingIsTurnedOnAndOff();
};

void OverlayPolylineActionsTest::GroupsAreDeclared()
{
    const MxID overlay("PolylineControl");
    QVERIFY(!ToolGroup::LabelOf(overlay));
    {
        PolyRig rig;
        QVERIFY2(rig.library.IsLoaded(), rig.library.Error().constData());
        QCOMPARE(ToolGroup::LabelOf(overlay), "Add Poly Tool");
        QStringList declared;
        for (const ToolGroup* group : ToolGroup::Declared()) {
            if (group->OverlayClass() == overlay)
                declared << group->Name();
        }
        QCOMPARE(declared, QStringList({"Poly_Tool", "Poly_Tool_MultiFrames",
                                        "Poly_Tool_OnionSkinning", "Poly_Tool_RotoAssist"}));
        QStringList runs; // of buttons side by side
        for (const ToolbarButton& button : ToolbarOf(rig.Poly())) {
            if (runs.isEmpty() || runs.last() != button.group)
                runs << button.group;
        }
        QCOMPARE(runs, declared);
        QCOMPARE(Button(rig, "Publish").group, QString("Poly_Tool"));
    }
    QVERIFY(!ToolGroup::LabelOf(overlay)); // with the library
}

void OverlayPolylineActionsTest::ReasonsAreTold_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char* state, const char* entry, const char* reason) {
        QTest::addRow("%s, %s", entry, state) << state << entry << reason;
    };
    row("empty", "Linear", "The shape has no points.");
    row("empty", "Closed", "A shape needs two points to be closed.");
    row("square", "Delete Points", "Select points first.");
    row("square", "Remove Outer Polyline", "The shape has no outer polygon.");
    row("square", "Smooth Animation", "The shape has fewer than three keys.");
    row("square", "B-Spline to Bezier", "The shape is of another kind.");
    row("square", "Show Poly Keys Dialog", "The shape is not animated.");
    row("square", "Linear", "");
    row("selected", "Delete Points", "");
    row("selected", "Publish Points", "");
    row("publishing off", "Publish Points",
        "Publishing is turned off (Publishing Path Points Enabled).");
    row("done", "Cut Path Points", "Choose another draw mode than Done first.");
    row("double", "Make Outer Polyline", "The shape has an outer polygon already.");
    row("locked", "Delete Points", "The tool is locked.");
    row("locked", "Stop Rendering", "The tool is locked.");
    row("locked", "Custom Handle Color…", "The tool is locked.");
    row("locked", "Handles", "");
    row("driven", "Linear", "An expression or another tool drives the shape.");
    row("driven", "Stop Rendering", "");
}

void OverlayPolylineActionsTest::ReasonsAreTold()
{
    QFETCH(QString, state);
    QFETCH(QString, entry);
    QFETCH(QString, reason);
    PolyRig rig;
    if (state != "empty")
        rig.SetSquare();
    rig.SetMode(ModifyOnly);
    if (state == "double")
        QVERIFY(RunEntry(rig, "Make Outer Polyline"));
    if (state == "selected" || state == "publishing off" || state == "done" || state == "locked")
        rig.Key(Qt::Key_A);
    if (state == "publishing off")
        rig.Poly().SetAttrsTagList(TagList({{PLC_CanPublishPoints, false}}));
    if (state == "done")
        rig.SetMode(Done);
    if (state == "driven")
        QVERIFY(rig.InputOf("Polyline").SetExpression("self.Polyline2"));
    rig.tool->SetLocked(state == "locked");
    const std::vector<Menu::Entry> entries = ContextMenu(rig);
    const Menu::Entry* found = FindEntry(entries, entry);
    QVERIFY(found);
    QCOMPARE(found->tip, reason);
    QCOMPARE(found->enabled, reason.isEmpty());
    if (entry == "Delete Points") // the toolbar tells the same, besides what the button does
        QCOMPARE(Button(rig, "Delete").reason + '|' + Button(rig, "Delete").tip,
                 reason + "|Delete Points (Del)");
}

void OverlayPolylineActionsTest::TogglesWithoutMeaningAreUnlit()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    QVERIFY(!Button(rig, "Follow Inner").checked && !Button(rig, "Follow Inner").enabled);
    QVERIFY(RunEntry(rig, "Make Outer Polyline"));
    QVERIFY(Button(rig, "Follow Inner").checked && Button(rig, "Follow Inner").enabled);
    rig.tool->SetLocked(true); // what it is still says something
    QVERIFY(Button(rig, "Follow Inner").checked && !Button(rig, "Follow Inner").enabled);
}

void OverlayPolylineActionsTest::LockedToolsKeepWhatIsStored()
{
    AnsweringDialogs dialogs;
    PolyRig rig("Polyline", true);
    rig.SetSquare();
    QVERIFY(RunEntry(rig, "Make Outer Polyline"));
    rig.SetMode(ModifyOnly);
    rig.Key(Qt::Key_A);
    rig.tool->SetLocked(true);
    rig.document->Undo().Clear();
    const std::string stored = Stored(rig);
    std::vector<Menu::Entry> entries;
    Flatten(ContextMenu(rig), entries);
    for (const ToolbarButton& button : ToolbarOf(rig.Poly())) {
        Menu popDown;
        TagList event{{TB_Event, button.event}};
        if (button.popDown)
            rig.Poly().AddToMenu(&popDown, event);
        Flatten(popDown.Entries(), entries);
    }
    TagList none;
    int run = 0;
    for (const Menu::Entry& entry : entries) {
        const bool did = rig.Poly().HandleMenu(entry.id, nullptr, none);
        run += did;
        QVERIFY2(did == entry.enabled || entry.text.contains("skin color"), qPrintable(entry.text));
        QVERIFY2(Stored(rig) == stored, qPrintable(entry.text));
        QVERIFY2(rig.UndoEntries() == 0, qPrintable(entry.text));
    }
    QVERIFY(run > 15); // what only shows
    for (int key = Qt::Key_A; key <= Qt::Key_Z; ++key)
        rig.Key(key);
    QVERIFY(Stored(rig) == stored && rig.UndoEntries() == 0);
}

void OverlayPolylineActionsTest::LockedToolsShowWhatIsAsked()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    rig.tool->SetLocked(true);
    QVERIFY(RunEntry(rig, "Handles"));
    QCOMPARE(rig.Poly().GetAttr(PLC_ShowHandles), int64(1)); // in this view
    QCOMPARE(rig.InputOf("Polyline").GetAttr(PLC_ShowHandles), int64(0));
    QVERIFY(rig.Key(Qt::Key_H) && rig.Key(Qt::Key_H)); // by keys too
    QVERIFY(!rig.Key(Qt::Key_Backspace, 0));
    QVERIFY(!rig.Key(Qt::Key_S) && !rig.Key(Qt::Key_Delete, 0) && !rig.Key(Qt::Key_Left, 0));
    rig.tool->SetLocked(false);
    QVERIFY(RunEntry(rig, "Handles"));
    QVERIFY(RunEntry(rig, "Handles"));
    QCOMPARE(rig.InputOf("Polyline").GetAttr(PLC_ShowHandles), int64(1));
}

void OverlayPolylineActionsTest::TextsOfMovesOfSeveral()
{
    PolyRig rig("Polyline", true);
    rig.SetSquare();
    for (const double time : {0.0, 5.0})
        rig.InputOf("Polyline").AddKey(time);
    rig.SetMode(ModifyOnly);
    QVERIFY(RunEntry(rig, "All")); // frames
    rig.Drag({{200, 100}, {190, 110}});
    QCOMPARE(rig.UndoText(), QString("Move points"));
    QVERIFY(RunEntry(rig, "None"));
    rig.Drag({{190, 110}, {200, 100}});
    QCOMPARE(rig.UndoText(), QString("Move Point"));
    rig.SetSquare("Polyline2", 0.35);
    rig.Click({20, 20}); // nothing is selected
    QVERIFY(RunEntry(rig, "Shape Box"));
    QVERIFY(RunEntry(rig, "Shape Box Both Polylines"));
    rig.Drag({{450, 150}, {470, 150}}); // the right side of both
    QCOMPARE(rig.UndoText(), QString("Shape points"));
    QVERIFY(rig.Place(1) != "400 100" && rig.Place(1, "Polyline2") != "440 80");
}

void OverlayPolylineActionsTest::MatchingPointsAreSelected()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    QVERIFY(!FindEntry(ContextMenu(rig), "Select matching point from the Outer polyline"));
    rig.SetSquare("Polyline2", 0.35);
    rig.Click({400, 100}); // point 1 of the inner one
    rig.document->Undo().Clear();
    QVERIFY(RunEntry(rig, "Select matching point from the Outer polyline"));
    QCOMPARE(rig.UndoTexts(), QStringList("Select matching point from the Outer polyline"));
    const auto shifted = [&rig](const char* id) { // whether the arrow keys move its point
        const double from = rig.Shape(id)->GetPoint(1)->x;
        rig.Key(Qt::Key_Right, 0);
        const bool moved = rig.Shape(id)->GetPoint(1)->x > from;
        rig.document->Undo().Undo();
        return moved;
    };
    QVERIFY(shifted("Polyline2") && !shifted("Polyline"));
    QVERIFY(FindEntry(ContextMenu(rig), "Select matching point from the Inner polyline"));
    rig.document->Undo().Undo();
    QVERIFY(FindEntry(ContextMenu(rig), "Select matching point from the Outer polyline"));
    QVERIFY(shifted("Polyline"));
}

void OverlayPolylineActionsTest::RotoUndoConcernsOneView()
{
    PolyRig rig;
    rig.SetSquare();
    OverlayStage other(*rig.document);
    other.SetOperator(rig.tool);
    const auto assists = [](PreviewControl& overlay) {
        ScriptVal state;
        overlay.SaveState(state);
        return state.Get("RotoAssist").Get("Enabled").ToBool();
    };
    PreviewControl& second = *other.OverlayOf(rig.InputOf("Polyline"));
    rig.Key(Qt::Key_R, KeyControl);
    QCOMPARE(rig.UndoText(), QString("Enable auto-roto"));
    ScriptVal on = ScriptVal::MakeTable();
    on.Set("RotoAssist", ScriptVal::MakeTable());
    ScriptVal roto = ScriptVal::MakeTable();
    roto.Set("Enabled", true);
    on.Set("RotoAssist", roto);
    QVERIFY(second.RestoreState(on));
    rig.document->Undo().Undo();
    QVERIFY(!assists(rig.Poly()) && assists(second));
    rig.document->Undo().Redo();
    QVERIFY(assists(rig.Poly()));
}

void OverlayPolylineActionsTest::WindowsBelongToTheViews()
{
    PolyRig rig("Polyline", true);
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    auto window = std::make_unique<QWidget>();
    auto* const view = new QWidget(window.get());
    rig.View().widget = view;
    window->show();
    rig.Key(Qt::Key_K, 0);
    auto* const list = window->findChild<QDialog*>("PolyKeyListDlg");
    QVERIFY(list && list->isVisible() && list->parentWidget() == window.get());
    QVERIFY(QTest::qWaitForWindowActive(list));
    rig.Key(Qt::Key_A);
    rig.Key(Qt::Key_E);
    QPointer<QDialog> editor = window->findChild<QDialog*>("PolyPointDlg");
    QVERIFY(editor && editor->isVisible() && editor->parentWidget() == window.get());
    rig.View().widget = nullptr;
    window.reset(); // they go with it, and come again without one
    QVERIFY(!editor);
    QVERIFY(rig.Key(Qt::Key_E));
}

void OverlayPolylineActionsTest::DialogsOutliveTheirTool()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    ToolRemover dialogs(rig);
    RunEntry(rig, QString::fromUtf8("Subdivide…"));
    QCOMPARE(dialogs.said, QStringList());
    QCOMPARE(rig.document->Undo().Depth(), 0);
}

void OverlayPolylineActionsTest::FollowingIsTurnedOnAndOff()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetSquare("Polyline2", 0.251);
    SelMask first(4);
    first.DoSet(0, SelMask::Select);
    PublishPoints(rig.InputOf("Polyline2"), first);
    rig.SetMode(ModifyOnly);
    rig.document->Undo().Clear();
    rig.Click({200, 100});
    const auto links = [&rig] { return rig.Shape()->Links().size(); };
    QVERIFY(Button(rig, "Follow Points").enabled && !Button(rig, "Follow Points").checked);
    QVERIFY(rig.Key(Qt::Key_F));
    QCOMPARE(links(), std::size_t(1));
    QVERIFY(Button(rig, "Follow Points").checked);
    QVERIFY(FindEntry(ContextMenu(rig), "Follow Published Points")->checked);
    rig.SetPoint("Point0", 0.3, 0.3);
    rig.document->Undo().Clear();
    QVERIFY(rig.Key(Qt::Key_F));
    QCOMPARE(links(), std::size_t(0));
    QVERIFY(!Button(rig, "Follow Points").checked);
    QCOMPARE(rig.Place(0), std::string("220 110")); // where it was seen
    QCOMPARE(rig.UndoTexts(), QStringList("Set Points to follow"));
    rig.document->Undo().Undo();
    QCOMPARE(links(), std::size_t(1));
    rig.Click({400, 100}, KeyShift); // has nothing to follow
    QVERIFY(!Button(rig, "Follow Points").checked);
    rig.Key(Qt::Key_F);
    QCOMPARE(links(), std::size_t(1));
}

QTEST_MAIN(OverlayPolylineActionsTest)
#include "overlay_polyline_actions_test.moc"
