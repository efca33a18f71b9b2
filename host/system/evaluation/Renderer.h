#pragma once

#include "system/evaluation/RenderJob.h"
#include "system/evaluation/SideRender.h"

#include <memory>

#include <QObject>

namespace Marlox {

class MarloxDoc;
class Operator;

/// Renders a document off the user-interface thread. The newest request wins: a newer one replaces
/// the waiting one and cancels the running one, which is given a fifth of a second from its start
/// to finish all the same, so that a drag shows pictures while it goes on. While a tool has
/// automatic proxy on, renders are at the finest resolution that keeps up with the hand (see
/// ProxyChoice); after MarloxDoc::SyncRender, and when the hand holds still, at full. The
/// interface never waits. Results of single tools are kept, within a limit, for renders that share
/// them.
///
/// It asks by itself whenever tools, inputs (but passive ones) or the current time change.
class MARLOXSYSTEM_EXPORT Renderer : public QObject {
    Q_OBJECT
public:
    explicit Renderer(MarloxDoc& document, QObject* parent = nullptr);
    ~Renderer() override; // cancels and joins

    /// The tool whose output is wanted; null: the last one, also after the tool is gone.
    void SetViewedTool(Operator* tool);
    Operator* ViewedTool() const;
    /// Asks for a new render at the document's current time. Requests made in one turn of the event
    /// loop become one.
    void Request();
    void Cancel();
    bool IsBusy() const;
    const RenderResult& LastResult() const;
    /// The coarsest resolution while automatic proxy is on, as a divisor (default 4).
    void SetProxyDivisor(int divisor);
    /// How long a render may take while automatic proxy is on before a coarser resolution is
    /// taken, seconds (default 1/30); 0: always the coarsest.
    void SetProxyGoal(double seconds);
    /// Waits, running the event loop, until nothing is left to render; false after `timeout` ms.
    /// For scripts and tests; the interface never calls it.
    bool WaitUntilIdle(int timeout);
    /// The output of a tool (null: what is viewed) at full resolution for the present values and
    /// time, for those who look at its pixels: as it was kept, or rendered beside the requests,
    /// which it leaves alone. Null on failure.
    SideRender::Result ResultOf(const Operator* tool = nullptr);
    /// The memory for kept results (by default a quarter of the machine's, at most 2 GiB).
    void SetCacheLimit(std::size_t bytes);
    std::size_t CacheSize() const; // bytes

signals:
    void Started(quint64 serial);
    void Finished(const Marlox::RenderResult& result); // not for cancelled renders
    /// Sent from half a second on, at most ten times a second; fraction 0 to 1.
    void Progress(const QString& toolName, double fraction);

private:
    class Private;
    std::unique_ptr<Private> d_;
};

} // namespace Marlox

Q_DECLARE_METATYPE(Marlox::RenderResult)
