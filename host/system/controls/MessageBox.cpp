#include "system/controls/MessageBox.h"

#include <algorithm>

#include <QGuiApplication>
#include <QLabel>
#include <QScreen>

namespace Marlox {

namespace {

constexpr int narrowest = 320; // of the text, pixels
constexpr int widest = 640;
constexpr int mostLines = 12; // of the details; the rest is shown when asked for

/// Wide enough for its lines where that is sensible.
void spread(QLabel& label, const QString& text)
{
    constexpr int around = 160; // icon and margins
    const int room = QGuiApplication::primaryScreen()->availableSize().width() - around;
    label.setWordWrap(true);
    const int line = label.fontMetrics().size(0, text).width() + 2;
    const int width = std::min(std::clamp(line, narrowest, widest), room);
    label.setMinimumWidth(std::max(label.minimumSizeHint().width(), width));
}

} // namespace

MessageBox::MessageBox(QWidget* parent, const char* name, Icon icon, const QString& text,
                       const QString& details)
    : QMessageBox(icon, QCoreApplication::applicationName(), text, NoButton, parent)
{
    setObjectName(name);
    setTextFormat(Qt::PlainText);
    if (details.count(u'\n') < mostLines) {
        setInformativeText(details);
    } else {
        setInformativeText(details.section(u'\n', 0, mostLines - 2) + QStringLiteral("\n…"));
        setDetailedText(details);
    }
    if (auto* label = findChild<QLabel*>("qt_msgbox_informativelabel"))
        spread(*label, informativeText());
    if (auto* label = findChild<QLabel*>("qt_msgbox_label")) {
        spread(*label, text);
        QPalette bright = label->palette();
        bright.setColor(QPalette::WindowText, bright.color(QPalette::ButtonText));
        label->setPalette(bright);
    }
}

} // namespace Marlox
