"""What the RTL of the small design of names declares, read on its own."""

import os
import re

from program import REPOSITORY


def rtl_declarations():
    """Line of each declaration in the RTL of the small design, by module and name."""
    lines, module = {}, None
    with open(os.path.join(REPOSITORY, "designs/names/names.v")) as stream:
        for number, line in enumerate(stream, 1):
            line = line.split("//")[0]
            if match := re.match(r"\s*module (\w+)", line):
                module = match[1]
            if match := re.match(r"\s*(?:input|output|wire|reg)\b(?:\s+(?:wire|reg))?\s*(?:\[[^]]*\])?\s*(\\\S+|\w+)", line):
                lines[module, match[1].removeprefix("\\")] = number
    return lines


CHILDREN = {
    "names_top": {"u_pair": "names_pair"},
    "names_pair": {"u_first": "names_stage", "u_second": "names_stage"},
    "names_stage": {},
}


def declaration_of(path):
    """Module and name of what a path of the small design, with whatever separators, comes from."""
    module, rest = "names_top", path
    while match := re.match(r"(\w+)[./](.*)", rest):
        if match[1] not in CHILDREN[module]:
            break
        module, rest = CHILDREN[module][match[1]], match[2]
    return module, re.sub(r"\[[\d:]+\]$", "", rest).removeprefix("\\")


def instances_of(module, top="names_top", path=""):
    """Path of every instance of a module of the small design; the one of the top is empty."""
    if module == top:
        yield path
    for name, child in CHILDREN[top].items():
        yield from instances_of(module, child, f"{path}{name}/")


def rtl_lines():
    """Line of the declaration of every signal of the small design, by its path."""
    return {path + name: line for (module, name), line in rtl_declarations().items() for path in instances_of(module)}
