#pragma once

#include "system/viewer/ToolbarEvents.h"

#include <QTimer>
#include <QToolBar>

class QMenu;

namespace Marlox {

class OverlayStage;

/// The buttons of the overlay that has the focus in a view, or of the first that has any; hidden
/// when there are none. A line stands between buttons of different groups; what can't be used says
/// why in its tip. What does not fit goes behind an arrow at the end, into a menu. It never takes
/// the keyboard: keys stay with the overlay.
class OverlayToolbar : public QToolBar {
    Q_OBJECT
public:
    explicit OverlayToolbar(OverlayStage& stage, QWidget* parent = nullptr);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void RefreshSoon(int milliseconds);
    void Refresh();
    void Rebuild();
    void AddButton(const ToolbarButton& button);
    QMenu* MakePopDown(QAction& action, const ToolbarButton& button);
    void ShowTipsOfMore();
    void ShowState(QAction& action, const ToolbarButton& button) const;

    OverlayStage& stage_;
    QTimer refresh_;
    std::vector<ToolbarButton> buttons_;
    std::vector<QAction*> shown_; // one for each of them
};

} // namespace Marlox
