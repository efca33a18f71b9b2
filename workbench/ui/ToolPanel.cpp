#include "workbench/ui/ToolPanel.h"

#include "system/base/Registry.h"
#include "system/controls/Connections.h"
#include "system/controls/Menu.h"
#include "system/viewer/ToolGroup.h"
#include "workbench/ui/Icons.h"
#include "workbench/ui/Messages.h"
#include "workbench/ui/Session.h"
#include "workbench/ui/ToolModel.h"

#include <map>
#include <string>

#include <QHBoxLayout>
#include <QHeaderView>
#include <QMenu>
#include <QShortcut>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

namespace Marlox {

namespace {

constexpr unsigned int firstConnection = 1; // number of an entry; 0 would be none

QToolButton* button(const char* icon, const QString& tip, const char* name)
{
    auto* made = new QToolButton;
    made->setIcon(WorkbenchIcon(icon));
    made->setToolTip(tip);
    made->setAccessibleName(tip);
    made->setAutoRaise(true);
    made->setObjectName(name);
    return made;
}

} // namespace

ToolPanel::ToolPanel(Session& session, QWidget* parent)
    : QWidget(parent), session_(session), model_(new ToolModel(session.Document(), this)),
      view_(new QTreeView), addMenu_(new QMenu(this))
{
    setObjectName("tools");
    setMinimumWidth(132);
    BuildList();
    connect(addMenu_, &QMenu::aboutToShow, this,
            [this] { FillAddMenu(*addMenu_, session_, this); });
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(view_);
    layout->addLayout(BuildButtons());

    connect(view_, &QTreeView::clicked, this, [this](const QModelIndex& index) {
        if (index.column() != ToolModel::Name)
            model_->setData(index, !index.data(Qt::EditRole).toBool(), Qt::EditRole);
    });
    connect(view_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& now) {
                if (!following_)
                    session_.SelectTool(model_->ToolAt(now));
            });
    connect(model_, &QAbstractItemModel::modelAboutToBeReset, this, [this] { following_ = true; });
    connect(model_, &QAbstractItemModel::modelReset, this, &ToolPanel::ShowSelection);
    connect(&session_, &Session::SelectedToolChanged, this, &ToolPanel::ShowSelection);
    ShowSelection();
}

void ToolPanel::BuildList()
{
    view_->setObjectName("toollist");
    view_->setAccessibleName(tr("Tools"));
    view_->setModel(model_);
    view_->setRootIsDecorated(false);
    view_->setHeaderHidden(true);
    view_->setUniformRowHeights(true);
    view_->setSelectionBehavior(QAbstractItemView::SelectRows);
    view_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
    view_->setDragDropMode(QAbstractItemView::InternalMove);
    view_->setDragDropOverwriteMode(false);
    view_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view_->header()->setStretchLastSection(false);
    view_->header()->setMinimumSectionSize(16);
    view_->header()->setSectionResizeMode(ToolModel::Name, QHeaderView::Stretch);
    for (const int column : {int(ToolModel::Enabled), int(ToolModel::Locked)}) {
        view_->header()->setSectionResizeMode(column, QHeaderView::Fixed);
        view_->header()->resizeSection(column, 24);
    }
    view_->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(view_, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& at) { emit MenuAsked(view_->viewport()->mapToGlobal(at)); });
    auto* removal = new QShortcut(QKeySequence::Delete, view_);
    removal->setContext(Qt::WidgetShortcut);
    connect(removal, &QShortcut::activated, this, &ToolPanel::RemoveSelected);
}

QLayout* ToolPanel::BuildButtons()
{
    auto* add = button("Add", tr("Add a tool behind the selected one (Shift+Space)"), "addtool");
    add->setPopupMode(QToolButton::InstantPopup);
    add->setMenu(addMenu_);
    remove_ = button("Remove", tr("Remove the selected tool (Delete)"), "removetool");
    connect(remove_, &QToolButton::clicked, this, &ToolPanel::RemoveSelected);
    up_ = button("Up", tr("Move the selected tool up (Ctrl+Up)"), "movetoolup");
    connect(up_, &QToolButton::clicked, this, [this] { MoveSelected(-1); });
    down_ = button("Down", tr("Move the selected tool down (Ctrl+Down)"), "movetooldown");
    connect(down_, &QToolButton::clicked, this, [this] { MoveSelected(1); });

    auto* buttons = new QHBoxLayout;
    buttons->setContentsMargins(4, 4, 4, 4);
    buttons->setSpacing(4);
    buttons->addWidget(add);
    buttons->addWidget(remove_);
    buttons->addStretch();
    buttons->addWidget(up_);
    buttons->addWidget(down_);
    return buttons;
}

/// Tools whose overlay has a label of its own stand together under it, behind the others.
void ToolPanel::FillAddMenu(QMenu& menu, Session& session, QWidget* messageParent)
{
    menu.clear();
    qDeleteAll(menu.findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly));
    std::map<std::string, QMenu*> groups; // by their labels
    for (const Registry* record : ClassRegistry::Global().Records()) {
        if (record->Kind() != ClassKind::Tool)
            continue;
        const TagPair* shown = record->Find(REG_DisplayName);
        const TagPair* overlay = record->Find(REG_Overlay);
        const char* label = overlay ? ToolGroup::LabelOf(MxID(overlay->value.text)) : nullptr;
        const MxID type = record->ClassID();
        QMenu* listed = &menu;
        if (label) {
            QMenu*& group = groups[label];
            if (!group)
                group = new QMenu(QString::fromUtf8(label), &menu);
            listed = group;
        }
        listed->addAction(shown ? QString::fromUtf8(shown->value.text) : type.ToString(),
                          messageParent, [&session, type, messageParent] {
                              QString error;
                              if (!session.AddTool(type, &error))
                                  ShowError(messageParent, error);
                          });
    }
    if (!groups.empty())
        menu.addSeparator();
    for (const auto& [label, group] : groups)
        menu.addMenu(group);
}

void ToolPanel::FillConnectMenu(QMenu& menu, Session& session)
{
    menu.clear();
    qDeleteAll(menu.findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly));
    const Operator* tool = session.SelectedTool();
    for (const Ref<Input>& input : tool ? tool->Inputs() : std::vector<Ref<Input>>()) {
        if (!input->IsImage())
            continue;
        Menu entries;
        AddConnections(entries, *input, firstConnection);
        auto* listed = new QMenu(input->GetName(), &menu);
        entries.Fill(*listed);
        menu.addMenu(listed);
        connect(listed, &QMenu::triggered, listed,
                [&session, id = input->GetID()](const QAction* action) {
                    const Operator* now = session.SelectedTool();
                    if (Input* to = now ? now->FindInput(id) : nullptr)
                        RunConnection(*to, action->data().toUInt() - firstConnection);
                });
    }
}

void ToolPanel::ShowSelection()
{
    following_ = true;
    if (Operator* tool = session_.SelectedTool())
        view_->setCurrentIndex(model_->IndexOf(*tool));
    else
        view_->setCurrentIndex({});
    following_ = false;
    const Operator* tool = session_.SelectedTool();
    const int place = tool ? session_.Document().IndexOf(*tool) : -1;
    remove_->setEnabled(tool);
    up_->setEnabled(place > 0);
    down_->setEnabled(tool && place + 1 < int(session_.Document().Tools().size()));
}

void ToolPanel::RemoveSelected()
{
    Operator* tool = session_.SelectedTool();
    if (tool && !session_.Document().RemoveTool(*tool))
        ShowError(this, tr("%1 is locked. Unlock it to remove it.").arg(tool->GetName()));
}

void ToolPanel::MoveSelected(int by)
{
    MarloxDoc& document = session_.Document();
    Operator* tool = session_.SelectedTool();
    const int place = tool ? document.IndexOf(*tool) + by : -1;
    if (place >= 0 && place < int(document.Tools().size()))
        document.MoveTool(*tool, place);
}

void ToolPanel::PopUpAddMenu()
{
    addMenu_->popup(QCursor::pos());
}

void ToolPanel::RenameSelected()
{
    if (view_->currentIndex().isValid())
        view_->edit(view_->currentIndex().siblingAtColumn(ToolModel::Name));
}

} // namespace Marlox
