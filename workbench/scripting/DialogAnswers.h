#pragma once

#include "script/ScriptCall.h"

#include <deque>

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>

class QDialog;
class QWidget;

namespace Marlox {

/// What a dialog says: a message with its details, else all of its labels.
QString DialogText(const QDialog& dialog);

/// Answers modal dialogs and popup menus while a script runs. A script that opens one waits in it,
/// so the answers are given beforehand; one that nobody answers, or that is still up some time
/// after its answer, is cancelled and reported.
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
    QString Deal(QWidget& dialog);
    void CancelLeftOpen();
    void Fail(const QString& problem);

    QTimer timer_;
    std::deque<ScriptFunction> answers_;
    QPointer<QWidget> seen_; // the dialog dealt with last
    QElapsedTimer sinceDealt_;
    QPointer<QWidget> current_;
    QString problem_;
};

} // namespace Marlox
