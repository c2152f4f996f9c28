// All of this module. Made by scripts/module_headers.
#pragma once

#include "foundation/urString/CString.h"
#include "foundation/urString/IString.h"
#include "foundation/urString/NearestName.h"
#include "foundation/urString/TextRep.h"
#include "foundation/urString/utf8.h"
