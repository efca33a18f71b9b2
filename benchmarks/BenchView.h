#pragma once

#include "script/ScriptSystem.h"
#include "system/base/HostClassIds.h"
#include "system/document/MarloxDoc.h"
#include "system/viewer/OverlayPainter.h"
#include "system/viewer/OverlayStage.h"

#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QMouseEvent>
#include <QOpenGLWidget>
#include <QSurfaceFormat>

#include <GL/gl.h>

namespace Marlox {

inline constexpr QSize viewSize(1280, 720);

class NoProcess : public ToolProcess {
public:
    Ref<Image> Run(const Ref<Image>& upstream, RenderContext&, QString&) override
    {
        return upstream;
    }
};

/// A tool that has inputs and does nothing.
class IdleTool : public Operator {
public:
    using Operator::Operator;
    std::size_t SizeOf() const override { return sizeof(*this); }
    std::unique_ptr<ToolProcess> Prepare(double) const override
    {
        return std::make_unique<NoProcess>();
    }
};

/// A shown view of 1280 x 720 pixels that draws the overlays of one tool over a plain ground. The
/// picture fills it.
class BenchView : public QOpenGLWidget {
public:
    /// Null: without a tool.
    explicit BenchView(const char* toolClass) : stage(document)
    {
        tool = toolClass ? document.AddTool(toolClass) : nullptr;
        stage.SetOperator(tool);
        PreviewInfo& info = stage.View();
        info.imageWidth = info.pixelWidth = info.viewWidth = viewSize.width();
        info.imageHeight = info.pixelHeight = info.viewHeight = viewSize.height();
        connect(&stage, &OverlayStage::Changed, this, QOverload<>::of(&QWidget::update));
        setMouseTracking(true);
        resize(viewSize);
        show();
        Settle();
    }
    static void Settle()
    {
        for (int i = 0; i < 5; ++i)
            QCoreApplication::processEvents();
    }
    void Send(QEvent::Type type, QPointF at)
    {
        const bool held = type == QEvent::MouseMove;
        QMouseEvent event(type, at, at, held ? Qt::NoButton : Qt::LeftButton,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(this, &event);
    }
    void DrawOverlays()
    {
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(0.0, width(), 0.0, height(), -1.0, 1.0);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        GLOverlayPainter painter(stage.View(), devicePixelRatioF());
        stage.Draw(painter);
    }

    MarloxDoc document;
    Operator* tool = nullptr;
    OverlayStage stage;
    int paints = 0;

protected:
    void paintGL() override
    {
        ++paints;
        glClearColor(0.1f, 0.1f, 0.1f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT);
        if (tool)
            DrawOverlays();
    }
    MxPoint ToStage(QPointF at) const { return {int(at.x()), height() - int(at.y())}; }
    void mousePressEvent(QMouseEvent* event) override
    {
        stage.Press(ToStage(event->localPos()), 0);
    }
    void mouseMoveEvent(QMouseEvent* event) override { stage.Move(ToStage(event->localPos()), 0); }
    void mouseReleaseEvent(QMouseEvent* event) override
    {
        stage.Release(ToStage(event->localPos()), 0);
    }
};

/// The program: the control library loaded, the benchmarks that `registered` names run.
inline int RunOverlayBenchmarks(int argc, char** argv, void (*registered)())
{
    QSurfaceFormat format;
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    QSurfaceFormat::setDefaultFormat(format);
    QApplication application(argc, argv);
    InstallScripting();
    if (!dlopen(MARLOX_BINARY_DIR "/lib/marloxcontrols.so", RTLD_NOW | RTLD_LOCAL)) {
        std::fprintf(stderr, "%s\n", dlerror());
        return EXIT_FAILURE;
    }
    registered();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return EXIT_SUCCESS;
}

} // namespace Marlox
