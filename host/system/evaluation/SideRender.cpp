#include "system/evaluation/SideRender.h"

#include "system/evaluation/RenderCache.h"

#include <chrono>
#include <future>

namespace Marlox {

struct SideRender::Task {
    explicit Task(std::unique_ptr<RenderJob> taken) : job(std::move(taken)), key(job->Key()) {}

    void Run(RenderCache& cache)
    {
        WorkBehindInterface();
        result.set_value(job->Run(&cache).image);
    }

    std::unique_ptr<RenderJob> job;
    const std::string key;
    std::promise<Ref<Image>> result;
    std::shared_future<Ref<Image>> done = result.get_future();
};

SideRender::SideRender()
{
    pool_.setMaxThreadCount(1);
}

SideRender::~SideRender()
{
    GiveUp();
    pool_.waitForDone();
}

void SideRender::GiveUp()
{
    if (running_)
        running_->job->Context().Cancel();
    running_.reset();
}

Ref<Image> SideRender::ResultOf(std::unique_ptr<RenderJob> job, RenderCache& cache, int timeout)
{
    if (Ref<Image> kept = cache.Find(job->Key()))
        return kept;
    if (!running_ || running_->key.empty() || running_->key != job->Key()) {
        GiveUp();
        running_ = std::make_shared<Task>(std::move(job));
        pool_.start([task = running_, &cache] { task->Run(cache); });
    }
    if (running_->done.wait_for(std::chrono::milliseconds(timeout)) != std::future_status::ready)
        return nullptr;
    const Ref<Image> image = running_->done.get();
    running_.reset();
    return image;
}

} // namespace Marlox
