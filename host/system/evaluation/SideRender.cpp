#include "system/evaluation/SideRender.h"

#include "system/evaluation/RenderCache.h"

#include <algorithm>
#include <chrono>
#include <future>

#include <QElapsedTimer>

namespace Marlox {

struct SideRender::Task {
    explicit Task(std::unique_ptr<RenderJob> taken) : job(std::move(taken)) {}

    void Run(RenderCache& cache)
    {
        WorkBehindInterface();
        result.set_value(job->Run(&cache).image);
    }

    const std::unique_ptr<RenderJob> job;
    std::promise<Ref<Image>> result;
};

/// What the copies of a result share; the render has its task besides.
struct SideRender::Result::Share {
    explicit Share(Ref<Image> image) : finished(std::move(image)) {}
    explicit Share(std::shared_ptr<Task> started)
        : task(std::move(started)), done(task->result.get_future())
    {
        asked.start();
    }
    ~Share()
    {
        if (task)
            task->job->Context().Cancel();
    }

    Ref<Image> finished;
    std::shared_ptr<Task> task; // until it is known to be done
    std::future<Ref<Image>> done;
    QElapsedTimer asked;
};

SideRender::Result::Result(Ref<Image> finished)
    : share_(std::make_shared<Share>(std::move(finished)))
{
}

Ref<Image> SideRender::Result::Within(int timeout) const
{
    if (!share_)
        return nullptr;
    if (share_->done.valid()) {
        const std::chrono::milliseconds left(
            std::max<qint64>(0, timeout - share_->asked.elapsed()));
        if (share_->done.wait_for(left) != std::future_status::ready)
            return nullptr;
        share_->finished = share_->done.get();
        share_->task.reset();
    }
    return share_->finished;
}

bool SideRender::Result::IsPending() const
{
    return share_ && share_->done.valid();
}

SideRender::SideRender()
{
    pool_.setMaxThreadCount(1);
}

SideRender::~SideRender()
{
    for (const std::weak_ptr<Task>& task : tasks_) {
        if (const std::shared_ptr<Task> left = task.lock())
            left->job->Context().Cancel();
    }
    pool_.waitForDone();
}

SideRender::Result SideRender::Start(std::unique_ptr<RenderJob> job, RenderCache& cache)
{
    if (Ref<Image> kept = cache.Find(job->Key()))
        return kept;
    const auto task = std::make_shared<Task>(std::move(job));
    std::erase_if(tasks_, [](const std::weak_ptr<Task>& old) { return old.expired(); });
    tasks_.push_back(task);
    Result result;
    result.share_ = std::make_shared<Result::Share>(task);
    pool_.start([task, &cache] { task->Run(cache); });
    return result;
}

} // namespace Marlox
