#pragma once

#include "system/evaluation/RenderJob.h"

#include <memory>

#include <QThreadPool>

namespace Marlox {

/// Single results beside those of the Renderer's queue, which it leaves alone. One is rendered at a
/// time: asking for another one gives it up. User-interface thread.
class SideRender {
public:
    SideRender();
    ~SideRender(); // cancels and waits

    /// What a job gives: from `cache`, or rendered with it, on a thread of its own. Waits `timeout`
    /// ms for that; then null, as on failure. What is not done in time goes on and is kept, so that
    /// a later call for the same has it.
    Ref<Image> ResultOf(std::unique_ptr<RenderJob> job, RenderCache& cache, int timeout);

private:
    struct Task;
    void GiveUp();

    QThreadPool pool_;
    std::shared_ptr<Task> running_;
};

} // namespace Marlox
