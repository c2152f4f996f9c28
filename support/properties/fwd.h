// Declares what the other headers of this module define. Made by scripts/module_headers.
#pragma once

namespace nxSupport {

struct LoadReport;
template <class Member>
class MemberEntry;
template <class Member>
class MemberList;
template <class T>
class Prop;
class Property;
class PropertySet;
class PropertyTBase;
class TxdProperty;
class TxdPropertyData;
class TxdPropertyTwin;
class UnTxdProperty;
class UnTxdPropertyData;

}  // namespace nxSupport
