#include "system/evaluation/Renderer.h"

#include "system/document/MarloxDoc.h"
#include "system/evaluation/ProxyChoice.h"
#include "system/evaluation/RenderCache.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

namespace Marlox {

namespace {

constexpr int graceMs = 200;        // a running render may still finish within
constexpr int progressFromMs = 500; // shorter renders tell nothing
constexpr int progressEveryMs = 100;
constexpr int restMs = 250; // a hand that holds still so long looks at the picture

} // namespace

class Renderer::Private {
public:
    Private(Renderer& renderer, MarloxDoc& document) : document_(document), renderer_(renderer)
    {
        request_.setSingleShot(true);
        cancel_.setSingleShot(true);
        rest_.setSingleShot(true);
        progress_.setInterval(progressEveryMs);
        connect(&request_, &QTimer::timeout, &renderer, [this] { Submit(); });
        connect(&cancel_, &QTimer::timeout, &renderer, [this] { CancelRunning(); });
        connect(&progress_, &QTimer::timeout, &renderer, [this] { TellProgress(); });
        connect(&rest_, &QTimer::timeout, &renderer, [this] { RequestFull(); });
        ListenToDocument();
    }

    ~Private()
    {
        {
            std::lock_guard lock(mutex_);
            stop_ = true;
            waiting_.reset();
            if (running_)
                running_->Context().Cancel();
        }
        wake_.notify_all();
        if (thread_.joinable())
            thread_.join();
    }

    void Request()
    {
        rest_.stop();
        request_.start(0);
    }

    void RequestFull()
    {
        fullOnce_ = true;
        Request();
    }

    void CancelAll()
    {
        request_.stop();
        rest_.stop();
        fullOnce_ = false;
        std::lock_guard lock(mutex_);
        waiting_.reset();
        if (running_)
            running_->Context().Cancel();
    }

    bool IsBusy() const
    {
        std::lock_guard lock(mutex_);
        return request_.isActive() || waiting_ || running_ || undelivered_ > 0;
    }

    MarloxDoc& document_;
    Operator* viewed_ = nullptr;
    ProxyChoice proxy_;
    RenderResult last_;
    RenderCache cache_;
    SideRender side_; // behind the cache that it writes to

private:
    /// What a job's time tells something of.
    struct Size {
        int divisor = 1;
        bool inGesture = false;
        bool atRest = false; // of a gesture, for a hand that holds still
    };
    void ListenToDocument();
    void Submit();
    void CancelRunning();
    void TellProgress();
    void Deliver(const RenderResult& result, const Size& size, double seconds);
    void RenderLoop();

    Renderer& renderer_;
    QTimer request_; // gathers the requests of one turn of the event loop
    QTimer cancel_;  // ends the grace of the running render
    QTimer progress_;
    QTimer rest_; // in a gesture
    bool fullOnce_ = false;
    u64 serial_ = 0;
    u64 gone_ = 0; // results up to this one are of a document that was cleared

    mutable std::mutex mutex_; // for all that follows
    std::condition_variable wake_;
    std::unique_ptr<RenderJob> waiting_;
    RenderJob* running_ = nullptr; // owned by the thread
    QElapsedTimer runningFor_;
    u64 waitingSerial_ = 0;
    Size waitingSize_;
    Size runningSize_;
    int undelivered_ = 0; // results under way to the user-interface thread
    bool stop_ = false;
    std::thread thread_; // started with the first job
};

void Renderer::Private::ListenToDocument()
{
    const auto request = [this] { Request(); };
    connect(&document_, &MarloxDoc::ToolAdded, &renderer_, request);
    connect(&document_, &MarloxDoc::ToolMoved, &renderer_, request);
    connect(&document_, &MarloxDoc::ToolChanged, &renderer_, request);
    connect(&document_, &MarloxDoc::InputAdded, &renderer_, request);
    connect(&document_, &MarloxDoc::InputRemoved, &renderer_, request);
    connect(&document_, &MarloxDoc::CurrentTimeChanged, &renderer_, request);
    connect(&document_, &MarloxDoc::FrameRangeChanged, &renderer_, request); // and the rate
    connect(&document_, &MarloxDoc::AutoProxyChanged, &renderer_, [this](bool on) {
        if (on)
            proxy_.Begin();
        else
            Request(); // what is shown is a proxy perhaps
    });
    connect(&document_, &MarloxDoc::SyncRenderRequested, &renderer_, [this] { RequestFull(); });
    connect(&document_, &MarloxDoc::ToolRemoved, &renderer_, [this](Operator* tool) {
        if (viewed_ == tool)
            viewed_ = nullptr;
        Request();
    });
    connect(&document_, &MarloxDoc::Cleared, &renderer_, [this] {
        viewed_ = nullptr;
        last_ = {}; // of tools that are gone, as is what is still being rendered
        gone_ = serial_;
        Request();
    });
    connect(&document_, &MarloxDoc::InputChanged, &renderer_, [this](Input* input) {
        if (!input->GetAttrB(IA_Passive))
            Request();
    });
}

void Renderer::Private::Submit()
{
    const bool sync = std::exchange(fullOnce_, false);
    const bool inGesture = document_.IsAutoProxy();
    const int divisor = inGesture && !sync ? proxy_.Divisor() : 1;
    auto job = RenderJob::Take(document_, document_.CurrentTime(), 1.0 / divisor, viewed_);
    std::lock_guard lock(mutex_);
    waiting_ = std::move(job);
    waitingSize_ = {divisor, inGesture, inGesture && sync};
    waitingSerial_ = ++serial_;
    if (running_) {
        const qint64 left = graceMs - runningFor_.elapsed();
        // The full render at the end of a gesture does not wait for a proxy, nor the proxy for what
        // was rendered while the hand held still.
        cancel_.start(sync || runningSize_.atRest ? 0 : int(std::max<qint64>(0, left)));
    }
    if (!thread_.joinable())
        thread_ = std::thread([this] { RenderLoop(); });
    wake_.notify_all();
    progress_.start();
}

void Renderer::Private::CancelRunning()
{
    std::lock_guard lock(mutex_);
    if (running_ && waiting_)
        running_->Context().Cancel();
}

void Renderer::Private::TellProgress()
{
    QString toolName;
    double fraction = 0.0;
    {
        std::lock_guard lock(mutex_);
        if (!running_ && !waiting_)
            progress_.stop();
        if (!running_ || running_->Context().IsCancelled() ||
            runningFor_.elapsed() < progressFromMs)
            return;
        toolName = running_->CurrentToolName();
        fraction = running_->Progress();
    }
    emit renderer_.Progress(toolName, fraction);
}

void Renderer::Private::Deliver(const RenderResult& result, const Size& size, double seconds)
{
    {
        std::lock_guard lock(mutex_);
        --undelivered_;
    }
    // Kept results and renders that were cut off early do not tell how long one takes.
    if (result.rendered && (!result.cancelled || seconds * 1000.0 >= graceMs))
        proxy_.Took(size.divisor, seconds, size.inGesture && !size.atRest);
    if (result.cancelled || result.serial <= gone_)
        return;
    last_ = result;
    if (result.proxy && result.serial == serial_ && document_.IsAutoProxy())
        rest_.start(restMs);
    emit renderer_.Finished(result);
}

/// The render thread: takes the waiting job, runs it, posts its result.
void Renderer::Private::RenderLoop()
{
    WorkBehindInterface();
    std::unique_lock lock(mutex_);
    for (;;) {
        wake_.wait(lock, [this] { return stop_ || waiting_; });
        if (stop_)
            return;
        const std::unique_ptr<RenderJob> job = std::move(waiting_);
        const u64 serial = waitingSerial_;
        const Size size = waitingSize_;
        runningSize_ = size;
        running_ = job.get();
        runningFor_.start();
        QMetaObject::invokeMethod(
            &renderer_, [this, serial] { emit renderer_.Started(serial); }, Qt::QueuedConnection);
        lock.unlock();

        RenderResult result = job->Run(&cache_);
        result.serial = serial;

        lock.lock();
        running_ = nullptr;
        ++undelivered_;
        const double seconds = double(runningFor_.nsecsElapsed()) * 1e-9;
        QMetaObject::invokeMethod(
            &renderer_, [this, result, size, seconds] { Deliver(result, size, seconds); },
            Qt::QueuedConnection);
    }
}

Renderer::Renderer(MarloxDoc& document, QObject* parent)
    : QObject(parent), d_(std::make_unique<Private>(*this, document))
{
    qRegisterMetaType<RenderResult>();
}

Renderer::~Renderer() = default;

void Renderer::SetViewedTool(Operator* tool)
{
    if (tool == d_->viewed_)
        return;
    d_->viewed_ = tool;
    Request();
}

Operator* Renderer::ViewedTool() const
{
    return d_->viewed_;
}

void Renderer::Request()
{
    d_->Request();
}

void Renderer::Cancel()
{
    d_->CancelAll();
}

bool Renderer::IsBusy() const
{
    return d_->IsBusy();
}

const RenderResult& Renderer::LastResult() const
{
    return d_->last_;
}

void Renderer::SetProxyDivisor(int divisor)
{
    d_->proxy_.SetCoarsest(divisor);
}

void Renderer::SetProxyGoal(double seconds)
{
    d_->proxy_.SetGoal(seconds);
}

bool Renderer::WaitUntilIdle(int timeout)
{
    QElapsedTimer waited;
    waited.start();
    QTimer wake; // the end of a cancelled render posts nothing that would end the wait for sure
    wake.start(5);
    while (IsBusy()) {
        if (waited.hasExpired(timeout))
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

SideRender::Result Renderer::ResultOf(const Operator* tool)
{
    const MarloxDoc& document = d_->document_;
    return d_->side_.Start(
        RenderJob::Take(document, document.CurrentTime(), 1.0, tool ? tool : d_->viewed_),
        d_->cache_);
}

void Renderer::SetCacheLimit(std::size_t bytes)
{
    d_->cache_.SetLimit(bytes);
}

std::size_t Renderer::CacheSize() const
{
    return d_->cache_.Size();
}

} // namespace Marlox
