#include "workbench/viewer/ViewerPointer.h"

#include "system/resources/Resources.h"
#include "system/viewer/OverlayCommands.h"

#include <cmath>

#include <QTabletEvent>

namespace Marlox {

u32 OverlayModifiers(Qt::KeyboardModifiers modifiers)
{
    return (modifiers & Qt::ShiftModifier ? KeyShift : 0u) |
           (modifiers & Qt::ControlModifier ? KeyControl : 0u) |
           (modifiers & Qt::AltModifier ? KeyAlt : 0u);
}

/// The event's tilts are degrees from upright, to the right and towards the user.
TagList PenTags(const QTabletEvent& event)
{
    constexpr double degree = 3.14159265358979323846 / 180.0;
    const double right = std::tan(event.xTilt() * degree);
    const double up = -std::tan(event.yTilt() * degree);
    const auto turn = [](double degrees) { return degrees < 0.0 ? degrees + 360.0 : degrees; };
    return {{PVD_Pressure, event.pressure()},
            {PVD_PenHeight, double(event.z())},
            {PVD_AngleXY, turn(std::atan2(up, right) / degree)},
            {PVD_AngleZ, 90.0 - std::atan(std::hypot(right, up)) / degree},
            {PVD_Rotation, turn(event.rotation())}};
}

QCursor CursorOf(ViewCursor shape, double devicePixelRatio)
{
    static constexpr Qt::CursorShape shapes[] = {
        Qt::ArrowCursor, Qt::SizeAllCursor,      Qt::SizeHorCursor,   Qt::SizeVerCursor,
        Qt::CrossCursor, Qt::PointingHandCursor, Qt::ForbiddenCursor, Qt::CrossCursor};
    static constexpr int tip[] = {3, 20}; // of the drawn pencil
    if (shape == ViewCursor::Pen)
        return {ResDIB::PixmapOf("Icons.Workbench.PenCursor", devicePixelRatio), tip[0], tip[1]};
    return shapes[std::size_t(shape)];
}

} // namespace Marlox
