#include "workbench/scripting/DialogAnswers.h"

#include "script/ScriptEngine.h"

#include <QApplication>
#include <QDialog>
#include <QProgressDialog>

namespace Marlox {

namespace {

constexpr int interval = 20; // milliseconds

} // namespace

DialogAnswers::DialogAnswers()
{
    timer_.setInterval(interval);
    connect(&timer_, &QTimer::timeout, this, &DialogAnswers::Look);
}

void DialogAnswers::Queue(ScriptFunction answer)
{
    answers_.push_back(std::move(answer));
}

void DialogAnswers::Start()
{
    answers_.clear();
    problem_.clear();
    timer_.start();
}

QString DialogAnswers::Stop()
{
    timer_.stop();
    const std::size_t left = answers_.size();
    answers_.clear();
    const QString problem = TakeProblem();
    if (!problem.isEmpty() || left == 0)
        return problem;
    return left == 1 ? tr("an answer waits for a dialog that did not come")
                     : tr("%1 answers wait for dialogs that did not come").arg(left);
}

QString DialogAnswers::TakeProblem()
{
    return std::exchange(problem_, {});
}

void DialogAnswers::Look()
{
    QWidget* dialog = QApplication::activePopupWidget();
    if (!dialog)
        dialog = QApplication::activeModalWidget();
    if (!dialog || dialog == seen_ || !dialog->isVisible())
        return;
    if (qobject_cast<QProgressDialog*>(dialog))
        return; // asks nothing, and comes only when something takes long
    const QPointer<QWidget> alive(dialog);
    const QPointer<QWidget> outer = seen_;
    seen_ = dialog;
    if (answers_.empty()) {
        problem_ = QApplication::activePopupWidget()
                       ? tr("nobody answered the popup menu")
                       : tr("nobody answered the dialog \"%1\"").arg(dialog->windowTitle());
    } else {
        const ScriptFunction answer = std::move(answers_.front());
        answers_.pop_front();
        const QPointer<QWidget> before = std::exchange(current_, dialog);
        const ScriptResult result = answer();
        current_ = before;
        if (!result.ok)
            problem_ = result.Error();
    }
    // Whatever happened, the script must come out of the dialog again.
    if (alive && alive->isVisible() && !problem_.isEmpty()) {
        if (auto* modal = qobject_cast<QDialog*>(alive.data()))
            modal->reject();
        else
            alive->close();
    }
    if (!alive || !alive->isVisible())
        seen_ = outer;
}

} // namespace Marlox
