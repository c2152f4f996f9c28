// All of this module. Made by scripts/module_headers.
#pragma once

#include "support/properties/MemberList.h"
#include "support/properties/Prop.h"
#include "support/properties/Property.h"
#include "support/properties/PropertySet.h"
#include "support/properties/PropertyTBase.h"
#include "support/properties/TxdProperty.h"
#include "support/properties/TxdPropertyData.h"
#include "support/properties/TxdPropertyTwin.h"
#include "support/properties/UnTxdProperty.h"
#include "support/properties/UnTxdPropertyData.h"
#include "support/properties/fields.h"
#include "support/properties/predicates.h"
#include "support/properties/savedValues.h"
