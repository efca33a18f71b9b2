#pragma once

#include "workbench/viewer/DisplayTransform.h"
#include "workbench/viewer/OpaqueParts.h"

#include <functional>
#include <memory>

#include <QObject>
#include <QThreadPool>

namespace Marlox {

/// An image and its picture for the screen.
struct DisplayedImage {
    Ref<Image> image;
    QImage picture; // of the data window
    OpaqueParts opaque;
    ChannelView channels = ChannelView::Color; // that it shows
};

/// Applies the display transform off the user-interface thread; the newest request wins. Lives on
/// the user-interface thread.
class DisplayConverter : public QObject {
    Q_OBJECT
public:
    explicit DisplayConverter(QObject* parent = nullptr);
    ~DisplayConverter() override; // cancels and waits

    const DisplayTransform& Transform() const { return transform_; }
    void Request(Ref<Image> image, const DisplaySettings& settings);
    /// Nothing that was requested is delivered.
    void Cancel();
    bool IsBusy() const { return running_ || pending_; }

signals:
    void Converted(const Marlox::DisplayedImage& displayed);
    void Failed(const QString& error);

private:
    struct Job;
    void Start();
    void Finish(std::shared_ptr<Job> job);

    DisplayTransform transform_;
    QThreadPool pool_;
    std::shared_ptr<Job> running_;
    std::shared_ptr<Job> pending_;
};

} // namespace Marlox
