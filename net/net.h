// All of this module. Made by scripts/module_headers.
#pragma once

#include "net/CallbackSlot.h"
#include "net/Connection.h"
#include "net/Manager.h"
#include "net/Request.h"
#include "net/reflection.h"
