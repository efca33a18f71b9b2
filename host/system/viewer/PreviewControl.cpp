#include "system/viewer/PreviewControl.h"
