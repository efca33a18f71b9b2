#include "system/controls/Layout.h"
