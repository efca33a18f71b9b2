#include "widgets/CustomWheel.h"

#include "system/color/DisplayColors.h"
#include "system/resources/Resources.h"
#include "widgets/DrawnLook.h"
#include "widgets/PartsAccessible.h"

#include <cmath>
#include <utility>

#include <QEvent>
#include <QPainter>

namespace Marlox {

namespace {

constexpr int margin = 3; // around the wheel, for the ring that tells the keyboard focus

} // namespace

CustomWheel::CustomWheel(QWidget* parent, const char* bitmap, const QString& use)
    : CustomControl(parent), bitmap_(bitmap)
{
    MakePartsAccessible();
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    SetUse(use);
    FollowLook();
    connect(&DisplayColors::Global(), &DisplayColors::Changed, this, [this] {
        DiscardPicture();
        update();
    });
}

void CustomWheel::FollowLook()
{
    look_ = LookPack::Global().Generation();
    diameter_ = ResDIB::SizeOf(bitmap_).width();
    DiscardPicture();
}

void CustomWheel::SetMode(int mode)
{
    if (mode == mode_ || mode < 0 || mode >= modes)
        return;
    const QPointer<CustomWheel> alive(this);
    LoseGesture();
    if (!alive)
        return;
    mode_ = mode;
    FollowMode();
    update();
}

QRect CustomWheel::Square() const
{
    const auto before = [this](int extent) { return int(std::floor((extent - diameter_) / 2.0)); };
    return {before(width()), before(height()), diameter_, diameter_};
}

QSize CustomWheel::sizeHint() const
{
    return minimumSizeHint();
}

QSize CustomWheel::minimumSizeHint() const
{
    const int side = diameter_ + 2 * margin;
    return {side, side};
}

void CustomWheel::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::FontChange)
        DiscardPicture();
    CustomControl::changeEvent(event);
}

void CustomWheel::resizeEvent(QResizeEvent* event)
{
    Arrange();
    CustomControl::resizeEvent(event);
}

void CustomWheel::paintEvent(QPaintEvent*)
{
    const double ratio = devicePixelRatioF();
    if (look_ != LookPack::Global().Generation()) {
        FollowLook();
        Arrange();
    }
    if (picture_.isNull() || picture_.devicePixelRatioF() != ratio)
        picture_ = MakePicture(ratio);
    QPainter painter(this);
    PaintGround(painter);
    painter.drawImage(Square().topLeft(), picture_);
    painter.setRenderHint(QPainter::Antialiasing);
    PaintParts(painter);
    if (hasFocus())
        PaintFocusRing(painter, Square().adjusted(-margin, -margin, margin, margin),
                       diameter_ / 2.0 + margin);
    if (!isEnabled())
        PaintVeil(painter, rect(), BackgroundColor().ToQColor());
}

} // namespace Marlox
