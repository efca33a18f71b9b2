#include "system/controls/Menu.h"
