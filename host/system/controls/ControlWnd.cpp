#include "system/controls/ControlWnd.h"
