#include "system/resources/Resources.h"
