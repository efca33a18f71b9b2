#include "workbench/scripting/DialogAnswers.h"

#include "script/ScriptEngine.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QMessageBox>
#include <QProgressDialog>

namespace Marlox {

namespace {

constexpr int interval = 20;    // milliseconds
constexpr int leftOpen = 2'000; // milliseconds that an answered dialog may stay up

/// As an error tells of a dialog.
QString nameOf(const QWidget& window)
{
    constexpr int longest = 300; // letters
    const auto* dialog = qobject_cast<const QDialog*>(&window);
    const QString text = dialog ? DialogText(*dialog).simplified().left(longest) : QString();
    const QString title = QStringLiteral("\"%1\"").arg(window.windowTitle());
    return text.isEmpty() ? title : QStringLiteral("%1 (%2)").arg(title, text);
}

/// However it takes that, the script must come out of it again.
void cancel(QWidget& window)
{
    auto* modal = qobject_cast<QDialog*>(&window);
    if (!modal) {
        window.close();
        return;
    }
    const QPointer<QDialog> alive(modal);
    modal->reject();
    if (alive && alive->isVisible())
        alive->done(QDialog::Rejected);
}

} // namespace

QString DialogText(const QDialog& dialog)
{
    if (const auto* box = qobject_cast<const QMessageBox*>(&dialog))
        return (box->text() + ' ' + box->informativeText()).trimmed();
    QStringList texts;
    for (const QLabel* label : dialog.findChildren<QLabel*>())
        texts.append(label->text());
    return texts.join('\n');
}

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

void DialogAnswers::Fail(const QString& problem)
{
    if (problem_.isEmpty()) // what comes of the first fault is of no interest
        problem_ = problem;
}

void DialogAnswers::Look()
{
    QWidget* dialog = QApplication::activePopupWidget();
    if (!dialog)
        dialog = QApplication::activeModalWidget();
    if (!dialog || !dialog->isVisible() || qobject_cast<QProgressDialog*>(dialog))
        return; // progress asks nothing, and comes only when something takes long
    if (dialog == seen_)
        return CancelLeftOpen();
    const QPointer<QWidget> alive(dialog);
    const QPointer<QWidget> outer = std::exchange(seen_, dialog);
    sinceDealt_.start();
    // A timer does not run within itself, and the answer may open another dialog.
    QTimer within;
    within.setInterval(interval);
    connect(&within, &QTimer::timeout, this, &DialogAnswers::Look);
    within.start();
    const QString problem = Deal(*dialog);
    if (!problem.isEmpty())
        Fail(problem);
    if (alive && alive->isVisible() && !problem_.isEmpty())
        cancel(*alive);
    if (!alive || !alive->isVisible())
        seen_ = outer;
    sinceDealt_.start();
}

/// Returns what is wrong.
QString DialogAnswers::Deal(QWidget& dialog)
{
    if (answers_.empty())
        return QApplication::activePopupWidget()
                   ? tr("nobody answered the popup menu")
                   : tr("nobody answered the dialog %1").arg(nameOf(dialog));
    const ScriptFunction answer = std::move(answers_.front());
    answers_.pop_front();
    const QPointer<QWidget> before = std::exchange(current_, &dialog);
    const ScriptResult result = answer();
    current_ = before;
    return result.ok ? QString() : result.Error();
}

/// A dialog that its answer leaves up is never answered again.
void DialogAnswers::CancelLeftOpen()
{
    if (current_ == seen_ || !sinceDealt_.hasExpired(leftOpen) || !seen_->isModal())
        return;
    Fail(tr("the answer left the dialog %1 open").arg(nameOf(*seen_)));
    cancel(*seen_);
}

} // namespace Marlox
