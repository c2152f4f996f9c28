// Declares what the other headers of this module define. Made by scripts/module_headers.
#pragma once

namespace nxSupport {

template <class T>
class Attribute;
class AttributeBase;
class BoundedDouble;
class BoundedInt;
template <class Result, class Input>
class Func1Attr;
class RampAttr;
class SineAttr;

}  // namespace nxSupport

namespace nxSupport::Units {

class Length;

}  // namespace nxSupport::Units
