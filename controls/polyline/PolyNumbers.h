#pragma once

#include <algorithm>

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

} // namespace Marlox
