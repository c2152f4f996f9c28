"""Shows texts, references, items, maps and properties of libSupport in gdb as what they hold.

gdb loads this file together with the library when it is installed below its folder `auto-load`; otherwise
`source libSupport-gdb.py`.
"""
import gdb
import gdb.printing

MOST_TEXT = 200  # characters of a text that lies inside another value


def text_of(value):
    """The bytes of a CString or TextRep as a Python string; what is no UTF-8 is escaped."""
    rep = value["rep_"] if "rep_" in [field.name for field in value.type.fields()] else value
    words = [int(rep["words_"][i]) for i in range(2)]
    tag = words[1] >> 56
    if tag < 0x80:
        data = b"".join(word.to_bytes(8, "little") for word in words)[: 15 - tag]
    else:
        size = words[1] & ((1 << 56) - 1)
        data = gdb.selected_inferior().read_memory(words[0], size).tobytes() if size else b""
    return data.decode("utf-8", "backslashreplace")


def quoted(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"').replace("\n", "\\n") + '"'


def brief(text):
    return quoted(text if len(text) <= MOST_TEXT else text[:MOST_TEXT] + "...")


def whole(value):
    """An item as the class that its type names; anything else as it is."""
    if not value.type.strip_typedefs().unqualified().name == "nxPLST::Item":
        return value
    name = str(value["type_"]).rsplit("::", 1)[-1]  # such as nxPLST::DoubleType
    try:
        target = gdb.lookup_type("nxPLST::" + name.removesuffix("Type")).pointer()
    except gdb.error:
        return value
    # Not from the base to the derived class, for which gdb asks the library's symbols.
    return value.address.cast(gdb.lookup_type("void").pointer()).cast(target).dereference()


class Text:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        return text_of(self.value)

    def display_hint(self):
        return "string"


class Null:
    def __init__(self, _value):
        pass

    def to_string(self):
        return "null"


class Pointer:
    def __init__(self, value):
        self.object = value

    def to_string(self):
        return "reference"

    def children(self):
        yield "object", self.object


def reference(value):
    """The printer of what it refers to, if that has one."""
    if not value["object_"]:
        return Null(value)
    target = whole(value["object_"].dereference())
    return gdb.default_visualizer(target) or Pointer(target)


def entries(value):
    """The pairs of a map: of its block, or of the linked leaves of its tree."""
    block = value["first_"]
    if not block:
        return
    kind = block.type.target().strip_typedefs()
    entry = gdb.lookup_type(kind.name + "::Entry").strip_typedefs()
    full = int(kind.template_argument(2))
    links_end = kind.sizeof + full * entry.sizeof
    links_at = -(-links_end // 8) * 8
    while block:
        first = (block + 1).cast(entry.pointer())
        for i in range(int(block["size"])):
            yield first[i]
        if int(block["capacity"]) != full:
            return
        # The second of four pointers is the next block.
        links = (block.cast(gdb.lookup_type("char").pointer()) + links_at).cast(block.type.pointer())
        block = links[1]


class Map:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        return f"map of {sum(1 for _ in entries(self.value))}"

    def children(self):
        for i, pair in enumerate(entries(self.value)):
            yield f"key {i}", pair["first"]
            yield f"value {i}", pair["second"]

    def display_hint(self):
        return "map"


def summary(item):
    """An item without children in one word, or None."""
    name = item.type.strip_typedefs().name or ""
    if name == "nxPLST::Double":
        return repr(float(item["value_"]))
    if name == "nxPLST::Bool":
        return "true" if item["value_"] else "false"
    if name == "nxPLST::String":
        return brief(text_of(item["value_"]))
    return None


class Scalar:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        return summary(self.value)


class Array:
    def __init__(self, value):
        self.elements = gdb.default_visualizer(value["array_"])

    def to_string(self):
        return "array"

    def children(self):
        return self.elements.children()

    def display_hint(self):
        return "array"


class Dictionary(Map):
    def __init__(self, value):
        super().__init__(value["dictionary_"])

    def to_string(self):
        return "dictionary"


def printers():
    collection = gdb.printing.RegexpCollectionPrettyPrinter("libSupport")
    for name, pattern, printer in [
        ("CString", r"^urString::(CString|impl::TextRep)$", Text),
        ("Reference", r"^ur::Reference<.*>$", reference),
        ("map", r"^ur::BlockMap<.*>$", Map),
        ("scalar", r"^nxPLST::(Double|Bool|String)$", Scalar),
        ("Array", r"^nxPLST::Array$", Array),
        ("Dictionary", r"^nxPLST::Dictionary$", Dictionary),
    ]:
        collection.add_printer(name, pattern, printer)
    return collection


gdb.printing.register_pretty_printer(gdb.current_objfile(), printers(), replace=True)
