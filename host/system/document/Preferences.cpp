#include "system/document/Preferences.h"
