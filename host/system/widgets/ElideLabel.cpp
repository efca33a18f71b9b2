#include "system/widgets/ElideLabel.h"
