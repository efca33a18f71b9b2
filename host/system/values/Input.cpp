#include "system/values/Input.h"
