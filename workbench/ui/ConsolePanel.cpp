#include "workbench/ui/ConsolePanel.h"

#include "system/document/MarloxDoc.h"
#include "system/document/Preferences.h"
#include "system/resources/Resources.h"
#include "workbench/scripting/ScriptHost.h"

#include <algorithm>

#include <QFontDatabase>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace Marlox {

namespace {

constexpr char historyName[] = "Workbench.ConsoleHistory";
constexpr int linesKept = 200;

} // namespace

ConsolePanel::ConsolePanel(ScriptHost& host, QWidget* parent)
    : QWidget(parent), host_(host), output_(new QPlainTextEdit), line_(new QLineEdit)
{
    setObjectName("console");
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPixelSize(12);
    output_->setObjectName("consoleoutput");
    output_->setReadOnly(true);
    output_->setMaximumBlockCount(5000);
    output_->setFont(font);
    output_->setFrameShape(QFrame::NoFrame);
    line_->setObjectName("consoleline");
    line_->setFont(font);
    line_->setPlaceholderText(tr("Lua, for example: print(document.time())"));
    line_->installEventFilter(this);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(output_, 1);
    layout->addWidget(line_);

    history_ = MarloxDoc::GetPreferences().Get(historyName).toStringList();
    recalled_ = history_.size();
    connect(line_, &QLineEdit::returnPressed, this, &ConsolePanel::RunLine);
    connect(&host_, &ScriptHost::Printed, this, [this](const QString& text) { Append(text); });
}

void ConsolePanel::Append(const QString& line, bool isError)
{
    const QColor color =
        isError ? LookPack::Global().Color("System.ErrorTextColour", {255, 140, 140}).ToQColor()
                : output_->palette().color(QPalette::Text);
    for (const QString& part : line.split('\n')) {
        output_->appendHtml(QString("<span style=\"white-space:pre-wrap;color:%1\">%2</span>")
                                .arg(color.name(), part.toHtmlEscaped()));
    }
}

void ConsolePanel::RunLine()
{
    const QString text = line_->text();
    if (text.trimmed().isEmpty() || host_.IsRunning())
        return;
    Append("> " + text);
    history_.removeAll(text);
    history_.append(text);
    history_ = history_.mid(std::max(0, int(history_.size()) - linesKept));
    recalled_ = history_.size();
    MarloxDoc::GetPreferences().Set(historyName, history_);
    line_->clear();
    QString error;
    if (!host_.RunText(text, &error))
        Append(error, true);
}

void ConsolePanel::Recall(int direction)
{
    recalled_ = std::clamp(recalled_ + direction, 0, int(history_.size()));
    line_->setText(history_.value(recalled_));
}

bool ConsolePanel::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != line_ || event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Up:
        Recall(-1);
        return true;
    case Qt::Key_Down:
        Recall(1);
        return true;
    case Qt::Key_Escape:
        host_.Interrupt();
        return true;
    default:
        return false;
    }
}

} // namespace Marlox
