"""Shows the values of CommonPreferences in GDB.

    (gdb) source debug/vemora_gdb.py
    (gdb) print title
    $1 = u"Ground floor"

The contents of vectors and dictionaries are shown by the printers of the standard library.
"""

import gdb
import gdb.printing

PREFERENCE_KINDS = ("kErased", "kInt", "kBool", "kDouble", "kText", "kOther")


class TextPrinter:
    """vemora_ustring"""

    def __init__(self, value):
        self._value = value

    def to_string(self):
        units = self._value["_M_dataplus"]["_M_p"]
        return units.lazy_string(length=int(self._value["_M_string_length"]))

    def display_hint(self):
        return "string"


class ContainerPrinter:
    """What holds the children of another value, one of the standard library."""

    def __init__(self, container):
        self._printer = gdb.default_visualizer(container)

    def children(self):
        # Without the printers of the standard library there is nothing to walk through.
        return self._printer.children() if self._printer is not None else iter(())

    def display_hint(self):
        return self._printer.display_hint() if self._printer is not None else None


class DictionaryPrinter(ContainerPrinter):
    """Dictionary"""

    def __init__(self, value):
        super().__init__(value["values"])

    def to_string(self):
        return "Dictionary"


class VariantContainerPrinter(ContainerPrinter):
    """Variant with a vector or a map"""

    def __init__(self, name, container):
        super().__init__(container)
        self._name = name

    def to_string(self):
        return self._name


class VariantPrinter:
    """Variant with anything else"""

    FIELDS = {
        "kBool": "boolean",
        "kChar": "character",
        "kShort": "short_integer",
        "kInt": "integer",
        "kUnsigned": "unsigned_integer",
        "kFloat": "single",
        "kDouble": "real",
        "kRaw64": "raw",
    }

    def __init__(self, name, payload):
        self._name = name
        self._payload = payload

    def to_string(self):
        return self._name

    def children(self):
        if self._name == "kString":
            yield "text", self._payload["cell"]["text"]
        elif self._name in self.FIELDS:
            field = self.FIELDS[self._name]
            yield field, self._payload[field]


def variant_printer(value):
    type_number = int(value["type_"])
    tags = gdb.lookup_type("vemora::utils::Variant::EType").fields()
    names = {tag.enumval: tag.name.rpartition("::")[2] for tag in tags}
    name = names.get(type_number, f"unknown type {type_number}")
    payload = value["payload_"]
    if name == "kVector":
        return VariantContainerPrinter(name, payload["vector"].dereference())
    if name == "kDictionary":
        return VariantContainerPrinter(name, payload["map"].dereference())
    return VariantPrinter(name, payload)


def inside(address, type_name):
    """What lies at an address of an arena."""
    return address.cast(gdb.lookup_type(type_name).pointer()).dereference()


def text_at(address, length):
    return address.cast(gdb.lookup_type("char").const().pointer()).lazy_string("utf-8", int(length))


def name_of(record):
    return text_at(record.address + 1, record["name_size"])


class PreferencePrinter:
    """PreferenceRecord: what a level keeps of a preference, without the text, which is in the table"""

    FIELDS = {"kInt": "integer", "kBool": "boolean", "kDouble": "real"}

    def __init__(self, value):
        self._value = value

    def to_string(self):
        kind = int(self._value["kind"])
        return PREFERENCE_KINDS[kind] if kind < len(PREFERENCE_KINDS) else f"unknown kind {kind}"

    def children(self):
        yield "name", name_of(self._value)
        field = self.FIELDS.get(self.to_string())
        if field is not None:
            yield "value", self._value["value"][field]


class LevelTablePrinter:
    """LevelTable: its preferences, category by category, texts included"""

    OFFSET_BITS = 13  # as in Arena
    NO_REF = 0xFFFFFFFF

    def __init__(self, value):
        self._value = value

    def to_string(self):
        return "LevelTable"

    def children(self):
        for category in self._items(self._value["categories_"]):
            record = inside(self._at(category), "vemora::prefs::CategoryRecord")
            if int(record["kind"]) != 0:
                yield from self._preferences(record)

    def _preferences(self, category):
        ref = int(category["first"])
        while ref != self.NO_REF:
            record = inside(self._at(ref), "vemora::prefs::PreferenceRecord")
            printer = PreferencePrinter(record)
            if printer.to_string() == "kText":
                text = record["value"]["text"]
                yield self._name(category, record), text_at(self._at(text["ref"]), text["size"])
            elif printer.to_string() != "kErased":
                children = dict(printer.children())
                yield self._name(category, record), children.get("value", printer.to_string())
            ref = int(record["next_of_category"])

    @staticmethod
    def _name(*records):
        return "/".join(
            (record.address + 1).cast(gdb.lookup_type("char").pointer()).string(
                "utf-8", "replace", int(record["name_size"])) for record in records)

    def _at(self, ref):
        # A std::unique_ptr is a pointer to the debugger.
        words = gdb.lookup_type("unsigned long long").pointer()
        blocks = self._value["arena_"]["blocks_"]["_M_impl"]["_M_start"].cast(words.pointer())
        return blocks[int(ref) >> self.OFFSET_BITS] + (int(ref) & ((1 << self.OFFSET_BITS) - 1))

    @staticmethod
    def _items(vector):
        """Of a std::vector, without the printers of the standard library."""
        item = vector["_M_impl"]["_M_start"]
        while item != vector["_M_impl"]["_M_finish"]:
            yield item.dereference()
            item += 1


def make_printers():
    printers = gdb.printing.RegexpCollectionPrettyPrinter("CommonPreferences")
    for name, printer in {
            "utils::vemora_ustring": TextPrinter,
            "utils::Variant": variant_printer,
            "utils::Dictionary": DictionaryPrinter,
            "prefs::PreferenceRecord": PreferencePrinter,
            "prefs::LevelTable": LevelTablePrinter,
    }.items():
        printers.add_printer(name, f"^vemora::{name}$", printer)
    return printers


gdb.printing.register_pretty_printer(gdb.current_objfile(), make_printers(), replace=True)
