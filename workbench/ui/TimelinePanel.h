#pragma once

#include <QWidget>

namespace Marlox {

class Session;
class TimeCodeEdit;
class TimeRuler;

/// The time line: the ruler, and below it the fields for first frame, current time and last frame
/// around the transport buttons.
class TimelinePanel : public QWidget {
    Q_OBJECT
public:
    explicit TimelinePanel(Session& session, QWidget* parent = nullptr);

private:
    QWidget* BuildTransport();
    void ConnectTimes();
    void ShowTimes();

    Session& session_;
    TimeRuler* ruler_;
    TimeCodeEdit* first_;
    TimeCodeEdit* current_;
    TimeCodeEdit* last_;
};

} // namespace Marlox
