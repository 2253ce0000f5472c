#!/usr/bin/env python3
"""Calls everything with what nobody should hand over: an exception is fine, a crash is not."""

import itertools
import json
import random
import tempfile
import unittest
from pathlib import Path

import netlistdb
from netlistdb import _native
from designs import BEFORE

CALLS = 4000
TEXTS = ["", "x", "\0", "a\0b", "\udc80", "\ud800", "../..", "*" * 300, "**/" * 200, "[" * 50, "\\", "(" * 500,
         "a" * 10000, "u_link", "clk_core_i", "é", "\x1b[31m", "</script>", "x[99999999999]", "x[-1:2147483648]",
         "u_link/count_q[3:1]"]
NUMBERS = [0, 1, -1, 2**31, -2**31 - 1, 2**63, 2**64, 10**40, 1.5, float("nan"), True]
# Calls that end or wait for what the others need.
LEFT_OUT = {"__init__", "__exit__", "close", "wait", "load", "__class__", "__init_subclass__", "__subclasshook__", "__reduce_ex__",
            "__reduce__", "__dir__", "__getstate__", "__sizeof__", "__setattr__", "__delattr__", "plan_add",
            "plan_export", "plan_check"}


class Hostile(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.design = netlistdb.load(elaborated=BEFORE[0], post_map=BEFORE[1])
        cls.closed = netlistdb.load(BEFORE[0])
        cls.left = [cls.closed.top, cls.closed.top.nets[0], cls.closed["u_link/count_q"], cls.closed.clocks[0],
                    cls.closed.top.children, cls.closed.find("**"), cls.closed.walk(), cls.closed.top.module,
                    cls.closed]
        cls.closed.close()

    @classmethod
    def tearDownClass(cls):
        cls.design.close()

    def values(self):
        design = self.design
        return [None, ..., [], {}, (), b"x", bytearray(3), object(), type, *TEXTS, *NUMBERS, [["x"]], ["net"],
                slice(1, -1), slice(0, 10**30, 0), design, design.device, design.top, design["u_link"],
                design.device.top, *self.left,
                design.top.nets[0], design.device.top.nets[0], design["u_link/count_q"], design.clocks[0], design.top.module,
                design.top.nets, design.top.buses, design.find("**"), design.walk(), design.probes(),
                iter(design.top.children), design._loaded, *vars(_native).values()]

    def test_any_call_with_any_arguments_leaves_the_process_alive(self):
        chance = random.Random(20261122)
        values = self.values()
        survived = 0
        for _ in range(CALLS):
            subject = chance.choice(values)
            names = [name for name in dir(subject) if name not in LEFT_OUT]
            if isinstance(subject, type) and subject.__module__ != "netlistdb._native":
                continue
            try:
                found = getattr(subject, chance.choice(names))
                if callable(found):
                    found = found(*chance.choices(values, k=chance.randrange(4)))
                if hasattr(found, "__next__"):
                    found = list(itertools.islice(found, 3))
                repr(found)
            except Exception:
                pass
            survived += 1
        self.assertGreater(survived, CALLS // 2)
        self.assertEqual(self.design["u_link"].path, "u_link")

    def test_functions_refuse_what_they_do_not_take(self):
        chance = random.Random(7)
        values = self.values()
        counts = {"search": 6, "clocks": 2, "crossings": 4, "match": 2, "probes": 3, "load": 11, "plan_read": 1}
        for name, arguments in counts.items():
            for _ in range(150):
                given = chance.choices(values, k=arguments)
                if name == "load" and given[0] in ([], ["net"]):
                    continue
                try:
                    getattr(_native, name)(*given)
                except Exception:
                    pass

    def test_no_handle_is_made_out_of_nothing(self):
        for kind in vars(_native).values():
            if isinstance(kind, type):
                for make in (kind, lambda: kind.__new__(kind), lambda: object.__new__(kind)):
                    with self.assertRaises(TypeError):
                        make()

                with self.assertRaises(TypeError):
                    type("Own", (kind,), {"__init__": lambda self: None})()

    def test_names_of_any_bytes_come_through(self):
        names = ["a\x1bb", "</script><script>", "x" * 10000, "q\"uo'te", "new\nline", "é☃", "back\\slash", "a b"]
        ports = {name: {"direction": "input", "bits": [number + 2]} for number, name in enumerate(names)}
        nets = {name: {"bits": [number + 2], "hide_name": 0, "attributes": {}} for number, name in enumerate(names)}
        module = {"attributes": {"top": "1"}, "ports": ports, "cells": {}, "netnames": nets}
        text = json.dumps({"modules": {"t": module}})
        with tempfile.TemporaryDirectory() as folder:
            file = Path(folder) / "names.json"
            file.write_bytes(text.encode().replace(b"a b", b"a\xffb"))
            try:
                design = netlistdb.load(file)
            except netlistdb.Error:
                # A reader may refuse bytes that are no text.
                file.write_text(text)
                design = netlistdb.load(file)
            with design:
                for net in design.top.nets:
                    self.assertEqual(design[net.path], net)
                    self.assertNotIn("<script>", net._repr_html_())
                    self.assertTrue(repr(net))
                self.assertGreaterEqual({net.name for net in design.top.nets}, {"a\x1bb", "x" * 10000, "new\nline"})


if __name__ == "__main__":
    unittest.main()
