#include "system/viewer/PreviewInfo.h"
