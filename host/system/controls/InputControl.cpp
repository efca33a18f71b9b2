#include "system/controls/InputControl.h"
