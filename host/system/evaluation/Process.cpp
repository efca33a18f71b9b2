#include "system/evaluation/Process.h"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <utility>

#include <sys/resource.h>
#include <unistd.h>

#include <QThread>
#include <QThreadPool>

namespace Marlox {

namespace {

thread_local bool inRows = false;

/// The borrowed cores, one less than there are: the calling thread works too. Shared by all
/// renders, so that several at once do not crowd the machine. Never destroyed: a process may end
/// while a thread is still idle in it.
QThreadPool& helpers()
{
    static QThreadPool* pool = [] {
        auto* made = new QThreadPool;
        made->setMaxThreadCount(std::max(1, QThread::idealThreadCount() - 1));
        return made;
    }();
    return *pool;
}

constexpr int niceness = 10; // of threads behind the interface: about a tenth of its share

/// One call of ForRows, shared with its helpers. A helper that starts late finds no piece left and
/// never touches the body.
class RowWork {
public:
    RowWork(RenderContext& context, int count, int pieces,
            const std::function<void(int, int)>& body)
        : context_(context), body_(body), count_(count), pieces_(pieces)
    {
    }

    void Work()
    {
        inRows = true;
        for (int piece = next_.fetch_add(1); piece < pieces_; piece = next_.fetch_add(1)) {
            RunPiece(piece);
            std::lock_guard lock(mutex_);
            ++finished_;
            if (finished_ == pieces_)
                allFinished_.notify_all();
        }
        inRows = false;
    }

    void WaitAndRethrow()
    {
        std::unique_lock lock(mutex_);
        allFinished_.wait(lock, [this] { return finished_ == pieces_; });
        if (failure_)
            std::rethrow_exception(failure_);
    }

private:
    void RunPiece(int piece)
    {
        if (context_.IsCancelled() || failed_)
            return;
        try {
            const auto edge = [this](int at) { return int(std::int64_t(count_) * at / pieces_); };
            body_(edge(piece), edge(piece + 1));
            context_.SetProgress(double(++done_) / pieces_);
        } catch (...) {
            std::lock_guard lock(mutex_);
            if (!failed_.exchange(true))
                failure_ = std::current_exception();
        }
    }

    RenderContext& context_;
    const std::function<void(int, int)>& body_;
    const int count_;
    const int pieces_;
    std::atomic<int> next_{0};
    std::atomic<int> done_{0};
    std::atomic<bool> failed_{false};
    std::mutex mutex_;
    std::condition_variable allFinished_;
    std::exception_ptr failure_;
    int finished_ = 0;
};

} // namespace

void RenderContext::ForRows(int count, const std::function<void(int, int)>& body)
{
    if (count <= 0 || IsCancelled())
        return;
    if (inRows) {
        body(0, count);
        return;
    }
    const int cores = std::max(1, QThread::idealThreadCount());
    // Pieces small enough that cores end together and a cancel is heard soon.
    const int pieces = std::min(count, std::max(cores * 8, count / 64));
    const auto work = std::make_shared<RowWork>(*this, count, pieces, body);
    for (int helper = 1; helper < std::min(cores, pieces); ++helper)
        helpers().start([work] {
            WorkBehindInterface();
            work->Work();
        });
    work->Work();
    work->WaitAndRethrow();
}

void WorkBehindInterface()
{
    thread_local bool done = false;
    if (!std::exchange(done, true)) // on Linux threads have priorities of their own
        setpriority(PRIO_PROCESS, id_t(gettid()), niceness);
}

ToolProcess::~ToolProcess() = default;

Ref<Image> ToolProcess::Upstream(const MxID& input) const
{
    for (const auto& [id, image] : upstream_) {
        if (id == input)
            return image;
    }
    return nullptr;
}

void ToolProcess::SetUpstream(const MxID& input, Ref<Image> image)
{
    std::erase_if(upstream_, [&input](const auto& entry) { return entry.first == input; });
    upstream_.emplace_back(input, std::move(image));
}

} // namespace Marlox
