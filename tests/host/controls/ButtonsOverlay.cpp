#include "host/controls/ButtonsOverlay.h"

#include "system/base/Registry.h"
#include "system/controls/Menu.h"
#include "system/viewer/OverlayPainter.h"
#include "system/viewer/ToolbarEvents.h"

#include <cmath>

namespace Marlox {

namespace {

Object* Make(const Registry* record, const ScriptVal& creator, const TagList& tags)
{
    return new ButtonsOverlay(record, creator, tags);
}

const TagPair recordTags[] = {{REG_Kind, int(ClassKind::PreviewControl)},
                              {REG_Create, CreateFunction(Make)},
                              {REG_Parent, &PreviewControl::ClassID},
                              {}};
const Registry record("ButtonsOverlay", recordTags);

const char* const icons = "Icons.Polyline.";

struct Row {
    u32 event;
    const char* text;
    const char* tip;
    const char* icon;
};
constexpr Row rows[] = {
    {ButtonsOverlay::Draw, "Click", "Click Append (Shift+C)", "DrawClick"},
    {ButtonsOverlay::Done, "Done", "Done (Shift+N)", "DrawDone"},
    {ButtonsOverlay::Lock, "Lock", "Lock Points", "Lock"},
    {ButtonsOverlay::Polygon, "Polygon", "Show Polygon curve", ""},
    {ButtonsOverlay::Publish, "Publish", "Publish Menu", "PublishPoints"},
    {ButtonsOverlay::Skin, "Onion Skin", "Onion Skin (Ctrl+Alt+O)", "OnionSkin"},
};

} // namespace

bool ButtonsOverlay::DoInfo(unsigned int request, TagList& tags)
{
    for (const Row& row : rows) {
        if (request != InfoToolbarEvent || row.event != u32(tags.GetLong(TB_Event)))
            continue;
        ToolbarButton button;
        button.event = row.event;
        button.text = row.text;
        button.tip = row.tip;
        button.icon = *row.icon ? QString(icons) + row.icon : QString();
        button.enabled = row.event != Lock;
        button.checkable = row.event == Draw || row.event == Done;
        button.checked = button.checkable && draws == (row.event == Draw);
        button.popDown = row.event == Publish || row.event == Skin;
        button.clicks = row.event == Skin;
        button.Write(tags);
        return true;
    }
    return PreviewControl::DoInfo(request, tags);
}

void ButtonsOverlay::AddToMenu(Menu* menu, TagList& tags)
{
    if (tags.FindQuery(TB_Event)) {
        menu->Add(ToPath, "Publish to Path");
        menu->Add(ToTracker, "Publish to Tracker", draws);
        return;
    }
    menu->AddRadio(ToDraw, "Click Append\tShift+C", draws);
    menu->AddRadio(ToDone, "Done\tShift+N", !draws);
    menu->AddSeparator();
    menu->AddCheck(Close, "Closed\tShift+O", closed);
    menu->AddSubmenu("Create").Add(Ellipse, QString("Ellipse") + QChar(0x2026));
    menu->Add(Track, "Track Points", false);
    menu->SetTip("There is no tracker yet.");
}

bool ButtonsOverlay::HandleMenu(unsigned int id, u64*, TagList& tags)
{
    if (id == ToDraw || id == ToDone)
        SetDraws(id == ToDraw);
    else if (id == Close)
        closed = !closed;
    log += QStringLiteral("menu %1 of %2").arg(id).arg(tags.GetLong(TB_Event), 0, 16);
    return true;
}

void ButtonsOverlay::GetAvailableEvents(std::vector<MxID>& out) const
{
    PreviewControl::GetAvailableEvents(out);
    for (const Row& row : rows)
        out.push_back(ViewerEvent(row.event));
    out.push_back(ViewerEvent(Unseen));
}

bool ButtonsOverlay::HandleEvent(Object* sender, const MxID& event, TagList& tags)
{
    const u32 number = ViewerEventNumber(event);
    if (number == 0)
        return PreviewControl::HandleEvent(sender, event, tags);
    if (number == Draw || number == Done)
        SetDraws(number == Draw);
    log += QStringLiteral("event %1").arg(number, 0, 16);
    return true;
}

void ButtonsOverlay::SetDraws(bool on)
{
    draws = on;
    if (!view_ || !view_->services)
        return;
    view_->services->PressEvent(draws ? Draw : Done);
    if (draws)
        view_->services->TakeFocus(*this);
}

void ButtonsOverlay::NotifyChanged(Input* input, Parameter* value, TagList* tags)
{
    if (const auto* point = dynamic_cast<const Point*>(value)) {
        x_ = point->X();
        y_ = point->Y();
    }
    PreviewControl::NotifyChanged(input, value, tags);
}

void ButtonsOverlay::GLDrawControls(PreviewInfo* view, TagList* tags)
{
    PreviewControl::GLDrawControls(view, tags);
    const OverlayPoint at{view->TransformXOut(x_), view->TransformYOut(y_)};
    view->painter->SetColor(OverlayColor::Normal);
    const OverlayPainter::Mark mark(*view->painter, at, view->controlScale);
    view->painter->Loop({{-4, -4}, {4, -4}, {4, 4}, {-4, 4}});
}

bool ButtonsOverlay::IsOnMark(const PreviewInfo& view) const
{
    return std::abs(view.TransformXOut(x_) - view.TransformXOut(view.cursorX)) < view.pickRadius &&
           std::abs(view.TransformYOut(y_) - view.TransformYOut(view.cursorY)) < view.pickRadius;
}

void ButtonsOverlay::Place(const PreviewInfo& view)
{
    SetInputs(MakeRef<Point>(view.cursorX, view.cursorY).Get(), CurrentTime(), 0, nullptr);
}

DragType ButtonsOverlay::ControlDown(PreviewInfo* view, const MxPointT<int>& at, TagList* tags)
{
    if (!view->hit.control && (draws || IsOnMark(*view))) {
        dragState_ = DragType::Dragged;
        log += QStringLiteral("down %1 %2 %3")
                   .arg(tags->GetDouble(PVD_Pressure))
                   .arg(tags->GetDouble(PVD_AngleXY))
                   .arg(tags->GetBool(PV_DoubleClick) ? "double" : "single");
        if (draws) {
            StartUndo("Add Point");
            Place(*view);
        }
    }
    return PreviewControl::ControlDown(view, at, tags);
}

void ButtonsOverlay::ControlMove(PreviewInfo* view, const MxPointT<int>&, TagList* tags)
{
    if (dragState_ == DragType::Dragged) {
        log += QStringLiteral("move %1").arg(tags->GetDouble(PVD_Pressure));
        Place(*view);
    }
}

bool ButtonsOverlay::ControlCommand(PreviewInfo* view, const MxID& command, u64 data, TagList* tags)
{
    const bool shift = tags && tags->GetLong(PV_Modifiers) == KeyShift;
    if (command == CCMD_HitTest) {
        const bool hit =
            !view->hit.control && !tags->GetBool(PC_PointerGone) && (draws || IsOnMark(*view));
        if (hit && draws)
            view->SetCursor(ViewCursor::Cross);
        return hit;
    }
    const bool own = (data == Qt::Key_C && shift) || (data == Qt::Key_Escape && draws) ||
                     data == Qt::Key_R || data == Qt::Key_Delete;
    if (command == CCMD_WantsKey)
        return own;
    if (command != CCMD_KeyDown)
        return PreviewControl::ControlCommand(view, command, data, tags);
    if (own && (data == Qt::Key_C || data == Qt::Key_Escape))
        SetDraws(data == Qt::Key_C);
    if (own)
        log += QStringLiteral("key %1").arg(data, 0, 16);
    return own;
}

/// The last line of its log, so that scripts can read it.
bool ButtonsOverlay::ControlGetTip(PreviewInfo*, char* tip, TagList*)
{
    qstrncpy(tip, log.isEmpty() ? "nothing yet" : qUtf8Printable(log.last()), 256);
    return true;
}

} // namespace Marlox
