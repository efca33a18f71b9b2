#include "system/values/Parameter.h"
