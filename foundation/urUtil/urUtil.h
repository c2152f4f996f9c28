// All of this module. Made by scripts/module_headers.
#pragma once

#include "foundation/urUtil/Color.h"
#include "foundation/urUtil/Error.h"
#include "foundation/urUtil/HSL.h"
#include "foundation/urUtil/LinkedListNode.h"
#include "foundation/urUtil/random.h"
