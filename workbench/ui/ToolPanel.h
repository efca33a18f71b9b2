#pragma once

#include <QWidget>

class QMenu;
class QTreeView;

namespace Marlox {

class Session;
class ToolModel;

/// The list of tools in flow order: select, add, remove, reorder by dragging, rename by double
/// click or F2, enable and lock by their icons.
class ToolPanel : public QWidget {
    Q_OBJECT
public:
    explicit ToolPanel(Session& session, QWidget* parent = nullptr);

    /// Fills a menu with one entry for each registered tool class.
    static void FillAddMenu(QMenu& menu, Session& session, QWidget* messageParent);

public slots:
    void RemoveSelected();
    void RenameSelected();

private:
    void ShowSelection();

    Session& session_;
    ToolModel* model_;
    QTreeView* view_;
    bool following_ = false; // the view is being set to the session's selection
};

} // namespace Marlox
