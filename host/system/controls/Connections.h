#pragma once

#include "system/values/Input.h"

namespace Marlox {

class Menu;

/// What an image input may be connected to, for lists and menus.
struct Connection {
    Operator* tool = nullptr; // null: nothing
    QString text;
    QString tip; // why it can't be, or what nothing means for the input; empty: none
    bool can = true;
    bool is = false; // it is connected so now
};

/// Nothing first, then the other tools of the document that make images, in flow order. Empty: the
/// input carries no image, or stands in no document.
MARLOXSYSTEM_EXPORT std::vector<Connection> ConnectionsOf(const Input& input);
/// The same as entries of a menu, numbered from `first` on, at most `room` of them. While the tool
/// is locked they say so.
MARLOXSYSTEM_EXPORT void AddConnections(Menu& menu, const Input& input, unsigned int first,
                                        unsigned int room = 0x10000);
/// Connects the input as such an entry tells; one undo entry, "Connect" or "Disconnect" and the
/// input's name. False: it can't be.
MARLOXSYSTEM_EXPORT bool RunConnection(Input& input, unsigned int place);

} // namespace Marlox
