#include "workbench/ui/TimelinePanel.h"

#include "system/widgets/TimeCodeEdit.h"
#include "workbench/ui/Icons.h"
#include "workbench/ui/Session.h"
#include "workbench/ui/TimeRuler.h"

#include <QHBoxLayout>
#include <QToolButton>
#include <QVBoxLayout>

namespace Marlox {

namespace {

TimeCodeEdit* frameEdit(const char* name, const QString& tip)
{
    auto* edit = new TimeCodeEdit;
    edit->setObjectName(name);
    edit->setToolTip(tip);
    edit->setAccessibleName(tip);
    edit->SetInteger(true);
    edit->setFixedWidth(56);
    return edit;
}

} // namespace

TimelinePanel::TimelinePanel(Session& session, QWidget* parent)
    : QWidget(parent), session_(session), ruler_(new TimeRuler(session)),
      first_(frameEdit("firstframe", tr("First frame"))),
      current_(frameEdit("currentframe", tr("Current frame"))),
      last_(frameEdit("lastframe", tr("Last frame")))
{
    setObjectName("timeline");
    auto* row = new QHBoxLayout;
    row->setSpacing(8);
    row->addWidget(first_);
    row->addStretch();
    row->addWidget(BuildTransport());
    row->addWidget(current_);
    row->addStretch();
    row->addWidget(last_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 4, 8, 8);
    layout->setSpacing(4);
    layout->addWidget(ruler_);
    layout->addLayout(row);
    ConnectTimes();
    ShowTimes();
}

QWidget* TimelinePanel::BuildTransport()
{
    auto* transport = new QWidget;
    auto* row = new QHBoxLayout(transport);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(4);
    const auto button = [&](const char* icon, const QString& tip, const char* name, auto run) {
        auto* made = new QToolButton;
        made->setIcon(WorkbenchIcon(icon));
        made->setToolTip(tip);
        made->setAccessibleName(tip);
        made->setAutoRaise(true);
        made->setObjectName(name);
        connect(made, &QToolButton::clicked, this, run);
        row->addWidget(made);
        return made;
    };
    const auto end = [this](bool last) {
        const MarloxDoc& document = session_.Document();
        session_.StepTo(last ? document.LastFrame() : document.FirstFrame());
    };
    button("FirstFrame", tr("First frame (Home)"), "tofirst", [end] { end(false); });
    button("PreviousKey", tr("Previous key (Ctrl+Left)"), "previouskey",
           [this] { session_.GoToKey(-1); });
    button("PreviousFrame", tr("Previous frame (Left)"), "previousframebutton",
           [this] { session_.StepBy(-1.0); });
    auto* play = button("Play", tr("Play or stop (Space)"), "play",
                        [this] { session_.Play(!session_.IsPlaying()); });
    button("NextFrame", tr("Next frame (Right)"), "nextframebutton",
           [this] { session_.StepBy(1.0); });
    button("NextKey", tr("Next key (Ctrl+Right)"), "nextkey", [this] { session_.GoToKey(1); });
    button("LastFrame", tr("Last frame (End)"), "tolast", [end] { end(true); });
    connect(&session_, &Session::PlayingChanged, this,
            [play](bool on) { play->setIcon(WorkbenchIcon(on ? "Stop" : "Play")); });
    return transport;
}

void TimelinePanel::ConnectTimes()
{
    MarloxDoc& document = session_.Document();
    connect(&document, &MarloxDoc::CurrentTimeChanged, this, &TimelinePanel::ShowTimes);
    connect(&document, &MarloxDoc::FrameRangeChanged, this, &TimelinePanel::ShowTimes);
    connect(&document, &MarloxDoc::Cleared, this, &TimelinePanel::ShowTimes);
    connect(current_, &TimeCodeEdit::editingFinished, this, [this] {
        session_.StepTo(current_->GetValue());
        ShowTimes();
    });
    const auto setRange = [this, &document] {
        if (first_->GetValue() != document.FirstFrame() ||
            last_->GetValue() != document.LastFrame())
            document.SetFrameRange(first_->GetValue(), last_->GetValue());
        ShowTimes();
    };
    connect(first_, &TimeCodeEdit::editingFinished, this, setRange);
    connect(last_, &TimeCodeEdit::editingFinished, this, setRange);
}

void TimelinePanel::ShowTimes()
{
    const MarloxDoc& document = session_.Document();
    first_->SetValue(document.FirstFrame());
    current_->SetValue(document.CurrentTime());
    last_->SetValue(document.LastFrame());
}

} // namespace Marlox
