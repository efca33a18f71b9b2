#include "system/values/Animation.h"
