#include "system/document/MarloxDoc.h"
