// Declares what the other headers of this module define. Made by scripts/module_headers.
#pragma once

namespace urString {

class CString;
enum class Encoding : int;
class IString;
class NearestName;
struct less;

}  // namespace urString

namespace urString::impl {

class TextRep;

}  // namespace urString::impl
