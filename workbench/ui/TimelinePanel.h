#pragma once

#include <QWidget>

namespace Marlox {

class Session;
class TimeCodeEdit;
class TimeRuler;

/// The time line: transport buttons, the ruler, and fields for first frame, current time and last
/// frame.
class TimelinePanel : public QWidget {
    Q_OBJECT
public:
    explicit TimelinePanel(Session& session, QWidget* parent = nullptr);

private:
    void ShowTimes();

    Session& session_;
    TimeRuler* ruler_;
    TimeCodeEdit* first_;
    TimeCodeEdit* current_;
    TimeCodeEdit* last_;
};

} // namespace Marlox
