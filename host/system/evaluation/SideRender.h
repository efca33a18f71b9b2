#pragma once

#include "system/evaluation/RenderJob.h"

#include <memory>
#include <vector>

#include <QThreadPool>

namespace Marlox {

/// Single results beside those of the Renderer's queue, which it leaves alone. One is rendered at a
/// time, in the order in which they were asked for. User-interface thread.
class MARLOXSYSTEM_EXPORT SideRender {
    struct Task;

public:
    /// What a job gives, once it has: that of the moment at which the job was taken, whatever
    /// changed since. Copies share it; with the last one goes a render that is not done. It may
    /// outlive its SideRender.
    class Result {
    public:
        Result() = default;          // of nothing: null
        Result(Ref<Image> finished); // there already

        /// Waits, without running the event loop, until it is there or `timeout` ms have passed
        /// since it was asked for: those who ask again and again wait no longer than once. Null: it
        /// is not there yet, or failed.
        Ref<Image> Within(int timeout) const;
        bool IsPending() const; // asked for, and not known to be there
        explicit operator bool() const { return share_ != nullptr; } // was asked for

    private:
        friend class SideRender;
        struct Share;
        std::shared_ptr<Share> share_;
    };

    SideRender();
    ~SideRender(); // cancels and waits

    /// From `cache`, or rendered with it on a thread of its own.
    Result Start(std::unique_ptr<RenderJob> job, RenderCache& cache);

private:
    std::vector<std::weak_ptr<Task>> tasks_;
    QThreadPool pool_;
};

} // namespace Marlox
