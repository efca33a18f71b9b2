#include "workbench/ui/ExportDlg.h"

#include "system/evaluation/Renderer.h"
#include "workbench/images/ImageFile.h"
#include "workbench/images/Sequence.h"
#include "workbench/ui/Session.h"

#include <chrono>
#include <future>

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
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
    pattern_->setPlaceholderText(tr("render.####.exr"));
    pattern_->setToolTip(tr("#### stands for the frame number, one # a digit"));
    progress_->setObjectName("progress");
    progress_->hide();
    state_->setObjectName("state");
    state_->setWordWrap(true);
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
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    buttons->addButton(start_, QDialogButtonBox::ActionRole);
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
    const QString path = QFileDialog::getSaveFileName(this, tr("Render to"), pattern_->text(),
                                                      tr("Images (*.exr *.dpx *.tif *.png *.jpg)"));
    if (!path.isEmpty())
        pattern_->setText(path);
}

void ExportDlg::Start()
{
    if (running_ || pattern_->text().trimmed().isEmpty())
        return;
    if (last_->value() < first_->value()) {
        state_->setText(tr("The last frame lies before the first."));
        return;
    }
    running_ = true;
    cancelled_ = false;
    start_->setEnabled(false);
    progress_->setRange(0, last_->value() - first_->value() + 1);
    progress_->setValue(0);
    progress_->show();
    QString error;
    int frame = first_->value();
    for (; frame <= last_->value() && !cancelled_; ++frame) {
        state_->setText(tr("Rendering frame %1").arg(frame));
        if (!RenderFrame(frame, &error))
            break;
        progress_->setValue(frame - first_->value() + 1);
    }
    running_ = false;
    start_->setEnabled(true);
    if (!error.isEmpty())
        state_->setText(error);
    else if (cancelled_)
        state_->setText(tr("Cancelled before frame %1.").arg(frame));
    else
        state_->setText(tr("%n frame(s) written.", nullptr, progress_->maximum()));
}

bool ExportDlg::RenderFrame(int frame, QString* error)
{
    const std::unique_ptr<RenderJob> job = RenderJob::Take(session_.Document(), double(frame), 1.0);
    const QString path = Sequence::FromPattern(pattern_->text().trimmed()).FramePath(frame);
    auto done = std::async(std::launch::async, [&job, &path, error] {
        const RenderResult result = job->Run();
        if (!result.image) {
            *error = result.error;
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
