#include "workbench/cli/BatchRender.h"

#include "system/document/MarloxDoc.h"
#include "system/evaluation/Renderer.h"
#include "workbench/cli/Options.h"
#include "workbench/images/ImageFile.h"
#include "workbench/images/Sequence.h"

#include <cmath>
#include <cstdio>

#include <QElapsedTimer>

namespace Marlox {

namespace {

enum Status { Done = 0, Failed = 1, BadRequest = 2 };

void complain(const QString& text)
{
    std::fprintf(stderr, "%s\n", qUtf8Printable(text));
}

bool renderFrame(const MarloxDoc& document, int frame, const QString& path, QString* error)
{
    const auto job = RenderJob::Take(document, frame, 1.0);
    const RenderResult result = job->Run();
    if (!result.image) {
        *error = result.error.isEmpty() ? QString("there is no picture") : result.error;
        return false;
    }
    return WriteImage(*result.image, path, error);
}

std::vector<int> framesOf(const Options& options, const MarloxDoc& document)
{
    if (options.frames)
        return options.frames->Frames();
    return FrameRange{int(std::ceil(document.FirstFrame())), int(std::floor(document.LastFrame()))}
        .Frames();
}

} // namespace

int RenderFrames(const Options& options)
{
    MarloxDoc document;
    QString error;
    if (!document.Open(options.document, &error)) {
        complain(error);
        return Failed;
    }
    for (const QString& note : document.LoadNotes())
        complain(QString("%1: %2").arg(options.document, note));
    const std::vector<int> frames = framesOf(options, document);
    const Sequence output = Sequence::FromPattern(options.output);
    if (frames.size() > 1 && !output.IsSequence()) {
        complain(QString("%1 has no place for the frame number: write #### into it to render %2 "
                         "frames")
                     .arg(options.output)
                     .arg(frames.size()));
        return BadRequest;
    }

    std::size_t failures = 0;
    for (const int frame : frames) {
        QElapsedTimer clock;
        clock.start();
        const QString path = output.FramePath(frame);
        if (renderFrame(document, frame, path, &error)) {
            std::printf("frame %d: %s (%.2f s)\n", frame, qUtf8Printable(path),
                        double(clock.elapsed()) / 1000.0);
            std::fflush(stdout);
        } else {
            complain(QString("frame %1: %2").arg(frame).arg(error));
            ++failures;
        }
    }
    if (failures > 0 && frames.size() > 1)
        complain(QString("%1 of %2 frames failed").arg(failures).arg(frames.size()));
    return failures == 0 ? Done : Failed;
}

} // namespace Marlox
