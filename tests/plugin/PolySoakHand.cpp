#include "plugin/PolySoakHand.h"

#include "system/document/Preferences.h"
#include "system/viewer/ToolbarEvents.h"
#include "system/widgets/TimeCodeEdit.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QTreeView>

namespace Marlox {

namespace {

std::vector<RigInput> MaskInputs(const char* kind, bool animated)
{
    return {{"Polyline",
             kind,
             {{IAS_Overlay, "PolylineControl"},
              {IA_OverlayIndex, 0},
              {PLC_Animated, animated},
              {0x10058007, true},     // PLC_CanPublishPoints
              {0x80058000, "Center"}, // PLCID_Center
              {0x80058001, "Angle"},  // PLCID_Angle
              {0x80058002, "Size"}}}, // PLCID_Size
            {"Polyline2", kind, {{IAS_OverlayWith, "Polyline"}, {IA_OverlayIndex, 1}}},
            {"Center", "Point", {}},
            {"Angle", "Number", {}},
            {"Size", "Number", {{IAD_Default, 1.0}}}};
}

void Collect(const std::vector<Menu::Entry>& entries, std::vector<Menu::Entry>& all)
{
    for (const Menu::Entry& entry : entries) {
        if (!entry.children.empty())
            Collect(entry.children, all);
        else if (entry.enabled && !entry.text.isEmpty())
            all.push_back(entry);
    }
}

} // namespace

PolySoakHand::PolySoakHand(const char* kind, bool animated, unsigned seed)
    : dice_(seed), dialogs_(dice_), rig_(MaskInputs(kind, animated)), second_(*rig_.document)
{
    for (const QString& name : MarloxDoc::GetPreferences().Names())
        MarloxDoc::GetPreferences().Remove(name); // so that a seed tells all
    QApplication::clipboard()->clear();
    rig_.document->AddTool("ProbeTool");
    rig_.document->Undo().Clear();
    rig_.document->SetCurrentTime(3.0);
    second_.View() = rig_.View();
    second_.SetOperator(rig_.tool);
    answers_.setInterval(0);
    QObject::connect(&answers_, &QTimer::timeout, [this] { AnswerDialog(); });
    answers_.start();
}

PreviewControl* PolySoakHand::Overlay(const OverlayStage& stage) const
{
    Input* const input = Tool() ? Tool()->FindInput("Polyline") : nullptr;
    return input ? stage.OverlayOf(*input) : nullptr;
}

void PolySoakHand::Step()
{
    stage_ = dice_.OneIn(5) ? &second_ : rig_.stage.get();
    Recover();
    const int what = dice_.Below(100);
    if (what < 40)
        PointerStep();
    else if (what < 55)
        KeyStep();
    else if (what < 75)
        MenuStep();
    else if (what < 80)
        ButtonStep();
    else if (what < 86)
        HistoryStep();
    else if (what < 90)
        TimeStep();
    else if (what < 93)
        DialogStep();
    else
        DocumentStep();
    if (dice_.OneIn(3))
        QCoreApplication::processEvents();
    for (OverlayStage* stage : {rig_.stage.get(), &second_}) {
        OverlayRecorder recorder;
        stage->Draw(recorder);
        stage->Tip();
    }
    KeepSmall();
}

void PolySoakHand::Recover()
{
    if (Tool() && Tool()->IsLocked() && dice_.OneIn(4))
        Tool()->SetLocked(false);
    if (!Stage().IsShown() && dice_.OneIn(3))
        Stage().SetShown(true);
    PreviewControl* const overlay = Overlay(Stage());
    if (overlay && (overlay->GetAttr(PLC_DrawMode) & 0x0f) == 0 && dice_.OneIn(4))
        overlay->SetAttrsTagList(TagList({{PLC_DrawMode, 1 + dice_.Below(4)}}));
}

MxPoint PolySoakHand::Place()
{
    const Input* input = Tool() ? Tool()->FindInput(dice_.Of(shapeIds)) : nullptr;
    const Ref<PolyLine> shape =
        input ? ResolvedShape(*input, rig_.document->CurrentTime()) : Ref<PolyLine>();
    if (!shape || shape->GetCount() == 0 || dice_.OneIn(3))
        return {dice_.Below(620) - 10, dice_.Below(320) - 10};
    const PolyPoint& point = *shape->GetPoint(dice_.Below(shape->GetCount()));
    const ShapePlace at = dice_.OneIn(4) ? point.Out() : point.Place();
    const auto view = [this](double value) {
        return int(std::clamp(value, -1e4, 1e4)) + dice_.Below(7) - 3;
    };
    return {view(100.0 + 400.0 * at.x), view(50.0 + 200.0 * at.y)};
}

void PolySoakHand::PointerStep()
{
    const u32 held = dice_.OneIn(2) ? 0 : u32(dice_.Below(8));
    const auto at = [this](const char* what) {
        const MxPoint place = Place();
        Note(QStringLiteral("%1(%2,%3)").arg(what).arg(place.x).arg(place.y));
        return place;
    };
    TagList more;
    if (dice_.OneIn(6))
        more.Add(PV_DoubleClick, true);
    Stage().Move(at("move"), held);
    Stage().Press(at("press"), held, more);
    for (int moves = dice_.Below(6); moves > 0; --moves)
        Stage().Move(at("to"), held);
    switch (dice_.Below(12)) {
    case 0:
        Note("hold");
        break;
    case 1:
        Note("cancel");
        Stage().CancelDrag();
        break;
    case 2:
        Note("leave");
        Stage().Leave();
        break;
    default:
        Stage().Release(at("release"), held);
    }
}

void PolySoakHand::KeyStep()
{
    static const int keys[] = {Qt::Key_Left,     Qt::Key_Right,  Qt::Key_Up,        Qt::Key_Down,
                               Qt::Key_PageDown, Qt::Key_Delete, Qt::Key_Backspace, Qt::Key_Period,
                               Qt::Key_Escape,   Qt::Key_Tab};
    static const u32 with[] = {0,          KeyShift, KeyShift,           KeyShift,
                               KeyControl, KeyAlt,   KeyControl | KeyAlt};
    if (PreviewControl* overlay = dice_.OneIn(5) ? nullptr : Overlay(Stage()))
        Stage().SetFocus(overlay);
    int key = 0;
    u32 modifiers = 0;
    bool used = false;
    for (int tries = 0; tries < 8 && !used; ++tries) {
        key = dice_.OneIn(3) ? dice_.Of(keys) : Qt::Key_A + dice_.Below(26);
        modifiers = dice_.Of(with);
        used = Stage().WantsKey(key, modifiers);
    }
    Note(QStringLiteral("key %1+%2%3").arg(key, 0, 16).arg(modifiers).arg(used ? "" : " no"));
    Stage().KeyDown(key, modifiers);
    if (dice_.OneIn(5))
        held_.insert(&Stage());
    else
        LetGo();
}

void PolySoakHand::LetGo()
{
    Stage().KeyUpAll();
    held_.erase(&Stage());
}

void PolySoakHand::MenuStep()
{
    u32 event = 0;
    PreviewControl* const overlay = Overlay(Stage());
    if (overlay && dice_.OneIn(4)) {
        for (const ToolbarButton& button : ToolbarOf(*overlay)) {
            if (button.popDown && dice_.OneIn(3))
                event = button.event;
        }
    }
    Menu menu;
    if (!Stage().FillMenu(menu, event))
        return;
    std::vector<Menu::Entry> entries;
    Collect(menu.Entries(), entries);
    if (entries.empty())
        return;
    const Menu::Entry& entry = dice_.Of(entries);
    Note('"' + entry.text.section('\t', 0, 0) + '"');
    Stage().RunMenu(entry.id);
}

void PolySoakHand::ButtonStep()
{
    PreviewControl* const overlay = Overlay(Stage());
    const std::vector<ToolbarButton> buttons =
        overlay ? ToolbarOf(*overlay) : std::vector<ToolbarButton>();
    if (buttons.empty())
        return;
    const ToolbarButton& button = dice_.Of(buttons);
    Note('[' + button.text + ']');
    Stage().ClickButton(button.event);
}

void PolySoakHand::HistoryStep()
{
    Note("undo/redo");
    for (int count = 1 + dice_.Below(4); count > 0; --count)
        dice_.OneIn(3) ? Undo().Redo() : Undo().Undo();
    FindTool();
}

void PolySoakHand::TimeStep()
{
    const double time = dice_.Below(20) + (dice_.OneIn(4) ? 0.5 : 0.0);
    Note(QStringLiteral("time %1").arg(time));
    rig_.document->SetCurrentTime(time);
}

void PolySoakHand::DialogStep()
{
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (!window->isVisible() || !qobject_cast<QDialog*>(window))
            continue;
        Note(QStringLiteral("in ") + window->windowTitle());
        Fill(*window);
        auto* const list = window->findChild<QTreeView*>();
        if (list)
            dice_.OneIn(2) ? list->selectAll() : list->clearSelection();
        const auto buttons = window->findChildren<QAbstractButton*>();
        if (!buttons.isEmpty() && dice_.OneIn(2))
            buttons[dice_.Below(buttons.size())]->click();
        if (list && dice_.OneIn(4))
            QMetaObject::invokeMethod(window, "OnKind", Q_ARG(int, dice_.Below(3)));
        return;
    }
}

void PolySoakHand::DocumentStep()
{
    switch (dice_.Below(7)) {
    case 0:
        Note("lock");
        if (Tool())
            Tool()->SetLocked(dice_.OneIn(3));
        break;
    case 1:
        Note("remove tool");
        if (Tool() && rig_.document->RemoveTool(*Tool()))
            rig_.tool = nullptr;
        dice_.OneIn(2) ? Undo().Undo() : void(rig_.document->AddTool("ProbeTool"));
        FindTool();
        break;
    case 2:
        Note("show");
        Stage().SetShown(!dice_.OneIn(3));
        break;
    case 3:
        Note("other tool");
        FindTool(dice_.Below(2));
        break;
    case 4:
        Note("place");
        if (Tool())
            Tool()->FindInput("Angle")->SetValue(Number(dice_.OneIn(2) ? 0.0 : 30.0), TimeNone);
        break;
    case 5:
        Note("zoom");
        Stage().View().imageWidth = dice_.OneIn(2) ? 400.0 : 800.0;
        Stage().View().imageHeight = Stage().View().imageWidth / 2.0;
        Stage().PlacementChanged();
        break;
    default:
        Note("end");
        Stage().EndDrag();
        LetGo();
    }
}

void PolySoakHand::FindTool(int which)
{
    std::vector<Operator*> masks;
    for (const Ref<Operator>& tool : rig_.document->Tools()) {
        if (tool->FindInput("Polyline2"))
            masks.push_back(tool.Get());
    }
    const bool stays = std::find(masks.begin(), masks.end(), Tool()) != masks.end();
    if (!stays || which > 0)
        rig_.tool = masks.empty() ? nullptr : masks[std::size_t(which) % masks.size()];
    rig_.stage->SetOperator(rig_.tool);
    second_.SetOperator(rig_.tool);
}

void PolySoakHand::KeepSmall()
{
    FindTool();
    for (int i = 0; i < 5 && IsLarge(); ++i) {
        Note("too many");
        Undo().Undo();
        FindTool();
    }
}

bool PolySoakHand::IsLarge() const
{
    bool isLarge = rig_.document->Tools().size() > 10;
    for (const char* id : shapeIds) {
        const Input* input = Tool() ? Tool()->FindInput(id) : nullptr;
        const Ref<PolyLine> shape = input ? ShapeOf(*input, 0.0) : Ref<PolyLine>();
        isLarge = isLarge || (shape && shape->GetCount() > 120);
    }
    return isLarge;
}

void PolySoakHand::Fill(QWidget& window)
{
    for (TimeCodeEdit* edit : window.findChildren<TimeCodeEdit*>()) {
        if (!edit->isEnabled() || !dice_.OneIn(3))
            continue;
        edit->setText(dice_.Text());
        edit->Commit();
    }
}

void PolySoakHand::AnswerDialog()
{
    auto* const dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (!dialog)
        return;
    Note(QStringLiteral("<%1>").arg(dialog->windowTitle()));
    if (!dice_.OneIn(3))
        Fill(*dialog);
    if (!dice_.OneIn(4))
        dialog->accept();
    if (dialog->isVisible())
        dialog->reject();
}

} // namespace Marlox
