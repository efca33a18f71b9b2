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
    /// What is wrong at a script's end (a dialog that nobody answered, an answer without a dialog);
    /// empty: nothing.
    QString Stop();
    /// What went wrong since the last call; empty: nothing.
    QString TakeProblem();

    /// Deals with a dialog that is up. Dialogs wait for this, popup menus do not: it is also called
    /// after every event of a script.
    void Look();

private:
    QTimer timer_;
    std::deque<ScriptFunction> answers_;
    QPointer<QWidget> seen_; // the dialog dealt with last
    QPointer<QWidget> current_;
    QString problem_;
};

} // namespace Marlox
