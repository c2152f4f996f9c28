// Declares what the other headers of this module define. Made by scripts/module_headers.
#pragma once

namespace nxPLST {

class Array;
class Bool;
class Dictionary;
class Double;
struct Expansion;
class Item;
struct JsonLocation;
struct JsonLoss;
struct JsonReport;
struct JsonStyle;
class JsonTape;
struct PacketReport;
class Parser;
class ReadInterface;
class String;
class Value;
class WriteInterface;

}  // namespace nxPLST
