#include "workbench/ui/Messages.h"

#include "system/controls/MessageBox.h"
#include "system/evaluation/Process.h"

#include <QCoreApplication>
#include <QPushButton>

namespace Marlox {

namespace {

QString words(const char* text)
{
    return QCoreApplication::translate("Messages", text);
}

} // namespace

void ShowError(QWidget* parent, const QString& text)
{
    MessageBox box(parent, "error", QMessageBox::Warning, text);
    box.setStandardButtons(QMessageBox::Ok);
    box.exec();
}

SaveChoice AskToSave(QWidget* parent, const QString& name)
{
    MessageBox box(parent, "asktosave", QMessageBox::Question,
                   words("Save the changes to %1?").arg(name),
                   words("Changes that are not saved are lost."));
    box.setStandardButtons(QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
    box.setDefaultButton(QMessageBox::Save);
    switch (box.exec()) {
    case QMessageBox::Save:
        return SaveChoice::Save;
    case QMessageBox::Discard:
        return SaveChoice::Discard;
    default:
        return SaveChoice::Cancel;
    }
}

RecoveryChoice AskToRecover(QWidget* parent, int count)
{
    MessageBox box(parent, "asktorecover", QMessageBox::Question,
                   words("The workbench ended unexpectedly while a document was open."),
                   count == 1 ? words("Open the copy that was kept, or discard it?")
                              : words("Open the newest of the %1 copies that were kept, or discard "
                                      "them all?")
                                    .arg(count));
    box.setStandardButtons(QMessageBox::Open | QMessageBox::Discard | QMessageBox::Cancel);
    box.button(QMessageBox::Cancel)->setText(words("Later"));
    box.setDefaultButton(QMessageBox::Open);
    switch (box.exec()) {
    case QMessageBox::Open:
        return RecoveryChoice::Open;
    case QMessageBox::Discard:
        return RecoveryChoice::Discard;
    default:
        return RecoveryChoice::Later;
    }
}

void ShowAbout(QWidget* parent)
{
    MessageBox box(parent, "about", QMessageBox::Information,
                   QString("%1 %2").arg(QCoreApplication::applicationName(),
                                        QCoreApplication::applicationVersion()),
                   words("A workbench for the standard controls: it loads them like any host and "
                         "edits real pictures with them."));
    box.setStandardButtons(QMessageBox::Ok);
    box.exec();
}

ReadingDlg::ReadingDlg(QWidget* parent, const QString& text)
    : QProgressDialog(text, QObject::tr("Cancel"), 0, 100, parent)
{
    setWindowTitle(QObject::tr("Open"));
    setWindowModality(Qt::WindowModal);
    setMinimumWidth(400);
    setAutoClose(false);
    setAutoReset(false);
    reset(); // no timer of its own
    connect(this, &QDialog::rejected, this, &QProgressDialog::cancel);
    since_.start();
}

void ReadingDlg::Watch(RenderContext& reading)
{
    constexpr int patience = 500; // milliseconds
    if (wasCanceled())
        reading.Cancel();
    if (reading.IsCancelled() || since_.elapsed() < patience) {
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        return;
    }
    show();
    setValue(int(100 * reading.Progress())); // lets the window be painted and the button be pressed
    QCoreApplication::processEvents();
}

} // namespace Marlox
