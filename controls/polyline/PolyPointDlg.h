#pragma once

#include "system/controls/MxDialog.h"

#include <array>
#include <optional>

#include <QPointer>

class QLabel;
class QPushButton;

namespace Marlox {

class MarloxDoc;
class PolyLineControl;
class TimeCodeEdit;

/// The "Point Editor": the numbers of the selected point (the one selected last), which stay beside
/// the work and follow the selection, the shape and the time. Places are pixels of the image as the
/// tool puts the shape there, handles the way from their point to their ends; both take arithmetic.
/// Each number that is committed is one undo entry. E and Escape close it; its place on the screen
/// is kept in the preferences.
///
/// It belongs to its overlay, which deletes it at once. With a parent it may go before, so hold it
/// by a QPointer.
class PolyPointDlg final : public MxDialog {
    Q_OBJECT
public:
    explicit PolyPointDlg(PolyLineControl& control, QWidget* parent = nullptr);
    ~PolyPointDlg() override;

    /// Shows what the overlay has now, while it is visible; closes in the mode Done.
    void Follow();

public slots:
    void OnNumber();
    void OnPrevious();
    void OnNext();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    /// The number fields of a point, in the order of the keyboard.
    enum Field { X, Y, InX, InY, OutX, OutY, Tension, FieldCount };
    static constexpr const char* names[FieldCount] = {"X",    "Y",    "InX",    "InY",
                                                      "OutX", "OutY", "Tension"};
    using Numbers = std::array<double, FieldCount>;

    TimeCodeEdit* MakeEdit(const char* name, const QString& spoken, const QString& help);
    QLabel* MakeLabel(const char* name, const QString& text, QWidget* buddy);
    void MakeFields();
    bool IsFree() const;      // the overlay's tool is there and takes edits of the point
    bool IsFollowing() const; // it is moved by another point
    int Index() const;        // of the point; -1: none
    std::optional<Numbers> Read() const;
    void StartDrag(TimeCodeEdit* edit);
    void EndDrag();
    void Commit(Field field);
    void Move(Field field, double by);
    void SetTension(double tension);
    void GoTo(int index);
    void ShowKind(bool hasHandles);
    bool TakeKey(int key, bool alone);

    PolyLineControl& control_;
    std::array<TimeCodeEdit*, FieldCount> edits_{};
    TimeCodeEdit* number_ = nullptr;
    std::array<QLabel*, 5> labels_{}; // number, place, in, out, tension
    QPushButton* previous_ = nullptr;
    QPushButton* next_ = nullptr;
    QLabel* state_ = nullptr;
    std::optional<bool> showsHandles_;
    QPointer<MarloxDoc> dragged_; // its undo nest is open for a drag in a field
    bool placed_ = false;
};

} // namespace Marlox
