#pragma once

#include "system/viewer/PreviewControl.h"

#include <QStringList>

namespace Marlox {

/// A point with a toolbar and menus, registered as "ButtonsOverlay". While it draws, a press
/// anywhere places the point; otherwise its mark can be dragged. Shift+C draws, Escape ends that.
class ButtonsOverlay final : public PreviewControl {
public:
    enum Event : u32 {
        Draw = 0x2000e,
        Done = 0x20012,
        Lock = 0x20020,    // never enabled
        Polygon = 0x20021, // without an icon
        Publish = 0x20022, // a pop-down
        Skin = 0x20023,    // a pop-down that is clicked too
        Unseen = 0x20068,  // has no button
    };
    enum Entry : unsigned int { ToDraw = 1, ToDone, Close, Ellipse, Track, ToPath, ToTracker };

    using PreviewControl::PreviewControl;
    bool draws = false;
    bool closed = false;
    QStringList log;

    std::size_t SizeOf() const override { return sizeof(*this); }
    bool DoInfo(unsigned int request, TagList& tags) override;
    void AddToMenu(Menu* menu, TagList& tags) override;
    using PreviewControl::HandleMenu;
    bool HandleMenu(unsigned int id, u64* data, TagList& tags) override;
    void GetAvailableEvents(std::vector<MxID>& out) const override;
    bool HandleEvent(Object* sender, const MxID& event, TagList& tags) override;
    void NotifyChanged(Input* input, Parameter* value, TagList* tags) override;
    void GLDrawControls(PreviewInfo* view, TagList* tags) override;
    DragType ControlDown(PreviewInfo* view, const MxPointT<int>& at, TagList* tags) override;
    void ControlMove(PreviewInfo* view, const MxPointT<int>& at, TagList* tags) override;
    bool ControlCommand(PreviewInfo* view, const MxID& command, u64 data, TagList* tags) override;
    bool ControlGetTip(PreviewInfo* view, char* tip, TagList* tags) override;

private:
    void SetDraws(bool draws);
    bool IsOnMark(const PreviewInfo& view) const;
    void Place(const PreviewInfo& view);

    double x_ = 0.5;
    double y_ = 0.5;
};

} // namespace Marlox
