#pragma once

#include "system/document/MarloxDoc.h"

#include <functional>
#include <optional>
#include <vector>

#include <QAbstractTableModel>
#include <QPointer>

namespace Marlox {

/// The keys of a shape's input as rows, ascending in time: the time and the kind of interpolation
/// to the next key. It follows the input, which it outlives, and the current time. Each edit is one
/// undo entry. User-interface thread.
class PolyKeyModel final : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { TimeColumn, KindColumn, ColumnCount };
    enum Role { TimeRole = Qt::UserRole }; // the exact time, a number

    explicit PolyKeyModel(QObject* parent = nullptr);
    ~PolyKeyModel() override;

    /// Null: none. An input whose tool leaves the document has no rows until the tool comes back.
    void SetInput(Input* input);
    /// Null while its tool stands in no document.
    Input* GetInput() const;
    MarloxDoc* Document() const { return document_; }
    /// Tells the input whose keys at the same times are edited along; null: none now.
    using Partner = std::function<Input*()>;
    void SetPartner(Partner partner) { partner_ = std::move(partner); }

    static QString KindName(Interpolation kind);
    double TimeAt(int row) const { return rows_[std::size_t(row)].time; }
    Interpolation KindAt(int row) const { return rows_[std::size_t(row)].kind; }
    int RowAt(double time) const; // -1: no key
    QString TimeText(double time) const;

    // Edits of the keys at these times, in frames. False: the input refuses, or nothing changes.
    bool Remove(const std::vector<double>& times);
    /// Moves them by as many frames. False also where one would come to lie on another key, or
    /// further than a million frames from frame 0, which Refused tells.
    bool Move(const std::vector<double>& times, double by);
    bool SetKind(const std::vector<double>& times, Interpolation kind);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

signals:
    void Refused(const QString& reason);
    /// Other keys than before, or the input comes or goes.
    void KeysChanged();
    void CurrentTimeChanged();

private:
    struct Row {
        double time;
        Interpolation kind;
        friend bool operator==(const Row&, const Row&) = default;
    };
    void Read();
    void ShowCurrent();
    std::vector<Input*> EditedInputs() const;
    bool IsChangeable();
    std::optional<Animation> Moved(const Input& input, const std::vector<double>& times, double by);

    Ref<Operator> owner_; // keeps the input alive
    Input* input_ = nullptr;
    Partner partner_;
    QPointer<MarloxDoc> document_;
    std::vector<Row> rows_;
};

} // namespace Marlox
