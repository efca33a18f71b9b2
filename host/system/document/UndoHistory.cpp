#include "system/document/UndoHistory.h"
