#include "workbench/viewer/DisplayConverter.h"

#include "system/evaluation/Process.h"

#include <QMetaObject>

namespace Marlox {

struct DisplayConverter::Job {
    DisplayedImage displayed;
    DisplaySettings settings;
    std::atomic<bool> cancelled{false};
    QString error;
};

DisplayConverter::DisplayConverter(QObject* parent) : QObject(parent)
{
    pool_.setMaxThreadCount(1);
}

DisplayConverter::~DisplayConverter()
{
    Cancel();
    pool_.waitForDone();
}

void DisplayConverter::Request(Ref<Image> image, const DisplaySettings& settings)
{
    pending_ = std::make_shared<Job>();
    pending_->displayed.image = std::move(image);
    pending_->settings = settings;
    pending_->displayed.channels = settings.channels;
    // The running one goes on: while values are dragged each picture that is ready should show.
    if (!running_)
        Start();
}

void DisplayConverter::Cancel()
{
    pending_.reset();
    if (running_)
        running_->cancelled = true;
}

void DisplayConverter::Start()
{
    running_ = std::move(pending_);
    pool_.start([this, job = running_] {
        WorkBehindInterface();
        DisplayedImage& displayed = job->displayed;
        displayed.picture =
            transform_.Apply(*displayed.image, job->settings, &job->cancelled, &job->error);
        displayed.opaque = OpaqueParts(displayed.picture);
        // Not delivered to a converter that is gone: its destructor waits and drops the event.
        QMetaObject::invokeMethod(
            this, [this, job] { Finish(job); }, Qt::QueuedConnection);
    });
}

void DisplayConverter::Finish(std::shared_ptr<Job> job)
{
    running_.reset();
    if (pending_)
        Start();
    if (job->cancelled)
        return;
    if (job->error.isEmpty())
        emit Converted(job->displayed);
    else
        emit Failed(job->error);
}

} // namespace Marlox
