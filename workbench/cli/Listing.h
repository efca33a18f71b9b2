#pragma once

#include <string>
#include <vector>

namespace Marlox {

class PluginLibrary;

/// One line a class record of the libraries, in the order of registration, columns by tabs: class,
/// id, parent id, kind in hexadecimal, script type or "none", further tags as tag=value (separated
/// by spaces, "-" if there are none), "specified" or "generic".
std::string ListControls(const std::vector<const PluginLibrary*>& libraries);

/// One line a named resource: kind, name, default colour, second colour ("-" for other kinds); the
/// same name once, in alphabetical order within its kind.
std::string ListResources();

} // namespace Marlox
