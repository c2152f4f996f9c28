// All of this module. Made by scripts/module_headers.
#pragma once

#include "support/values/Attribute.h"
#include "support/values/AttributeBase.h"
#include "support/values/BoundedDouble.h"
#include "support/values/BoundedInt.h"
#include "support/values/Func1Attr.h"
#include "support/values/Length.h"
#include "support/values/RampAttr.h"
#include "support/values/SineAttr.h"
