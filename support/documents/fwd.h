// Declares what the other headers of this module define. Made by scripts/module_headers.
#pragma once

namespace nxSupport {

class Autosave;
struct ClassDescription;
class Document;
enum class FileForm;
class Interaction;
class Object;
class ObjectCatalog;
class ObjectClass;
class Panel;
struct Pasted;
struct PropertyDescription;
struct Recoverable;

}  // namespace nxSupport
