#include "system/document/Operator.h"
