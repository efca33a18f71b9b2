#pragma once

#include <QWidget>

class QLayout;
class QMenu;
class QToolButton;
class QTreeView;

namespace Marlox {

class Session;
class ToolModel;

/// The list of tools in flow order: select, add, remove, reorder by dragging or the arrows, rename
/// by double click or F2, enable and lock by their icons; the right button opens the tool menu.
class ToolPanel : public QWidget {
    Q_OBJECT
public:
    explicit ToolPanel(Session& session, QWidget* parent = nullptr);

    /// Fills a menu with one entry for each registered tool class.
    static void FillAddMenu(QMenu& menu, Session& session, QWidget* messageParent);
    /// Fills a menu with a submenu for each image input of the selected tool: what it may be
    /// connected to.
    static void FillConnectMenu(QMenu& menu, Session& session);

public slots:
    void RemoveSelected();
    void RenameSelected();
    void MoveSelected(int by); // places in the flow, -1 up
    void PopUpAddMenu();       // at the pointer

signals:
    void MenuAsked(const QPoint& globalPos);

private:
    void BuildList();
    QLayout* BuildButtons();
    void ShowSelection();

    Session& session_;
    ToolModel* model_;
    QTreeView* view_;
    QMenu* addMenu_;
    QToolButton* up_ = nullptr;
    QToolButton* down_ = nullptr;
    QToolButton* remove_ = nullptr;
    bool following_ = false; // the view is being set to the session's selection
};

} // namespace Marlox
