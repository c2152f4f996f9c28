// All of this module. Made by scripts/module_headers.
#pragma once

#include "foundation/urImage/Image.h"
#include "foundation/urImage/PixelFormat.h"
