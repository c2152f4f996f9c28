// All of this module. Made by scripts/module_headers.
#pragma once

#include "support/documents/Autosave.h"
#include "support/documents/ClassDescription.h"
#include "support/documents/Document.h"
#include "support/documents/Interaction.h"
#include "support/documents/Object.h"
#include "support/documents/ObjectCatalog.h"
#include "support/documents/ObjectClass.h"
#include "support/documents/Panel.h"
#include "support/documents/clipboard.h"
#include "support/documents/documentFiles.h"
#include "support/documents/recovery.h"
