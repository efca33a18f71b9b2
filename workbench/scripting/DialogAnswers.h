#pragma once

#include "script/ScriptCall.h"

#include <deque>

#include <QObject>
#include <QPointer>
#include <QTimer>

class QWidget;

namespace Marlox {

/// Answers modal dialogs and popup menus while a script runs. A script that opens one waits in it,
/// so the answers are given beforehand; one that nobody answers is cancelled and reported.
class DialogAnswers : public QObject {
    Q_OBJECT
public:
    DialogAnswers();

    /// Runs once the next dialog is up.
    void Queue(ScriptFunction answer);
    /// The dialog that is being answered, or null.
    QWidget* Current() const { return current_; }

    void Start();
    void Stop();
    /// What went wrong since the last call; empty: nothing.
    QString TakeProblem();

private:
    void Look();

    QTimer timer_;
    std::deque<ScriptFunction> answers_;
    QPointer<QWidget> seen_; // the dialog dealt with last
    QPointer<QWidget> current_;
    QString problem_;
};

} // namespace Marlox
