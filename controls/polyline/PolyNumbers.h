#pragma once

#include "system/widgets/TimeCodeEdit.h"

#include <algorithm>

#include <QCoreApplication>
#include <QString>

namespace Marlox {

/// The whole number at the beginning of a text; without one 0.
inline int LeadingNumber(const QString& text)
{
    const QString trimmed = text.trimmed();
    int end = !trimmed.isEmpty() && (trimmed[0] == '-' || trimmed[0] == '+') ? 1 : 0;
    while (end < trimmed.size() && trimmed[end] >= '0' && trimmed[end] <= '9')
        ++end;
    return int(std::clamp(trimmed.left(end).toDouble(), -1e9, 1e9));
}

/// Whether a field holds a number; marked where it holds an expression instead.
inline bool HoldsNumber(TimeCodeEdit& edit)
{
    if (edit.IsExpressionText())
        edit.MarkUnreadable(QCoreApplication::translate("Polyline", "A number is wanted here."));
    return !edit.IsUnreadable();
}

/// Takes what was typed into a field; one that holds no number gets the keyboard.
inline bool TakesNumber(TimeCodeEdit& edit)
{
    const bool takes = edit.Commit() && HoldsNumber(edit);
    if (!takes)
        edit.setFocus();
    return takes;
}

} // namespace Marlox
