#pragma once

#include <QAbstractTableModel>

namespace Marlox {

class MarloxDoc;
class Operator;

/// The tools of a document in flow order as a Qt model: column 0 the name (editable), 1 whether the
/// tool is enabled, 2 whether it is locked (both checkable). Rows can be dragged to another place.
/// All edits go through the document and its undo history.
class ToolModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { Name, Enabled, Locked, ColumnCount };

    explicit ToolModel(MarloxDoc& document, QObject* parent = nullptr);

    Operator* ToolAt(const QModelIndex& index) const;
    QModelIndex IndexOf(const Operator& tool) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;

private:
    MarloxDoc& document_;
};

} // namespace Marlox
