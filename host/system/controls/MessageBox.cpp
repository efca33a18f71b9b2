#include "system/controls/MessageBox.h"

#include <algorithm>

#include <QCoreApplication>
#include <QLabel>

namespace Marlox {

namespace {

constexpr int narrowest = 320; // of the text, pixels
constexpr int widest = 640;

} // namespace

MessageBox::MessageBox(QWidget* parent, const char* name, Icon icon, const QString& text,
                       const QString& details)
    : QMessageBox(icon, QCoreApplication::applicationName(), text, NoButton, parent)
{
    setObjectName(name);
    setTextFormat(Qt::PlainText);
    setInformativeText(details);
    if (auto* label = findChild<QLabel*>("qt_msgbox_label")) {
        label->setWordWrap(true);
        const int line = label->fontMetrics().size(0, text).width() + 2;
        label->setMinimumWidth(
            std::max(label->minimumSizeHint().width(), std::clamp(line, narrowest, widest)));
        QPalette bright = label->palette();
        bright.setColor(QPalette::WindowText, bright.color(QPalette::ButtonText));
        label->setPalette(bright);
    }
}

} // namespace Marlox
