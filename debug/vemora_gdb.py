"""Shows the values of CommonPreferences in GDB.

    (gdb) source debug/vemora_gdb.py
    (gdb) print title
    $1 = u"Ground floor"

The contents of vectors and dictionaries are shown by the printers of the standard library.
"""

import gdb
import gdb.printing

PREFERENCE_KINDS = ("kInt", "kBool", "kDouble", "kText", "kOther", "kNone")


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


class PreferencePrinter:
    """Preference: what the store keeps of one, with its name and a text behind it"""

    def __init__(self, value):
        self._value = value

    def to_string(self):
        kind = int(self._value["kind_"])
        return PREFERENCE_KINDS[kind] if kind < len(PREFERENCE_KINDS) else f"unknown kind {kind}"

    def children(self):
        yield "name", self._text_behind(self._value.address, self._value["length_"])
        kind = self.to_string()
        content = self._value["value_"]
        if kind == "kInt":
            yield "value", content["integer"]
        elif kind == "kBool":
            yield "value", content["boolean"]
        elif kind == "kDouble":
            yield "value", content["real"]
        elif kind == "kText":
            yield "value", self._text_behind(content["text"], content["text"]["length"])

    @staticmethod
    def _text_behind(pointer, length):
        bytes_behind = (pointer + 1).cast(gdb.lookup_type("char").const().pointer())
        return bytes_behind.lazy_string("utf-8", int(length))


def make_printers():
    printers = gdb.printing.RegexpCollectionPrettyPrinter("CommonPreferences")
    for name, printer in {
            "utils::vemora_ustring": TextPrinter,
            "utils::Variant": variant_printer,
            "utils::Dictionary": DictionaryPrinter,
            "prefs::Preference": PreferencePrinter,
    }.items():
        printers.add_printer(name, f"^vemora::{name}$", printer)
    return printers


gdb.printing.register_pretty_printer(gdb.current_objfile(), make_printers(), replace=True)
