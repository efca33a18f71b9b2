#include "system/widgets/TimeCodeEdit.h"
