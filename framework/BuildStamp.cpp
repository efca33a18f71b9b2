#include "framework/ControlFacts.h"

// In a file of its own that is compiled again whenever another source of the library is.
namespace Marlox {

const char buildStamp[] = "Built: " __DATE__;

} // namespace Marlox
