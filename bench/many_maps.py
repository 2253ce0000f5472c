#!/usr/bin/env python3
"""Writes a large design in both forms: many copies of the designs in designs/map side by side, each with ports of its
own but for clock and reset.

    bench/many_maps.py COPIES ELABORATED.json POSTMAP.json
"""

import json
import os
import sys

DESIGNS = os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "designs", "map", "netlists")
SHARED = ("clk_i", "rst_i", "rst_ni")
NAMES = ("processor", "filter", "machines", "buffers", "checksums", "counters")


def read(name, form):
    with open(os.path.join(DESIGNS, f"{name}_{form}.json")) as stream:
        return json.load(stream)["modules"]


def highest(module):
    bits = [bit for net in module["netnames"].values() for bit in net["bits"]]
    bits += [bit for cell in module["cells"].values() for pins in cell["connections"].values() for bit in pins]
    return max(bit for bit in bits if isinstance(bit, int)) + 1


def top():
    return {"attributes": {"top": "1"}, "ports": {}, "cells": {}, "netnames": {}}


def main():
    copies = int(sys.argv[1])
    elaborated = {"creator": "many_maps.py", "modules": {}}
    post_map = {"creator": "many_maps.py", "modules": {}}
    tops = (top(), top())
    first = 2 + len(SHARED)
    for module in tops:
        for number, port in enumerate(SHARED):
            module["ports"][port] = {"direction": "input", "bits": [2 + number]}
    for name in NAMES:
        forms = (read(name, "elaborated"), read(name, "postmap"))
        for key, module in forms[0].items():
            module["attributes"].pop("top", None)
            elaborated["modules"][key] = module
        post_map["modules"].update((key, module) for key, module in forms[1].items() if key != name)
        mapped = forms[1][name]
        ports = forms[0][name]["ports"]
        size = highest(mapped)
        for number in range(copies):
            copy = f"u_{name}_{number}"
            pins = {}
            common = {mapped["ports"][port]["bits"][0]: 2 + SHARED.index(port) for port in ports if port in SHARED}

            def own(bits, shift=first, common=common):
                return [common.get(bit, bit + shift) if isinstance(bit, int) else bit for bit in bits]

            for port, fields in ports.items():
                bits = own(mapped["ports"][port]["bits"])
                pins[port] = bits
                for module in tops if port not in SHARED else ():
                    module["ports"][f"{copy}_{port}"] = {"direction": fields["direction"], "bits": bits}
            tops[0]["cells"][copy] = {"hide_name": 0, "type": name, "parameters": {}, "attributes": {},
                                      "port_directions": {port: fields["direction"] for port, fields in ports.items()},
                                      "connections": pins}
            for net, fields in mapped["netnames"].items():
                path = f"{copy}.{net}" if not fields["hide_name"] else f"$flatten${copy}.{net}"
                tops[1]["netnames"][path] = {**fields, "bits": own(fields["bits"])}
            for cell, fields in mapped["cells"].items():
                tops[1]["cells"][f"{copy}.{cell}"] = {
                    **fields, "connections": {pin: own(bits) for pin, bits in fields["connections"].items()}}
            first += size
    for module in tops:
        for port, fields in module["ports"].items():
            module["netnames"][port] = {"hide_name": 0, "bits": fields["bits"], "attributes": {}}
    elaborated["modules"]["many"] = tops[0]
    post_map["modules"]["many"] = tops[1]
    for document, path in ((elaborated, sys.argv[2]), (post_map, sys.argv[3])):
        with open(path, "w") as stream:
            json.dump(document, stream, separators=(",", ":"))
    print(f"{len(tops[1]['cells'])} post-map cells")


if __name__ == "__main__":
    main()
