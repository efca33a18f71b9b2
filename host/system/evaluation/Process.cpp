#include "system/evaluation/Process.h"
