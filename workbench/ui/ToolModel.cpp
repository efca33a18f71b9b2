#include "workbench/ui/ToolModel.h"

#include "system/document/MarloxDoc.h"
#include "workbench/ui/Icons.h"

#include <QGuiApplication>
#include <QMimeData>
#include <QPalette>

namespace Marlox {

namespace {

constexpr char rowMimeType[] = "application/x-marlox-tool-row";

} // namespace

ToolModel::ToolModel(MarloxDoc& document, QObject* parent)
    : QAbstractTableModel(parent), document_(document)
{
    // A handful of rows: a reset is as good as exact row signals, and it cannot get out of step.
    const auto reset = [this] {
        beginResetModel();
        endResetModel();
    };
    connect(&document_, &MarloxDoc::ToolAdded, this, reset);
    connect(&document_, &MarloxDoc::ToolRemoved, this, reset);
    connect(&document_, &MarloxDoc::ToolMoved, this, reset);
    connect(&document_, &MarloxDoc::Cleared, this, reset);
    connect(&document_, &MarloxDoc::ToolChanged, this, [this](Operator* tool) {
        const int row = document_.IndexOf(*tool);
        emit dataChanged(index(row, 0), index(row, ColumnCount - 1));
    });
}

Operator* ToolModel::ToolAt(const QModelIndex& index) const
{
    const auto& tools = document_.Tools();
    return index.isValid() && index.row() < int(tools.size())
               ? tools[std::size_t(index.row())].Get()
               : nullptr;
}

QModelIndex ToolModel::IndexOf(const Operator& tool) const
{
    const int row = document_.IndexOf(tool);
    return row < 0 ? QModelIndex() : index(row, Name);
}

int ToolModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(document_.Tools().size());
}

int ToolModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(ColumnCount);
}

QVariant ToolModel::data(const QModelIndex& index, int role) const
{
    const Operator* tool = ToolAt(index);
    if (!tool)
        return {};
    switch (index.column()) {
    case Name:
        if (role == Qt::DisplayRole || role == Qt::EditRole)
            return tool->GetName();
        if (role == Qt::ForegroundRole && tool->IsDisabled())
            return QGuiApplication::palette().brush(QPalette::PlaceholderText);
        if (role == Qt::ToolTipRole)
            return tr("%1 (%2)").arg(tool->GetName(), tool->GetToolType().ToString());
        break;
    case Enabled:
        if (tool->IsModifier())
            return {}; // it has no picture to pass through
        if (role == Qt::DecorationRole)
            return WorkbenchIcon(tool->IsDisabled() ? "EyeClosed" : "Eye");
        if (role == Qt::ToolTipRole)
            return tool->IsDisabled() ? tr("Disabled: passes the image through")
                                      : tr("Enabled; click to disable");
        if (role == Qt::EditRole)
            return !tool->IsDisabled();
        break;
    case Locked:
        if (role == Qt::DecorationRole)
            return WorkbenchIcon(tool->IsLocked() ? "Lock" : "Unlock");
        if (role == Qt::ToolTipRole)
            return tool->IsLocked() ? tr("Locked: values can't be changed") : tr("Click to lock");
        if (role == Qt::EditRole)
            return tool->IsLocked();
        break;
    }
    return {};
}

bool ToolModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    Operator* tool = ToolAt(index);
    if (!tool || role != Qt::EditRole)
        return false;
    switch (index.column()) {
    case Name:
        return tool->SetName(value.toString().trimmed());
    case Enabled:
        return tool->DisableTool(!value.toBool());
    case Locked:
        return tool->SetLocked(value.toBool());
    }
    return false;
}

Qt::ItemFlags ToolModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::ItemIsDropEnabled; // between rows only
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled;
    if (index.column() == Name && !ToolAt(index)->IsLocked())
        flags |= Qt::ItemIsEditable;
    return flags;
}

QStringList ToolModel::mimeTypes() const
{
    return {QString::fromLatin1(rowMimeType)};
}

QMimeData* ToolModel::mimeData(const QModelIndexList& indexes) const
{
    auto* data = new QMimeData;
    if (!indexes.isEmpty())
        data->setData(QString::fromLatin1(rowMimeType), QByteArray::number(indexes.first().row()));
    return data;
}

bool ToolModel::dropMimeData(const QMimeData* data, Qt::DropAction, int row, int,
                             const QModelIndex& parent)
{
    const int from = data->data(QString::fromLatin1(rowMimeType)).toInt();
    if (row < 0)
        row = parent.isValid() ? parent.row() : rowCount();
    Operator* tool = ToolAt(index(from, 0));
    if (!tool)
        return false;
    const int position = row > from ? row - 1 : row; // the row leaves its old place first
    if (position != from)
        document_.MoveTool(*tool, position);
    return false; // moved already: the view must not remove the old row
}

} // namespace Marlox
