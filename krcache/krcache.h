// All of this module. Made by scripts/module_headers.
#pragma once

#include "krcache/Accountant.h"
#include "krcache/KeyData.h"
#include "krcache/KeyVisitor.h"
#include "krcache/Manager.h"
#include "krcache/ManagerObserver.h"
#include "krcache/PageFileEntry.h"
#include "krcache/Resource.h"
#include "krcache/Shim.h"
#include "krcache/Statistics.h"
#include "krcache/TraceRecorder.h"
#include "krcache/debugChannel.h"
