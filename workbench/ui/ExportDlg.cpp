#include "workbench/ui/ExportDlg.h"

#include "system/evaluation/Renderer.h"
#include "workbench/images/ImageFile.h"
#include "workbench/images/Sequence.h"
#include "workbench/ui/Session.h"

#include <chrono>
#include <future>

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace Marlox {

namespace {

QSpinBox* frameBox(double frame, const char* name)
{
    auto* box = new QSpinBox;
    box->setObjectName(name);
    box->setRange(-1000000, 1000000);
    box->setValue(int(frame));
    return box;
}

/// Beside the document, by its name.
QString proposedPattern(const MarloxDoc& document)
{
    const QFileInfo file(document.FilePath());
    return document.FilePath().isEmpty()
               ? QString()
               : file.absoluteDir().filePath(file.completeBaseName() + ".####.exr");
}

} // namespace

ExportDlg::ExportDlg(Session& session, QWidget* parent)
    : QDialog(parent), session_(session), pattern_(new QLineEdit),
      first_(frameBox(session.Document().FirstFrame(), "first")),
      last_(frameBox(session.Document().LastFrame(), "last")), progress_(new QProgressBar),
      state_(new QLabel), start_(new QPushButton(tr("Render")))
{
    setObjectName("export");
    setWindowTitle(tr("Render to Files"));
    setMinimumWidth(480);
    pattern_->setObjectName("pattern");
    pattern_->setText(proposedPattern(session.Document()));
    pattern_->setPlaceholderText(tr("render.####.exr"));
    pattern_->setToolTip(tr("#### stands for the frame number, one # a digit"));
    progress_->setObjectName("progress");
    progress_->setTextVisible(false);
    progress_->setFixedHeight(4);
    progress_->hide();
    state_->setObjectName("state");
    state_->setWordWrap(true);
    state_->setMinimumHeight(2 * state_->fontMetrics().lineSpacing());
    state_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    start_->setObjectName("start");
    start_->setDefault(true);

    auto* browse = new QPushButton(tr("Browse..."));
    connect(browse, &QPushButton::clicked, this, &ExportDlg::Browse);
    auto* file = new QHBoxLayout;
    file->addWidget(pattern_, 1);
    file->addWidget(browse);
    auto* range = new QHBoxLayout;
    range->addWidget(first_);
    range->addWidget(new QLabel(tr("to")));
    range->addWidget(last_);
    range->addStretch();
    auto* form = new QFormLayout;
    form->addRow(tr("Files"), file);
    form->addRow(tr("Frames"), range);
    auto* buttons = new QDialogButtonBox;
    buttons->addButton(start_, QDialogButtonBox::ActionRole);
    close_ = buttons->addButton(tr("Close"), QDialogButtonBox::RejectRole);
    connect(start_, &QPushButton::clicked, this, &ExportDlg::Start);
    connect(buttons, &QDialogButtonBox::rejected, this, &ExportDlg::reject);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 16, 16, 16);
    layout->setSpacing(16);
    layout->addLayout(form);
    layout->addWidget(progress_);
    layout->addWidget(state_);
    layout->addWidget(buttons);
}

void ExportDlg::Browse()
{
    const QString path = QFileDialog::getSaveFileName(
        this, tr("Render to"), pattern_->text(),
        tr("Images (*.%1)").arg(WritableImageEndings().join(" *.")), nullptr,
        QFileDialog::HideNameFilterDetails | QFileDialog::DontConfirmOverwrite);
    if (!path.isEmpty())
        pattern_->setText(path);
}

/// Why the fields do not make a job; empty: they do.
QString ExportDlg::Objection() const
{
    const QString pattern = pattern_->text().trimmed();
    if (pattern.isEmpty())
        return tr("Say which files to write, for example render.####.exr.");
    if (last_->value() < first_->value())
        return tr("The last frame lies before the first.");
    if (last_->value() > first_->value() && !Sequence::FromPattern(pattern).IsSequence())
        return tr("%1 has no place for the frame number: write #### into it to render more than "
                  "one frame.")
            .arg(pattern);
    return {};
}

void ExportDlg::Start()
{
    if (running_)
        return;
    state_->setText(Objection());
    if (!state_->text().isEmpty())
        return;
    ShowRunning(true);
    cancelled_ = false;
    progress_->setRange(0, last_->value() - first_->value() + 1);
    progress_->setValue(0);
    QString error;
    int frame = first_->value();
    for (; frame <= last_->value() && !cancelled_; ++frame) {
        state_->setText(tr("Rendering frame %1").arg(frame));
        if (!RenderFrame(frame, &error))
            break;
        progress_->setValue(frame - first_->value() + 1);
    }
    ShowRunning(false);
    const int written = frame - first_->value();
    if (cancelled_)
        state_->setText(tr("Cancelled before frame %1.").arg(frame));
    else if (!error.isEmpty())
        state_->setText(tr("Frame %1: %2").arg(frame).arg(error));
    else
        state_->setText(written == 1 ? tr("1 frame written.")
                                     : tr("%1 frames written.").arg(written));
}

void ExportDlg::ShowRunning(bool running)
{
    running_ = running;
    for (QWidget* field : std::initializer_list<QWidget*>{pattern_, first_, last_, start_})
        field->setEnabled(!running);
    close_->setText(running ? tr("Cancel") : tr("Close"));
    progress_->setVisible(running);
    close_->setFocus(); // the disabled fields have let it go
}

bool ExportDlg::RenderFrame(int frame, QString* error)
{
    const std::unique_ptr<RenderJob> job = RenderJob::Take(session_.Document(), double(frame), 1.0);
    const QString path = Sequence::FromPattern(pattern_->text().trimmed()).FramePath(frame);
    auto done = std::async(std::launch::async, [&job, &path, error] {
        const RenderResult result = job->Run();
        if (!result.image) {
            *error = result.error.isEmpty() ? tr("there is no picture") : result.error;
            return false;
        }
        return WriteImage(*result.image, path, error);
    });
    while (done.wait_for(std::chrono::milliseconds(20)) != std::future_status::ready) {
        QCoreApplication::processEvents();
        if (cancelled_)
            job->Context().Cancel();
    }
    return done.get();
}

void ExportDlg::reject()
{
    if (running_)
        cancelled_ = true;
    else
        QDialog::reject();
}

} // namespace Marlox
