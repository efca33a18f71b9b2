#pragma once

#include "widgets/ComboModel.h"
#include "widgets/CustomController.h"

#include <QColor>
#include <QStringList>

namespace Marlox {

class ComboPopup;

/// The drawn combo box: shows one of several entries, and opens their list to choose another.
///
/// A press, Space, F4, Alt+Down or Alt+Up opens the list; letters open it at the entry that starts
/// with them (see ComboPopup). While it is closed, Up and Down go to the entries beside, the page
/// keys several entries further, Home and End to the ends, and the wheel one entry a notch. Left
/// and Right are left to others. What is done until a key is released, or until the wheel rests, is
/// one undo entry (CustomController).
///
/// A value that is none of the entries is shown as such until one is chosen.
class CustomCombo : public CustomController {
    Q_OBJECT
    Q_PROPERTY(int index READ Index WRITE SetIndex NOTIFY IndexChanged USER true)
    Q_PROPERTY(QString text READ Text)
    Q_PROPERTY(QStringList entries READ EntryTexts)
    Q_PROPERTY(bool open READ IsListOpen)
public:
    static constexpr int none = ComboModel::none;

    explicit CustomCombo(QWidget* parent = nullptr);
    ~CustomCombo() override;

    const ComboModel& Model() const { return model_; }
    /// An open list of other entries is closed. What is shown stays until it is shown anew.
    void SetEntries(std::vector<ComboEntry> entries);
    QStringList EntryTexts() const;

    /// The entry shown; `none` for a value that is no entry's.
    int Index() const { return index_; }
    /// Stores an entry, repaints and sends IndexChanged, if it is another than the present one.
    void SetIndex(int index);
    /// Store and repaint, send nothing. The second shows a value that no entry has.
    void ShowIndex(int index);
    void ShowStranger(const QString& value);
    /// What is shown, in full.
    QString Text() const;
    bool IsStranger() const { return index_ == none; }

    /// A line at the foot of the field that tells of keys, or of an expression, which the text and
    /// the ground then tell too; invalid colours take them away.
    void SetStateColors(const QColor& line, const QColor& text = {}, const QColor& ground = {});

    void OpenList(); // does nothing while locked or disabled, or without entries
    void CloseList();
    bool IsListOpen() const { return popup_ != nullptr; }
    ComboPopup* List() const { return popup_; } // null while it is closed

    std::size_t SizeOf() const override { return sizeof(*this); }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    void IndexChanged(int index);
    /// While locked: the user tried to choose.
    void Refused();

protected:
    void StepBy(Way way, int level) override;
    std::optional<Way> WayOf(int key) const override;
    int LevelOf(int key, Qt::KeyboardModifiers modifiers) const override;
    bool IsHeld() const override { return IsListOpen(); }
    void SetFine(bool) override {}
    void LoseGesture() override;

    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    bool IsOurs(const QKeyEvent& event) const;
    void Store(int index, const QString& stranger);
    QRect TextRect() const;
    QColor TextColor() const;
    bool IsTextCut() const;
    QString ToolTipText() const;

    ComboModel model_;
    int index_ = none;
    QString stranger_;
    QColor stateLine_;
    QColor stateText_;
    QColor stateGround_;
    ComboPopup* popup_ = nullptr; // a child, while it is open
};

} // namespace Marlox
