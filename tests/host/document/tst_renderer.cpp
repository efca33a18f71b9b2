#include "host/TestTools.h"
#include "system/evaluation/FramedMask.h"
#include "system/evaluation/RenderCache.h"
#include "system/evaluation/Renderer.h"

#include <chrono>
#include <limits>
#include <new>
#include <set>
#include <stdexcept>
#include <thread>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

using namespace Marlox;

namespace {

using namespace std::chrono_literals;

float pixelOf(const RenderResult& result)
{
    return result.image && !result.image->IsEmpty() ? result.image->Row(0)[0] : -1.0f;
}

} // namespace

class TestRenderer : public QObject {
    Q_OBJECT

    TestTools tools_;
    std::unique_ptr<MarloxDoc> document_;
    Operator* source_ = nullptr;
    Operator* gain_ = nullptr;

    TestWork& work() { return TestWork::Global(); }
    Renderer& renderer() { return document_->GetRenderer(); }
    Operator* add(const char* toolClass, double gain = 2.0)
    {
        Operator* tool = document_->AddTool(toolClass);
        if (Input* input = tool->FindInput("Gain"))
            input->SetValue(Number(gain), 0);
        return tool;
    }
    static void set(Operator* tool, const char* id, double value)
    {
        tool->FindInput(id)->SetValue(Number(value), 0);
    }
    RenderResult run(const Operator* last = nullptr, RenderCache* cache = nullptr)
    {
        return RenderJob::Take(*document_, 0, 1, last)->Run(cache);
    }
    bool idle() { return renderer().WaitUntilIdle(5000); }

private slots:
    void init()
    {
        work().during = nullptr;
        document_ = std::make_unique<MarloxDoc>();
        source_ = add(TestTools::sourceClass);
        gain_ = add(TestTools::gainClass);
        work().runs = 0;
        work().rows = 0;
    }
    void cleanup() { document_.reset(); }

    void flowFeedsTheNext()
    {
        add(TestTools::gainClass, 3);
        QCOMPARE(pixelOf(run()), 3.0f);
        QCOMPARE(pixelOf(run(gain_)), 1.0f);
        QCOMPARE(pixelOf(run(source_)), 0.5f);
        gain_->DisableTool(true);
        QCOMPARE(pixelOf(run()), 1.5f);
        QCOMPARE(pixelOf(run(gain_)), 0.5f); // a disabled tool passes through
        source_->DisableTool(true);
        QVERIFY(!run().image);
        QVERIFY(run().error.startsWith("TestGain2: "));
    }

    void connectionsWin()
    {
        Operator* other = add(TestTools::sourceClass);
        set(other, "Level", 10);
        Operator* last = add(TestTools::gainClass, 3);
        QCOMPARE(pixelOf(run()), 30.0f); // fed by the tool before it
        QVERIFY(last->ImageInput()->Connect(gain_));
        QCOMPARE(pixelOf(run()), 3.0f);
        QCOMPARE(document_->FeedOf(*last->ImageInput()), gain_);
        gain_->DisableTool(true);
        QCOMPARE(document_->FeedOf(*last->ImageInput()), source_);
        gain_->DisableTool(false);
        document_->RemoveTool(*gain_);
        QCOMPARE(last->ImageInput()->GetSource(), source_); // what fed the removed one
        QCOMPARE(pixelOf(run()), 1.5f);
        document_->Undo().Undo();
        QCOMPARE(last->ImageInput()->GetSource(), gain_);
    }

    void loopsAreRefused()
    {
        Operator* last = add(TestTools::gainClass);
        QVERIFY(!gain_->ImageInput()->Connect(last)); // which gets its image from it
        QVERIFY(!gain_->FindInput("Mask")->Connect(gain_));
        QVERIFY(last->ImageInput()->Connect(source_));
        QVERIFY(gain_->ImageInput()->Connect(last)); // no loop any more
        // Without its connection it would be fed by the tool before it: told when it renders.
        QVERIFY(last->ImageInput()->Connect(nullptr));
        QVERIFY(!run().image && run().error.contains("depends on itself"));
        document_->Undo().Undo();
        QVERIFY(run().image);
    }

    void loopsThatMovesWouldMakeAreRefused()
    {
        Operator* last = add(TestTools::gainClass); // source, gain, last
        QVERIFY(document_->MoveTool(*last, 1));     // source, last, gain
        QVERIFY(gain_->ImageInput()->Connect(last));
        QVERIFY(document_->MoveTool(*source_, 2)); // last, gain, source
        QVERIFY(!document_->MoveTool(*last, 1));   // gain would feed it
        QCOMPARE(document_->IndexOf(*last), 0);
    }

    void masksLimitTheEffect()
    {
        Operator* mask = document_->AddTool(TestTools::sourceClass, 0);
        set(mask, "Level", 0.25);
        set(mask, "Width", 32); // whatever its size, its frame lies on the picture's
        QVERIFY(gain_->FindInput("Mask")->Connect(mask));
        const RenderResult result = run();
        QVERIFY2(result.error.isEmpty(), qPrintable(result.error));
        QCOMPARE(result.image->Width(), 64);
        QCOMPARE(result.image->Row(5)[0], 0.5f + (1.0f - 0.5f) * 0.25f);
        QCOMPARE(result.image->Row(5)[63 * 4], result.image->Row(5)[0]);
    }

    void framesOfMasksLieOnThoseOfPictures()
    {
        Image::Format format;
        format.displayWindow = {0, 0, 4, 2};
        format.dataWindow = {-4, 0, 8, 1};
        const auto image = MakeRef<Image>(format);
        for (int i = 0; i < 12; ++i)
            image->Row(0)[i * 4 + 3] = float(i) / 12.0f; // a slope, also beyond the frame
        const FramedMask mask(image);
        float alphas[16];
        mask.Alphas({0, 0, 8, 8}, -4, 1, alphas, 16);
        for (int i = 0; i < 16; ++i)
            QCOMPARE(alphas[i], float(i + 3.5) / 24.0f); // two pixels for each of its own
        mask.Alphas({0, 0, 8, 8}, 0, 6, alphas, 16);     // below the data window
        QCOMPARE(alphas[3], 0.0f);
        image->Row(0)[5 * 4 + 3] = std::numeric_limits<float>::quiet_NaN();
        mask.Alphas(format.displayWindow, -6, 0, alphas, 16); // pixel on pixel
        QCOMPARE(alphas[1], 0.0f);
        QCOMPARE(alphas[6], 4.0f / 12.0f);
        QCOMPARE(alphas[7], 0.0f);
        QCOMPARE(alphas[14], 0.0f);
    }

    void errorsNameTheTool()
    {
        set(source_, "Width", 0);
        QCOMPARE(run().error, QString("TestSource1: missing.exr is not there"));
        set(source_, "Width", 64);
        work().during = [](RenderContext&) { throw std::bad_alloc(); };
        QVERIFY(run().error.startsWith("TestGain1: ") && run().error.contains("memory"));
        work().during = [](RenderContext& context) {
            context.ForRows(100, [](int first, int) {
                if (first > 0)
                    throw std::runtime_error("a bad row");
            });
        };
        QCOMPARE(run().error, QString("TestGain1: a bad row"));
        work().during = [](RenderContext&) { throw 7; };
        QVERIFY(run().error.startsWith("TestGain1: "));
    }

    void rowsRunOnceOnAllCores()
    {
        RenderContext context;
        std::vector<std::atomic<int>> seen(1000);
        std::mutex mutex;
        std::set<std::thread::id> threads;
        context.ForRows(1000, [&](int first, int last) {
            const auto outer = std::this_thread::get_id();
            {
                std::lock_guard lock(mutex);
                threads.insert(outer);
            }
            std::this_thread::sleep_for(1ms);
            context.ForRows(last - first, [&](int from, int to) { // nested: stays on this core
                if (std::this_thread::get_id() == outer)
                    for (int i = from; i < to; ++i)
                        ++seen[std::size_t(first + i)];
            });
        });
        QVERIFY(std::all_of(seen.begin(), seen.end(), [](const auto& n) { return n == 1; }));
        QCOMPARE(int(threads.size()) > 1, QThread::idealThreadCount() > 1);
        QVERIFY(int(threads.size()) <= QThread::idealThreadCount());
        QCOMPARE(context.Progress(), 1.0);
        context.SetPart(0.5, 0.75);
        QCOMPARE(context.Progress(), 0.5);
        context.ForRows(10, [](int, int) {});
        QCOMPARE(context.Progress(), 0.75);
        context.Cancel();
        context.ForRows(10, [&](int, int) { ++seen[0]; });
        QCOMPARE(seen[0].load(), 1);
    }

    void resultsAreKept()
    {
        RenderCache cache;
        Operator* last = add(TestTools::gainClass, 3);
        QCOMPARE(pixelOf(run(nullptr, &cache)), 3.0f);
        QCOMPARE(work().runs.load(), 2);
        QCOMPARE(pixelOf(run(nullptr, &cache)), 3.0f);
        QCOMPARE(work().runs.load(), 2);
        set(last, "Gain", 4);
        QCOMPARE(pixelOf(run(nullptr, &cache)), 4.0f);
        QCOMPARE(work().runs.load(), 3); // only the last one
        set(source_, "Level", 1);
        QCOMPARE(pixelOf(run(nullptr, &cache)), 8.0f);
        QCOMPARE(work().runs.load(), 5);
        QCOMPARE(pixelOf(RenderJob::Take(*document_, 0, 0.5)->Run(&cache)), 8.0f);
        QCOMPARE(work().runs.load(), 7); // another scale is another image
    }

    void keptResultsAreBounded()
    {
        constexpr std::size_t oneImage = 64 * 32 * 16;
        RenderCache cache(oneImage * 2);
        for (int i = 1; i <= 6; ++i) {
            set(gain_, "Gain", i);
            QCOMPARE(pixelOf(run(nullptr, &cache)), 0.5f * float(i));
            QVERIFY(cache.Size() <= oneImage * 2);
        }
        work().runs = 0;
        run(nullptr, &cache);
        QCOMPARE(work().runs.load(), 0); // the newest is there
        cache.SetLimit(0);
        QCOMPARE(cache.Size(), std::size_t(0));
    }

    void requestsOfOneTurnBecomeOne()
    {
        QVERIFY(idle());
        QSignalSpy finished(&renderer(), &Renderer::Finished);
        for (int i = 1; i <= 10; ++i)
            set(gain_, "Gain", i);
        set(gain_, "Passive", 5);
        QVERIFY(idle());
        QCOMPARE(finished.count(), 1);
        QCOMPARE(pixelOf(renderer().LastResult()), 5.0f);
        set(gain_, "Passive", 6);
        QVERIFY(idle());
        QCOMPARE(finished.count(), 1); // passive inputs render nothing
    }

    void newestWins()
    {
        QVERIFY(idle());
        QSignalSpy finished(&renderer(), &Renderer::Finished);
        QSignalSpy started(&renderer(), &Renderer::Started);
        std::atomic<int> cancelled{0};
        std::atomic<bool> wait{true};
        std::atomic<bool> inside{false};
        work().during = [&](RenderContext& context) {
            if (!wait)
                return;
            inside = true;
            for (int i = 0; i < 2000 && !context.IsCancelled(); ++i)
                std::this_thread::sleep_for(1ms);
            cancelled += context.IsCancelled() ? 1 : 0;
        };
        set(gain_, "Gain", 3);
        QVERIFY(started.wait(2000));
        QTRY_VERIFY(inside.load());
        wait = false; // for those to come
        set(gain_, "Gain", 4);
        QCoreApplication::processEvents();
        set(gain_, "Gain", 5); // replaces the waiting one
        QVERIFY(idle());
        QCOMPARE(cancelled.load(), 1);
        QCOMPARE(finished.count(), 1);
        QCOMPARE(pixelOf(renderer().LastResult()), 2.5f);
        QCOMPARE(renderer().LastResult().serial, started.last()[0].toULongLong());
    }

    void dragsShowPictures()
    {
        QVERIFY(idle());
        renderer().SetProxyGoal(0.0);
        document_->SetAutoProxy(gain_, true);
        work().during = [](RenderContext& context) {
            for (int i = 0; i < 30 && !context.IsCancelled(); ++i)
                std::this_thread::sleep_for(1ms);
        };
        QSignalSpy finished(&renderer(), &Renderer::Finished);
        for (int move = 1; move <= 40; ++move) { // faster than a render
            set(gain_, "Gain", move);
            QTest::qWait(8);
        }
        QVERIFY(finished.count() >= 3);
        QVERIFY(idle());
        QCOMPARE(pixelOf(renderer().LastResult()), 20.0f);
        QVERIFY(renderer().LastResult().proxy);
        document_->SetAutoProxy(gain_, false);
    }

    void proxyNestsByTool()
    {
        QVERIFY(idle());
        renderer().SetProxyGoal(0.0);
        QSignalSpy changed(document_.get(), &MarloxDoc::AutoProxyChanged);
        document_->SetAutoProxy(gain_, true);
        document_->SetAutoProxy(gain_, true);
        document_->SetAutoProxy(source_, true);
        set(gain_, "Gain", 4);
        QVERIFY(idle());
        QCOMPARE(renderer().LastResult().image->Width(), 16);
        QVERIFY(renderer().LastResult().proxy);
        renderer().SetProxyDivisor(2);
        renderer().Request();
        QVERIFY(idle());
        QCOMPARE(renderer().LastResult().image->Width(), 32);

        document_->SyncRender(); // full, although the proxy is still on
        QVERIFY(idle());
        QCOMPARE(renderer().LastResult().image->Width(), 64);
        document_->SetAutoProxy(gain_, false);
        document_->SetAutoProxy(source_, false);
        document_->SetAutoProxy(source_, false); // one too many
        QVERIFY(document_->IsAutoProxy());
        QCOMPARE(changed.count(), 1);
        document_->RemoveTool(*gain_); // takes its proxy with it
        QVERIFY(!document_->IsAutoProxy());
        QCOMPARE(changed.count(), 2);
    }

    void proxyIsAsFineAsKeepsUp()
    {
        QVERIFY(idle());
        int perFullRender = 0; // ms
        work().during = [&](RenderContext& context) {
            const double share = context.scale * context.scale;
            std::this_thread::sleep_for(std::chrono::milliseconds(int(perFullRender * share)));
        };
        const auto widthsOfDrag = [&](int moves) {
            std::vector<int> widths;
            document_->SetAutoProxy(gain_, true);
            for (int move = 1; move <= moves; ++move) {
                set(gain_, "Gain", renderer().LastResult().serial % 1000 + 2.0);
                if (!idle())
                    return std::vector<int>{};
                widths.push_back(renderer().LastResult().image->Width());
            }
            document_->SetAutoProxy(gain_, false);
            return idle() ? widths : std::vector<int>{};
        };
        renderer().SetProxyGoal(0.2);
        QCOMPARE(widthsOfDrag(3), std::vector<int>({64, 64, 64}));
        perFullRender = 400; // slower than before: twice too long, then a quarter of it each
        QCOMPARE(widthsOfDrag(4), std::vector<int>({64, 64, 32, 32}));
        QCOMPARE(widthsOfDrag(1), std::vector<int>({32})); // known by now
        document_->SetAutoProxy(gain_, true);
        set(gain_, "Gain", 3.25);
        QTRY_COMPARE(renderer().LastResult().image->Width(), 32);
        QTRY_COMPARE(renderer().LastResult().image->Width(), 64); // the hand holds still
        document_->SetAutoProxy(gain_, false);
        perFullRender = 0; // quick again: the first render tells
        QCOMPARE(widthsOfDrag(3), std::vector<int>({32, 64, 64}));
    }

    void rendersCanBeCancelled()
    {
        QVERIFY(idle());
        std::atomic<bool> inside{false};
        work().during = [&](RenderContext& context) {
            inside = true;
            while (!context.IsCancelled())
                std::this_thread::sleep_for(1ms);
        };
        QSignalSpy finished(&renderer(), &Renderer::Finished);
        QSignalSpy progress(&renderer(), &Renderer::Progress);
        QElapsedTimer sinceRequest;
        sinceRequest.start();
        set(gain_, "Gain", 9);
        QTRY_VERIFY(inside.load());
        QVERIFY(renderer().IsBusy());
        QVERIFY(!renderer().WaitUntilIdle(50));
        QVERIFY(!progress.isEmpty() || progress.wait(5000));
        QVERIFY(sinceRequest.elapsed() >= 500); // shorter renders tell nothing
        QCOMPARE(progress.first()[0].toString(), QString("TestGain1"));
        renderer().Cancel();
        QVERIFY(idle());
        QCOMPARE(finished.count(), 0);

        inside = false; // the end of a document ends its render
        renderer().Request();
        QTRY_VERIFY(inside.load());
        document_.reset();
    }

    void singleResultsComeBesideRequests()
    {
        add(TestTools::gainClass, 3);
        QVERIFY(idle());
        QSignalSpy finished(&renderer(), &Renderer::Finished);
        const auto valueOf = [](const SideRender::Result& result, int timeout) {
            const Ref<Image> image = result.Within(timeout);
            return image ? image->Row(0)[0] : -1.0f;
        };
        work().runs = 0;
        QCOMPARE(valueOf(renderer().ResultOf(gain_), 0), 1.0f); // kept
        QCOMPARE(work().runs.load(), 0);
        renderer().SetCacheLimit(0);
        QCOMPARE(valueOf(renderer().ResultOf(gain_), 5000), 1.0f);
        QCOMPARE(work().runs.load(), 1);

        std::atomic<bool> go{false};
        work().during = [&go](RenderContext& context) {
            while (!go && !context.IsCancelled())
                std::this_thread::sleep_for(1ms);
        };
        SideRender::Result slow = renderer().ResultOf(gain_);
        QCOMPARE(valueOf(slow, 5), -1.0f);
        set(gain_, "Gain", 8.0); // after it was asked for
        go = true;
        QCOMPARE(valueOf(slow, 5000), 1.0f);
        QCOMPARE(valueOf(slow, 0), 1.0f);
        QCOMPARE(work().runs.load(), 2);
        set(gain_, "Gain", 2.0);
        set(source_, "Width", 0);
        QCOMPARE(valueOf(renderer().ResultOf(source_), 5000), -1.0f);
        QVERIFY(idle());
        set(source_, "Width", 64);

        go = false; // what is requested goes on meanwhile
        QTRY_COMPARE(work().runs.load(), 3);
        QCOMPARE(valueOf(renderer().ResultOf(source_), 5000), 0.5f);
        slow = renderer().ResultOf(gain_);
        QCOMPARE(valueOf(slow, 5), -1.0f);
        slow = {}; // gives it up
        QCOMPARE(valueOf(renderer().ResultOf(source_), 5000), 0.5f);
        QVERIFY(renderer().IsBusy());
        finished.clear();
        go = true;
        QVERIFY(idle());
        QCOMPARE(finished.count(), 1);
        QCOMPARE(pixelOf(renderer().LastResult()), 3.0f);
        go = false;
        slow = renderer().ResultOf();
        document_.reset(); // ends it
        QCOMPARE(valueOf(slow, 5000), -1.0f);
    }

    void viewedToolIsRendered()
    {
        renderer().SetViewedTool(source_);
        QVERIFY(idle());
        QCOMPARE(pixelOf(renderer().LastResult()), 0.5f);
        document_->RemoveTool(*source_);
        QVERIFY(!renderer().ViewedTool());
        QVERIFY(idle());
        QVERIFY(renderer().LastResult().error.startsWith("TestGain1: "));
        document_->Clear();
        QVERIFY(idle());
        QVERIFY(!renderer().LastResult().image && renderer().LastResult().error.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestRenderer)
#include "tst_renderer.moc"
