#include "system/evaluation/Renderer.h"
