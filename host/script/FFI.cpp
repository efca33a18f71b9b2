#include "script/FFI.h"
