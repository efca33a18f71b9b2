#pragma once

#include "system/controls/MxDialog.h"
#include "system/values/Animation.h"

#include <vector>

#include <QModelIndex>

class QComboBox;
class QLabel;
class QMenu;
class QPushButton;
class QTreeView;

namespace Marlox {

class Input;
class PolyKeyModel;

/// The list of a shape's keys, which stays open beside the work: goes to keys, removes them, moves
/// them in time, changes their interpolation; several at once. It may outlive its input, the tool
/// and the document. Its place on the screen is kept in the preferences.
///
/// Whoever makes it deletes it at once, not later: its code may be unloaded soon. With a parent it
/// may go before, so hold it by a QPointer.
class PolyKeyListDlg final : public MxDialog {
    Q_OBJECT
public:
    explicit PolyKeyListDlg(QWidget* parent = nullptr);
    ~PolyKeyListDlg() override;

    /// Null: none. `part`: which of the tool's shapes it is; empty: it has one alone.
    void SetInput(Input* input, const QString& part = {});
    /// See PolyKeyModel::SetPartner.
    void SetPartner(std::function<Input*()> partner);
    Input* GetInput() const; // null also while its tool stands in no document

    std::vector<double> SelectedTimes() const; // ascending
    void SelectTimes(const std::vector<double>& times);

public slots:
    void OnGoTo(); // the key that has the keyboard
    void OnEditTime();
    void OnDelete();
    void OnKind(int index); // of the kinds' list

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    class TimeDelegate;
    void MakeList();
    void MakeButtons();
    void MoveKey(double from, double to);
    void ShowMenu(const QPoint& at);
    void ShowState(const QString& problem = {});
    void ShowKind(const QModelIndexList& rows);
    void KeepSelection();
    void RestoreSelection();
    void ShowCurrentTime();
    void SavePlace() const;
    void RestorePlace();

    PolyKeyModel* keys_;
    QString part_;
    QTreeView* list_ = nullptr;
    QComboBox* kind_ = nullptr;
    QPushButton* goTo_ = nullptr;
    QPushButton* delete_ = nullptr;
    QLabel* state_ = nullptr;
    std::vector<double> kept_; // selected before the model's reset
    double keptCurrent_ = 0.0;
    bool placed_ = false;
};

} // namespace Marlox
