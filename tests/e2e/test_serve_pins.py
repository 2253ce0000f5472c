#!/usr/bin/env python3
"""Drivers and loads of the tool net: those of the netlist, unfolded by the test itself."""

import collections
import json
import os
import unittest

from jsonschema import Draft202012Validator
from mcp import Server
from program import ELABORATED, POST_MAP, ProgramTest


# What a port of the top is, seen from inside.
OUTSIDE = {"input": "output", "output": "input", "inout": "inout"}


class Unfolded:
    """The nets of a netlist in JSON, followed through the ports of all instances."""

    def __init__(self, file):
        with open(os.path.join(os.environ["REPOSITORY"], file), encoding="utf-8") as stream:
            self.modules = json.load(stream)["modules"]
        self.parents = {}
        self.names = {}
        self.pins = collections.defaultdict(lambda: (collections.Counter(), collections.Counter()))
        top = next(module for module in self.modules.values() if int(module["attributes"].get("top", "0"), 2))
        for name, port in top["ports"].items():
            for place, bit in enumerate(port["bits"]):
                self.add(("", bit), OUTSIDE[port["direction"]], self.bit_name(name, port, place))
        self.unfold(top, "")
        for net in list(self.pins):
            for mine, whole in zip(self.pins[net], self.pins[self.find(net)]):
                if net != self.find(net):
                    whole.update(mine)

    def find(self, net):
        while net in self.parents:
            net = self.parents[net]
        return net

    @staticmethod
    def bit_name(name, signal, place):
        bits = signal["bits"]
        if len(bits) == 1 and "offset" not in signal:
            return name
        place = len(bits) - 1 - place if signal.get("upto") else place
        return f"{name}[{place + signal.get('offset', 0)}]"

    def add(self, net, direction, pin):
        for place, other in enumerate(("input", "output")):
            self.pins[net][place][pin] += direction != other

    def unfold(self, module, prefix):
        for name, signal in module["netnames"].items():
            for place, bit in enumerate(signal["bits"]):
                self.names[prefix + self.bit_name(name, signal, place)] = (prefix, bit)
        for name, cell in module["cells"].items():
            below = self.modules.get(cell["type"])
            is_leaf = below is None or "blackbox" in below["attributes"] or "whitebox" in below["attributes"]
            for port, bits in cell["connections"].items():
                for place, bit in enumerate(bits):
                    if is_leaf and not isinstance(bit, str):
                        self.add((prefix, bit), cell["port_directions"][port], (prefix + name, port))
                    elif not is_leaf:
                        # A net of its own for what is tied to a constant outside.
                        outer = self.find((prefix, bit) if not isinstance(bit, str) else (prefix, name, port, place))
                        inner = self.find((f"{prefix}{name}/", below["ports"][port]["bits"][place]))
                        if outer != inner:
                            self.parents[inner] = outer
            if not is_leaf:
                self.unfold(below, f"{prefix}{name}/")

    def pins_of(self, name):
        """Drivers and loads of a net, each with how often it is one."""
        return [+pins for pins in self.pins[self.find(self.names[name])]]


def counted(pins):
    return collections.Counter(pin["path"] if pin["pin"] is None else (pin["path"], pin["pin"].split("[")[0])
                               for pin in pins)


class Pins(ProgramTest):
    def check(self, design, *below, every=1):
        reference = Unfolded(design)
        checked = with_both = 0
        with Server(design) as server:
            server.initialize()
            schema = next(tool for tool in server.request("tools/list")["result"]["tools"] if tool["name"] == "net")
            for start in below:
                found = self.results("search", design, "", "--from", start, "--user-nets", "--kind", "net,bus")
                for path in (row["path"] for row in found[::every]):
                    page = server.ask("net", path=path, pins=1000, limit=1000, max_bytes=1 << 26)
                    Draft202012Validator(schema["outputSchema"]).validate(page)
                    for row in page["results"]:
                        if row["net"] not in reference.names:
                            continue
                        drivers, loads = reference.pins_of(row["net"])
                        self.assertEqual(counted(row["drivers"]), drivers, row["net"])
                        self.assertEqual(row["load_count"], loads.total(), row["net"])
                        if loads.total() <= 1000:
                            self.assertEqual(counted(row["loads"]), loads, row["net"])
                        checked += 1
                        with_both += bool(drivers) and bool(loads)
        self.assertGreater(checked, 100)
        self.assertGreater(with_both, checked // 2)

    def test_they_are_those_of_the_unfolded_netlist(self):
        self.check(ELABORATED, "g_uart[0].u_uart", "u_cpu", "u_clocks", "u_attention")
        self.check(POST_MAP, "", every=13)

    def test_lists_are_as_long_as_asked(self):
        with Server(ELABORATED) as server:
            server.initialize()
            for most in (0, 3, 1000):
                row = server.ask("net", path="clk_sys_i", pins=most)["results"][0]
                self.assertEqual(len(row["loads"]), min(most, row["load_count"]))
            self.assertEqual(row["drivers"], [{"path": "clk_sys_i", "type": None, "pin": None}])
            self.assertGreater(row["load_count"], 100)

    def test_of_more_pins_than_are_looked_at_the_number_is_unknown(self):
        cells = ",".join(f'"c{number}":{{"type":"$not","parameters":{{}},"attributes":{{}},"port_directions":'
                         f'{{"A":"input","Y":"output"}},"connections":{{"A":[2],"Y":[{number + 3}]}}}}'
                         for number in range(30_000))
        design = self.file("wide.json", '{"modules":{"top":{"attributes":{"top":"1"},"ports":{"a":{"direction":"input",'
                           '"bits":[2]}},"netnames":{"a":{"bits":[2]}},"cells":{' + cells + "}}}}")
        with Server(design) as server:
            server.initialize()
            row = server.ask("net", path="a")["results"][0]
        self.assertIsNone(row["load_count"])
        self.assertEqual(len(row["loads"]), 10)


if __name__ == "__main__":
    unittest.main()
