#include "workbench/ui/InspectorPanel.h"

#include "system/controls/ControlWnd.h"
#include "workbench/ui/Session.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QVBoxLayout>

namespace Marlox {

namespace {

/// There is nothing to scroll sideways: these keys are the time's.
class PageScroll : public QScrollArea {
protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        if (event->key() == Qt::Key_Left || event->key() == Qt::Key_Right)
            event->ignore();
        else
            QScrollArea::keyPressEvent(event);
    }
};

} // namespace

InspectorPanel::InspectorPanel(Session& session, QWidget* parent)
    : QWidget(parent), session_(session), name_(new QLineEdit), type_(new QLabel),
      scroll_(new PageScroll), page_(new ControlWnd)
{
    setObjectName("inspector");
    name_->setObjectName("toolname");
    name_->setFrame(false);
    name_->setToolTip(tr("The tool's name; expressions refer to it"));
    name_->setMinimumWidth(120);
    type_->setObjectName("tooltype");
    QPalette quiet = type_->palette();
    quiet.setColor(QPalette::WindowText, quiet.color(QPalette::PlaceholderText));
    type_->setPalette(quiet);

    auto* header = new QHBoxLayout;
    header->setContentsMargins(8, 8, 8, 4);
    header->setSpacing(8);
    header->addWidget(name_, 1);
    header->addWidget(type_);
    scroll_->setWidget(page_);
    scroll_->setWidgetResizable(true);
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(header);
    layout->addWidget(scroll_, 1);
    setMinimumWidth(336); // labels below a slider have room

    connect(&session_, &Session::SelectedToolChanged, this, &InspectorPanel::ShowTool);
    connect(&session_.Document(), &MarloxDoc::ToolChanged, this, [this](Operator* tool) {
        if (tool == session_.SelectedTool())
            ShowHeader();
    });
    connect(name_, &QLineEdit::editingFinished, this, [this] {
        Operator* tool = session_.SelectedTool();
        const QString text = name_->text().trimmed();
        if (tool && text != tool->GetName())
            tool->SetName(text);
        ShowHeader(); // what was refused goes back
    });
    connect(page_, &ControlWnd::Problem, this, &InspectorPanel::Problem);
    ShowTool(session_.SelectedTool());
}

void InspectorPanel::ShowTool(Operator* tool)
{
    // Else the focus of a control that goes would pass to some field beside the inspector.
    const QWidget* focus = QApplication::focusWidget();
    if (focus && isAncestorOf(focus))
        window()->setFocus();
    page_->SetOperator(tool);
    ShowHeader();
}

void InspectorPanel::ShowHeader()
{
    const Operator* tool = session_.SelectedTool();
    name_->setVisible(tool);
    name_->setText(tool ? tool->GetName() : QString());
    name_->setEnabled(tool && !tool->IsLocked());
    type_->setText(!tool                ? tr("No tool selected")
                   : tool->IsLocked()   ? tr("%1, locked").arg(tool->GetToolType().ToString())
                   : tool->IsDisabled() ? tr("%1, disabled").arg(tool->GetToolType().ToString())
                                        : tool->GetToolType().ToString());
}

} // namespace Marlox
