"""How gdb shows kexlib's objects: load it by "source kexlib_gdb.py", in a session or in ~/.gdbinit.

It knows the layouts of GCC. Classes with virtual functions are described by the debug information of kexlib.dll. With a
DLL without any, such as that of the archive, compile your program with -g -femit-class-debug-always.

What is not initialised yet is shown as its bytes say.
"""

import gdb
import gdb.printing

NOT_READABLE = "not readable"
NOT_DESCRIBED = "no debug information"
LONGEST_NAME = 1000000  # of a block; a longer one is not initialised

def load(atomic: gdb.Value) -> gdb.Value:
    """The value of a std::atomic: of a pointer, of a bool, or of a number."""
    names = [field.name for field in atomic.type.strip_typedefs().fields()]
    if "_M_b" in names:
        return atomic["_M_b"]["_M_p"]
    return (atomic["_M_base"] if "_M_base" in names else atomic)["_M_i"]


def published(member: gdb.Value) -> gdb.Value:
    return load(member["value_"])


def linked(first: gdb.Value, following):
    """The elements of a list, from a pointer to the first one."""
    while first:
        yield first.dereference()
        first = following(first)


def counted(number: int, what: str) -> str:
    return f"{number} {what}" if number == 1 else f"{number} {what}s"


class Printer:
    def __init__(self, value: gdb.Value) -> None:
        is_reference = value.type.strip_typedefs().code in (gdb.TYPE_CODE_REF, gdb.TYPE_CODE_RVALUE_REF)
        self.value = value.referenced_value() if is_reference else value

    def __getitem__(self, member: str) -> gdb.Value:
        return self.value[member]

    def is_described(self) -> bool:
        return bool(self.value.type.strip_typedefs().fields())

    def to_string(self) -> str:
        if not self.is_described():
            return NOT_DESCRIBED
        try:
            return self.text()
        except gdb.MemoryError:
            return NOT_READABLE


class ListPrinter(Printer):
    """What has elements."""

    def children(self):
        if not self.is_described():
            return
        try:
            for at, element in enumerate(self.elements()):
                element.fetch_lazy()  # fails here, not when gdb shows it
                yield f"[{at}]", element
        except gdb.MemoryError:
            return

    def display_hint(self) -> str:
        return "array"


class Guid(Printer):
    def text(self) -> str:
        guid = self["guid"]
        data = [int(guid["Data4"][i]) for i in range(8)]
        numbers = [int(guid[name]) for name in ("Data1", "Data2", "Data3")]
        if not any(numbers + data):
            return "not made yet"
        end = "".join(f"{byte:02X}" for byte in data)
        text = "{:08X}-{:04X}-{:04X}-{}-{}".format(*numbers, end[:4], end[4:])
        return f"{{{text}}}" if self["braced"] else text


class Variant(Printer):
    def text(self) -> str:
        kind = int(self["vt"])
        if kind == 0:
            return "empty"
        if kind == 2:
            return str(int(self["iVal"]))
        if kind == 3:
            return str(int(self["lVal"]))
        if kind == 5:
            return str(float(self["dblVal"]))
        if kind == 8:
            return self["bstrVal"].format_string(format="s", address=False) if self["bstrVal"] else "null text"
        if kind == 10:
            return f"error 0x{int(self['scode']) & 0xFFFFFFFF:08X}"
        if kind == 11:
            return "true" if self["boolVal"] else "false"
        return f"type {kind}"


class VariantArray(ListPrinter):
    def text(self) -> str:
        array = self["array"]
        if not array:
            return "no array"
        owner = "owned" if self["owned"] else "viewed"
        return f"{counted(int(array['rgsabound'][0]['cElements']), 'element')}, {owner}"

    def elements(self):
        array, variant = self["array"], gdb.lookup_type("kexComVariant")
        if not array or int(array["cbElements"]) != variant.sizeof:
            return
        data = array["pvData"].cast(variant.pointer())
        for at in range(int(array["rgsabound"][0]["cElements"])):
            yield data[at]


class Dib(Printer):
    def text(self) -> str:
        if not self["m_bits"]:
            return "no picture"
        size, depth = self["m_size"], self["m_bmi"]["bmiHeader"]["biBitCount"]
        return f"{int(size['cx'])} x {int(size['cy'])} pixels of {int(depth)} bits"


class Buffer(Printer):
    def text(self) -> str:
        state = "closed" if load(self["closed_"]) else "open"
        if not self["stream_"].type.fields():
            return f"{state}, {NOT_DESCRIBED} of the size"
        text = self["stream_"]["_M_stringbuf"]
        written = int(text["_M_out_cur"]) - int(text["_M_out_beg"])
        return f"{state}, {counted(written + int(self['missing_']), 'byte')}"


class Timer(Printer):
    def text(self) -> str:
        state = "runs"
        if not self["timer_id_"]:
            state = "stopped"
        elif self["suspended_"]:
            state = "suspended"
        elif not self["repeatable_"]:
            state = "runs once"
        return f"{state}, {int(self['interval_'])} ms"


class ControlGroup(Printer):
    def text(self) -> str:
        count = int(self["control_ids_"]["_M_t"]["_M_impl"]["_M_node_count"])
        return f"{counted(count, 'control')}, enabled {int(self['enabled_'])}, visible {int(self['visible_'])}"


class StepManager(ListPrinter):
    def _bounds(self):
        steps = self["steps_"]["_M_impl"]
        return steps["_M_start"], steps["_M_finish"]

    def text(self) -> str:
        first, end = self._bounds()
        return f"{counted(int(end - first), 'step')}, active {int(self['active_step_idx_'])}"

    def elements(self):
        step, end = self._bounds()
        while step < end:
            yield step.dereference().dereference()
            step += 1


class Published(Printer):
    def text(self) -> str:
        return str(published(self.value))


class Block(ListPrinter):
    def text(self) -> str:
        name = self["name_"]
        length = int(name["_M_len"])
        if length > LONGEST_NAME:
            return NOT_READABLE
        text = name["_M_str"].string(length=length, errors="replace") if length else ""
        chunks = linked(published(self["first_chunk_"]), lambda chunk: published(chunk["next"]))
        return f'"{text}", {counted(sum(int(published(chunk["count"])) for chunk in chunks), "interval")}'

    def elements(self):
        return linked(published(self["first_child_"]), lambda block: published(block["next_sibling_"]))


class ThreadRecord(ListPrinter):
    def text(self) -> str:
        return f"thread {int(self['id_'])}"

    def elements(self):
        return Block(self["root_"]).elements()


class ProfileRecord(ListPrinter):
    def text(self) -> str:
        return counted(sum(1 for _ in self.elements()), "thread")

    def elements(self):
        return linked(load(self["first_"]), lambda thread: load(thread["next_"]))


PRINTERS = {"kexGUID": Guid, "kexComVariant": Variant, "QuickVariantSafeArray": VariantArray, "kexWTLDIB": Dib,
            "kexBuffer": Buffer, "CATLWindowLessTimer": Timer, "atlControlGroup": ControlGroup,
            "atlStepControlGroup": ControlGroup, "atlStepManager": StepManager, "kexlib::Published<.*>": Published,
            "kexlib::Block": Block, "kexlib::ThreadRecord": ThreadRecord, "kexlib::ProfileRecord": ProfileRecord}

collection = gdb.printing.RegexpCollectionPrettyPrinter("kexlib")
for name, printer in PRINTERS.items():
    collection.add_printer(name, f"^{name}$", printer)
gdb.printing.register_pretty_printer(None, collection, replace=True)
