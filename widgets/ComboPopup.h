#pragma once

#include "widgets/ComboList.h"

#include <QElapsedTimer>
#include <QWidget>

class QScrollBar;

namespace Marlox {

/// The open list of a combo box: a popup window with a row for each entry, a tick at the chosen
/// one, and one row lit. It changes nothing by itself: it tells which row was chosen.
///
/// The pointer lights the row below it, and the release of the left button chooses, also of a press
/// that opened the list. Up, Down, the page keys, Home and End light others, letters look for one
/// that starts with them, Return and Space choose the lit one (Space goes on with a search that is
/// under way); Escape, Tab, F4, Alt+Up, Alt+Down and a press elsewhere close the list. The wheel
/// scrolls.
class ComboPopup : public QWidget {
    Q_OBJECT
    Q_PROPERTY(int lit READ Lit)
    Q_PROPERTY(int chosen READ Chosen)
    Q_PROPERTY(int firstShown READ FirstShown)
    Q_PROPERTY(QStringList entries READ EntryTexts)
public:
    /// Below `field`, which becomes its parent; the chosen entry is lit (none: none is).
    ComboPopup(QWidget& field, ComboModel model, int chosen);
    ~ComboPopup() override;

    const ComboModel& Model() const { return model_; }
    const ComboList& List() const { return list_; }
    int Lit() const { return list_.Lit(); }
    int Chosen() const { return chosen_; }
    int FirstShown() const { return list_.First(); }
    QStringList EntryTexts() const;
    QRect RowRect(int row) const; // pixels of the popup, also of rows out of view

    void SetChosen(int place);
    void Light(int row);
    /// Letters of the keyboard: lights the entry that starts with them.
    void Type(const QString& letters);
    /// Closes the list, then tells.
    void Choose(int row);
    /// Whether a key types letters, rather than being a command.
    static bool IsLetters(const QKeyEvent& event);

signals:
    void EntryChosen(int place);
    void Closed();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    int WantedWidth() const;
    bool LightByKey(int key);
    void LightAt(const QPoint& at);
    void ShowLit();
    QString ShownText(int row) const;
    void PaintRow(QPainter& painter, int row) const;

    QWidget& field_;
    ComboModel model_;
    ComboPlace place_;
    ComboList list_;
    int chosen_;
    ComboSearch search_;
    QElapsedTimer clock_;
    QScrollBar* bar_ = nullptr; // of lists that scroll
    int wheelRest_ = 0;
};

} // namespace Marlox
