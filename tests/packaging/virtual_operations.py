#!/usr/bin/env python3
"""virtual_operations.py LIBRARY EXPECTED: compares the order of the virtual operations of every concrete class that
LIBRARY exports with the list in the file EXPECTED. Callers compiled earlier reach an operation by its place there. What
a class takes over from an interface stands first, in the order of the interface."""

import difflib
import pathlib
import re
import subprocess
import sys


def lines_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout.splitlines()


def demangled(names):
    names = list(names)
    output = subprocess.run(
        ["c++filt"], input="\n".join(names), check=True, capture_output=True, text=True
    ).stdout.splitlines()
    short = [re.sub(r"kvr::netlistdb::|\[abi:cxx11\]", "", line) for line in output]
    return dict(zip(names, [re.sub(r"std::__cxx11::basic_string<.*?> >", "std::string", line) for line in short]))


def read_symbols(library):
    """Vtables as {name: (address, size)}, functions as {address: [name]}: the compiler makes one of equal ones."""
    tables, functions = {}, {}
    for line in lines_of("readelf", "-sW", library):
        # Num: Value Size Type Bind Vis Ndx Name
        columns = line.split()
        if len(columns) != 8 or not columns[0][:-1].isdigit() or columns[6] == "UND":
            continue
        address, name = int(columns[1], 16), columns[7]
        if name.startswith("_ZTVN3kvr9netlistdb") and columns[4] != "LOCAL":
            tables[name] = (address, int(columns[2], 0))
        elif columns[3] == "FUNC":
            functions.setdefault(address, []).append(name)
    return tables, functions


def read_relocations(library, functions):
    """What the loader writes where, as {address: [symbol]}."""
    entries = {}
    for line in lines_of("readelf", "-rW", library):
        # Offset Info Type (Value Name + Addend | Addend)
        columns = line.split()
        if len(columns) >= 4 and re.fullmatch(r"[0-9a-f]{12,16}", columns[0]):
            names = [columns[4]] if len(columns) > 4 else functions.get(int(columns[3], 16), ["(not exported)"])
            entries[int(columns[0], 16)] = names
    return entries


def main(library, expected):
    tables, functions = read_symbols(library)
    entries = read_relocations(library, functions)
    in_table = {
        table: [entries[place] for place in range(address, address + size, 8) if place in entries]
        for table, (address, size) in tables.items()
    }
    # Abstract classes: their tables name nothing.
    in_table = {
        table: entries_of
        for table, entries_of in in_table.items()
        if not any(names[0].startswith("__cxa_pure_virtual") for names in entries_of)
    }
    texts = demangled(list(in_table) + [name for entries_of in in_table.values() for names in entries_of for name in names])

    wanted = pathlib.Path(expected).read_text().splitlines()
    actual = []

    def add(*alternatives):
        """Several names of one function: that which is wanted here, if any."""
        place = len(actual)
        actual.append(wanted[place] if place < len(wanted) and wanted[place] in alternatives else alternatives[0])

    for table in sorted(in_table, key=texts.get):
        add(texts[table].replace("vtable for ", ""))
        seen_type = False
        for names in in_table[table]:
            if names[0].startswith("_ZTI"):  # heads the operations of the class, and again those of its second base
                if seen_type:
                    add("  second base")
                seen_type = True
            else:
                add(*("    " + texts[name] for name in names))
    if actual == wanted and actual:
        return 0
    pathlib.Path("virtual_operations.actual").write_text("\n".join(actual) + "\n")
    print("\n".join(difflib.unified_diff(wanted, actual, expected, "actual", lineterm="")))
    print(
        "error: the order of virtual operations changed; if it is meant to, with a new SONAME, copy "
        f"{pathlib.Path('virtual_operations.actual').absolute()} over {expected}",
        file=sys.stderr,
    )
    return 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
