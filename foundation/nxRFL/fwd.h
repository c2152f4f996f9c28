// Declares what the other headers of this module define. Made by scripts/module_headers.
#pragma once

namespace nxRFL {

class Callback;
class Class;
class Database;
class Exception;
template <class T>
class ExposeClass;
class ExposeClassBase;
class ExposeFunction;
class Function;
class IteratorState;
enum class Kind;
enum class ListingFormat;
template <class Map>
class MapIteratorState;
struct Member;
class MemberList;
class Object;
class OverloadedFunction;
template <class... Callables>
struct Overloads;
struct Parameter;
struct PlainResult;
struct PlainValue;
class Reader;
class Stack;
template <class Signature>
class ThrowingFunction;
template <class T>
struct TypeName;
class Writer;

}  // namespace nxRFL

namespace nxRFL::impl {

template <class Parameter>
struct PlainParameter;

}  // namespace nxRFL::impl
