#include "controls/polyline/PolyKeyListDlg.h"

#include "controls/polyline/DialogPlace.h"
#include "controls/polyline/PolyKeyModel.h"
#include "controls/polyline/PolyPreferences.h"
#include "system/document/MarloxDoc.h"
#include "system/resources/Resources.h"
#include "system/widgets/TimeCodeEdit.h"

#include <algorithm>

#include <QComboBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QTreeView>

namespace Marlox {

namespace {

const ResData layoutResource("Dialogs.PolyKeyList.Layout");

const ResColor errorText("System.ErrorTextColour", {255, 140, 140, 255});

constexpr Interpolation kinds[] = {Interpolation::Step, Interpolation::Linear,
                                   Interpolation::Smooth};
constexpr int timeWidth = 128; // pixels

bool isEnter(int key)
{
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

/// Keys that mean the list of keys while it has the keyboard, whatever the main window does with
/// them: its shortcuts reach into a window of this kind.
bool isOwnKey(const QKeyEvent& key)
{
    return isEnter(key.key()) || key.key() == Qt::Key_Delete || key.key() == Qt::Key_F2 ||
           const_cast<QKeyEvent&>(key).matches(QKeySequence::SelectAll);
}

} // namespace

/// Times are edited in a field that takes frames, time codes and arithmetic.
class PolyKeyListDlg::TimeDelegate final : public QStyledItemDelegate {
public:
    explicit TimeDelegate(PolyKeyListDlg& dialog) : QStyledItemDelegate(&dialog), dialog_(dialog) {}

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&,
                          const QModelIndex&) const override
    {
        auto* edit = new TimeCodeEdit(parent);
        edit->setObjectName("m_EditKeyTime");
        edit->setAccessibleName(tr("Time"));
        const MarloxDoc* document = dialog_.keys_->Document();
        edit->SetTimeMode(true, document ? document->FrameRate() : 24.0);
        return edit;
    }

    void setModelData(QWidget* editor, QAbstractItemModel*, const QModelIndex& index) const override
    {
        auto& edit = static_cast<TimeCodeEdit&>(*editor);
        if (!edit.Commit() || edit.IsExpressionText())
            return dialog_.ShowState(tr("\"%1\" is no time.").arg(edit.text()));
        // Later: the rows are made anew, which the list must not see while it ends the edit.
        const double from = index.data(PolyKeyModel::TimeRole).toDouble();
        QMetaObject::invokeMethod(
            &dialog_,
            [dialog = &dialog_, from, to = edit.GetValue()] { dialog->MoveKey(from, to); },
            Qt::QueuedConnection);
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        constexpr int rowHeight = 24;
        const QSize size = QStyledItemDelegate::sizeHint(option, index);
        return {size.width(), std::max(size.height(), rowHeight)};
    }

private:
    PolyKeyListDlg& dialog_;
};

PolyKeyListDlg::PolyKeyListDlg(QWidget* parent)
    : MxDialog(parent, Qt::Tool), keys_(new PolyKeyModel(this))
{
    setObjectName("PolyKeyListDlg");
    MakeList();
    MakeButtons();
    state_ = new QLabel(this);
    state_->setObjectName("m_StateLabel");
    state_->setTextFormat(Qt::PlainText);
    LoadLayout(layoutResource.Name());
    connect(keys_, &QAbstractItemModel::modelAboutToBeReset, this, &PolyKeyListDlg::KeepSelection);
    connect(keys_, &QAbstractItemModel::modelReset, this, &PolyKeyListDlg::RestoreSelection);
    connect(keys_, &PolyKeyModel::KeysChanged, this, [this] { ShowState(); });
    connect(keys_, &PolyKeyModel::CurrentTimeChanged, this, &PolyKeyListDlg::ShowCurrentTime);
    connect(keys_, &PolyKeyModel::Refused, this, &PolyKeyListDlg::ShowState);
    ShowState();
}

PolyKeyListDlg::~PolyKeyListDlg()
{
    if (isVisible())
        SavePlace();
}

void PolyKeyListDlg::MakeList()
{
    list_ = new QTreeView(this);
    list_->setObjectName("m_KeyList");
    list_->setAccessibleName(tr("Keys"));
    list_->setToolTip(tr("Enter or a double click goes to a key, F2 changes its time."));
    list_->setModel(keys_);
    list_->setItemDelegate(new TimeDelegate(*this));
    list_->setRootIsDecorated(false);
    list_->setUniformRowHeights(true);
    list_->setAllColumnsShowFocus(true);
    list_->setAlternatingRowColors(true);
    list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list_->setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::SelectedClicked);
    list_->setContextMenuPolicy(Qt::CustomContextMenu);
    list_->header()->setSectionsMovable(false);
    list_->header()->resizeSection(PolyKeyModel::TimeColumn, timeWidth);
    list_->installEventFilter(this);
    connect(list_, &QTreeView::doubleClicked, this, &PolyKeyListDlg::OnGoTo);
    connect(list_, &QTreeView::customContextMenuRequested, this, &PolyKeyListDlg::ShowMenu);
    connect(list_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { ShowState(); });
}

void PolyKeyListDlg::MakeButtons()
{
    kind_ = new QComboBox(this);
    kind_->setObjectName("m_KindCombo");
    kind_->setAccessibleName(tr("Interpolation"));
    kind_->setToolTip(tr("How values go from the selected keys to the next."));
    for (const Interpolation kind : kinds)
        kind_->addItem(PolyKeyModel::KindName(kind));
    goTo_ = new QPushButton(tr("&Go To"), this);
    goTo_->setObjectName("m_GoToButton");
    delete_ = new QPushButton(tr("&Delete"), this);
    delete_->setObjectName("m_DeleteButton");
    for (QPushButton* button : {goTo_, delete_})
        button->setAutoDefault(false);
    connect(kind_, qOverload<int>(&QComboBox::activated), this, &PolyKeyListDlg::OnKind);
    connect(goTo_, &QPushButton::clicked, this, &PolyKeyListDlg::OnGoTo);
    connect(delete_, &QPushButton::clicked, this, &PolyKeyListDlg::OnDelete);
}

void PolyKeyListDlg::SetInput(Input* input, const QString& part)
{
    part_ = part;
    keys_->SetInput(input);
    ShowState();
}

void PolyKeyListDlg::SetPartner(std::function<Input*()> partner)
{
    keys_->SetPartner(std::move(partner));
}

Input* PolyKeyListDlg::GetInput() const
{
    return keys_->GetInput();
}

// Selection ---------------------------------------------------------------------------------------

std::vector<double> PolyKeyListDlg::SelectedTimes() const
{
    std::vector<double> times;
    for (const QModelIndex& index : list_->selectionModel()->selectedRows())
        times.push_back(keys_->TimeAt(index.row()));
    std::sort(times.begin(), times.end());
    return times;
}

void PolyKeyListDlg::SelectTimes(const std::vector<double>& times)
{
    QItemSelection selection;
    for (const double time : times) {
        if (const int row = keys_->RowAt(time); row >= 0)
            selection.select(keys_->index(row, 0), keys_->index(row, PolyKeyModel::KindColumn));
    }
    list_->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

void PolyKeyListDlg::KeepSelection()
{
    kept_ = SelectedTimes();
    const QModelIndex current = list_->currentIndex();
    keptCurrent_ = current.isValid() ? keys_->TimeAt(current.row()) : 0.0;
}

void PolyKeyListDlg::RestoreSelection()
{
    const int row = keys_->RowAt(keptCurrent_);
    if (row >= 0)
        list_->selectionModel()->setCurrentIndex(keys_->index(row, 0),
                                                 QItemSelectionModel::NoUpdate);
    SelectTimes(kept_);
}

void PolyKeyListDlg::ShowCurrentTime()
{
    const MarloxDoc* document = keys_->Document();
    const int row = document ? keys_->RowAt(document->CurrentTime()) : -1;
    if (row >= 0)
        list_->scrollTo(keys_->index(row, 0));
}

void PolyKeyListDlg::ShowState(const QString& problem)
{
    const Input* input = GetInput();
    const QString name = input ? input->Owner().GetName() : QString();
    setWindowTitle(!input            ? tr("Poly Keys")
                   : part_.isEmpty() ? tr("Poly Keys: %1").arg(name)
                                     : tr("Poly Keys: %1 (%2)").arg(name, part_));
    const QModelIndexList rows = list_->selectionModel()->selectedRows();
    const bool any = !rows.isEmpty();
    const bool changeable = any && input && input->IsChangeable();
    goTo_->setEnabled(any);
    delete_->setEnabled(changeable);
    kind_->setEnabled(changeable);
    ShowKind(rows);
    const int count = keys_->rowCount();
    QString text = problem;
    if (text.isEmpty())
        text = count == 0        ? tr("The shape has no keys.")
               : rows.size() > 1 ? tr("%1 of %2 keys selected").arg(rows.size()).arg(count)
               : count == 1      ? tr("1 key")
                                 : tr("%1 keys").arg(count);
    state_->setText(text);
    state_->setToolTip(problem);
    QPalette colors = palette();
    if (!problem.isEmpty())
        colors.setColor(QPalette::WindowText, errorText.Color().ToQColor());
    state_->setPalette(colors);
}

/// The kind that the selected keys share.
void PolyKeyListDlg::ShowKind(const QModelIndexList& rows)
{
    const auto isFirsts = [&](const QModelIndex& row) {
        return keys_->KindAt(row.row()) == keys_->KindAt(rows.front().row());
    };
    const bool shared = !rows.isEmpty() && std::all_of(rows.begin(), rows.end(), isFirsts);
    kind_->setPlaceholderText(rows.isEmpty() || shared ? QString() : tr("Mixed"));
    kind_->setCurrentIndex(shared ? int(std::find(std::begin(kinds), std::end(kinds),
                                                  keys_->KindAt(rows.front().row())) -
                                        std::begin(kinds))
                                  : -1);
}

// Edits -------------------------------------------------------------------------------------------

void PolyKeyListDlg::OnGoTo()
{
    const QModelIndex current = list_->currentIndex();
    if (current.isValid() && keys_->Document())
        keys_->Document()->SetCurrentTime(keys_->TimeAt(current.row()));
}

void PolyKeyListDlg::OnEditTime()
{
    const QModelIndex current = list_->currentIndex();
    const QModelIndex time = current.sibling(current.row(), PolyKeyModel::TimeColumn);
    if (time.flags() & Qt::ItemIsEditable)
        list_->edit(time);
}

void PolyKeyListDlg::OnDelete()
{
    const int row = list_->currentIndex().row();
    if (!keys_->Remove(SelectedTimes()) || keys_->rowCount() == 0)
        return;
    const int next = std::clamp(row, 0, keys_->rowCount() - 1); // so that Delete can go on
    list_->setCurrentIndex(keys_->index(next, 0));
}

void PolyKeyListDlg::OnKind(int index)
{
    if (index >= 0 && index < int(std::size(kinds)))
        keys_->SetKind(SelectedTimes(), kinds[index]);
    ShowState();
}

/// Others that are selected with the key go along.
void PolyKeyListDlg::MoveKey(double from, double to)
{
    std::vector<double> times = SelectedTimes();
    if (std::find(times.begin(), times.end(), from) == times.end())
        times = {from};
    if (!keys_->Move(times, to - from))
        return;
    for (double& time : times)
        time += to - from;
    list_->selectionModel()->setCurrentIndex(keys_->index(keys_->RowAt(to), 0),
                                             QItemSelectionModel::NoUpdate);
    SelectTimes(times);
}

void PolyKeyListDlg::ShowMenu(const QPoint& at)
{
    auto* menu = new QMenu(this);
    menu->setObjectName("m_KeyMenu");
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const bool any = list_->selectionModel()->hasSelection();
    const bool changeable = kind_->isEnabled();
    menu->addAction(tr("Go To\tEnter"), this, &PolyKeyListDlg::OnGoTo)->setEnabled(any);
    menu->addAction(tr("Change Time\tF2"), this, &PolyKeyListDlg::OnEditTime)
        ->setEnabled(changeable);
    menu->addAction(tr("Delete\tDel"), this, &PolyKeyListDlg::OnDelete)->setEnabled(changeable);
    menu->addSeparator();
    for (int i = 0; i < kind_->count(); ++i) {
        QAction* action = menu->addAction(kind_->itemText(i), this, [this, i] { OnKind(i); });
        action->setCheckable(true);
        action->setChecked(i == kind_->currentIndex());
        action->setEnabled(changeable);
    }
    menu->popup(list_->viewport()->mapToGlobal(at)); // no loop here: we may be deleted meanwhile
}

bool PolyKeyListDlg::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != list_ || !list_->hasFocus()) // or a time is being typed
        return MxDialog::eventFilter(watched, event);
    if (event->type() == QEvent::ShortcutOverride && isOwnKey(static_cast<QKeyEvent&>(*event))) {
        event->accept();
        return true;
    }
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent&>(*event).key();
        const bool used = isEnter(key) || key == Qt::Key_Delete || key == Qt::Key_F2;
        if (isEnter(key))
            OnGoTo();
        else if (key == Qt::Key_Delete)
            OnDelete();
        else if (key == Qt::Key_F2)
            OnEditTime();
        if (used)
            return true;
    }
    return MxDialog::eventFilter(watched, event);
}

// Place on the screen -----------------------------------------------------------------------------

void PolyKeyListDlg::showEvent(QShowEvent* event)
{
    if (!std::exchange(placed_, true))
        RestorePlace();
    MxDialog::showEvent(event);
}

void PolyKeyListDlg::hideEvent(QHideEvent* event)
{
    SavePlace();
    MxDialog::hideEvent(event);
}

void PolyKeyListDlg::SavePlace() const
{
    SaveDialogPlace(*this, PREF_PolyKeyListDlgLeft, PREF_PolyKeyListDlgTop);
}

void PolyKeyListDlg::RestorePlace()
{
    RestoreDialogPlace(*this, PREF_PolyKeyListDlgLeft, PREF_PolyKeyListDlgTop);
}

} // namespace Marlox
