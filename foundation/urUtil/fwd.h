// Declares what the other headers of this module define. Made by scripts/module_headers.
#pragma once

namespace urUtil {

struct Color;
struct Color8;
struct HSL;
template <class T>
class LinkedListNode;

}  // namespace urUtil
