#include "system/values/Image.h"
