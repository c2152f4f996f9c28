// All of this module. Made by scripts/module_headers.
#pragma once

#include "foundation/nxTXN/Clear.h"
#include "foundation/nxTXN/HookError.h"
#include "foundation/nxTXN/ImmutableReference.h"
#include "foundation/nxTXN/Manager.h"
#include "foundation/nxTXN/Object.h"
#include "foundation/nxTXN/ObjectList.h"
#include "foundation/nxTXN/ObjectListBase.h"
#include "foundation/nxTXN/Reader.h"
#include "foundation/nxTXN/RefCountedObject.h"
#include "foundation/nxTXN/Serializer.h"
#include "foundation/nxTXN/Transaction.h"
#include "foundation/nxTXN/Writer.h"
#include "foundation/nxTXN/debugChannel.h"
#include "foundation/nxTXN/fields.h"
