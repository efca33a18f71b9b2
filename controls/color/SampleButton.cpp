#include "controls/color/SampleButton.h"

#include "system/color/ColorPreferences.h"
#include "system/document/Preferences.h"
#include "system/resources/Resources.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

#include <QActionGroup>
#include <QMenu>
#include <QPainter>

namespace Marlox {

namespace {

struct Choice {
    int size;
    const char* text;
};
constexpr Choice choices[] = {{1, QT_TRANSLATE_NOOP("Marlox::SampleButton", "Point")},
                              {3, QT_TRANSLATE_NOOP("Marlox::SampleButton", "3 x 3")},
                              {5, QT_TRANSLATE_NOOP("Marlox::SampleButton", "5 x 5")}};

const Choice* choiceOf(int size)
{
    const auto* found = std::find_if(std::begin(choices), std::end(choices),
                                     [size](const Choice& choice) { return choice.size == size; });
    return found != std::end(choices) ? found : nullptr;
}

// The squares: five across and down.
constexpr int most = 5;
constexpr int square = 2;
constexpr int pitch = 3;
constexpr int extent = most * pitch - (pitch - square);
constexpr double untaken = 0.3; // of the light of those that are taken

} // namespace

SampleButton::SampleButton(QWidget* parent) : CustomButton(parent)
{
    const Preferences& preferences = Preferences::Global();
    connect(&preferences, &Preferences::Changed, this, [this](const QString& name) {
        if (name == QLatin1String(PREF_ColorSampleSize))
            ReadPreference();
    });
    connect(this, &QAbstractButton::clicked, this, &SampleButton::OpenMenu);
    ReadPreference();
    ShowChoice();
}

void SampleButton::SetSampleSize(int size)
{
    if (choiceOf(size))
        Preferences::Global().Set(QLatin1String(PREF_ColorSampleSize), size);
}

void SampleButton::ReadPreference()
{
    const int stored =
        Preferences::Global().Get(QLatin1String(PREF_ColorSampleSize), choices[0].size).toInt();
    const int size = choiceOf(stored) ? stored : choices[0].size;
    if (size == size_)
        return;
    size_ = size;
    ShowChoice();
    emit SampleSizeChanged(size);
}

void SampleButton::ShowChoice()
{
    setToolTip(tr("How much of the picture a pick takes: %1").arg(tr(choiceOf(size_)->text)));
    setAccessibleName(tr("Sample Size: %1").arg(tr(choiceOf(size_)->text)));
    update();
}

void SampleButton::OpenMenu()
{
    auto* menu = new QMenu(this);
    connect(menu, &QMenu::aboutToHide, menu, &QObject::deleteLater);
    auto* group = new QActionGroup(menu);
    for (const Choice& choice : choices) {
        QAction* action = group->addAction(tr(choice.text));
        action->setCheckable(true);
        action->setChecked(choice.size == size_);
        connect(action, &QAction::triggered, this,
                [this, size = choice.size] { SetSampleSize(size); });
    }
    menu->addActions(group->actions());
    menu->popup(mapToGlobal(rect().bottomLeft() + QPoint(0, 1)));
}

void SampleButton::paintEvent(QPaintEvent* event)
{
    CustomButton::paintEvent(event);
    QPainter painter(this);
    const bool lit = isEnabled() && (underMouse() || isDown());
    const QColor color =
        LookPack::Global()
            .Color(lit ? "System.BrightTextColour" : "System.TextColour", {190, 190, 190})
            .ToQColor();
    const double light = isEnabled() ? 1.0 : 0.35;
    const QPoint origin((width() - extent) / 2, (height() - extent) / 2);
    for (int y = 0; y < most; ++y) {
        for (int x = 0; x < most; ++x) {
            const int away = std::max(std::abs(x - most / 2), std::abs(y - most / 2));
            painter.setOpacity(2 * away < size_ ? light : light * untaken);
            painter.fillRect(QRect(origin + QPoint(x, y) * pitch, QSize(square, square)), color);
        }
    }
}

} // namespace Marlox
