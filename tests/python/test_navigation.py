#!/usr/bin/env python3
"""Walks a design from item to item."""

import copy
import pickle
import unittest

import netlistdb
from designs import ELABORATED, program


class Navigation(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.design = netlistdb.load(ELABORATED)

    @classmethod
    def tearDownClass(cls):
        cls.design.close()

    def test_instances_are_those_that_the_program_shows(self):
        paths = [row["path"] for row in program("tree", ELABORATED)["results"]]
        self.assertEqual([instance.path for instance in self.design.walk()], paths)

    def test_an_instance_leads_up_and_down(self):
        top = self.design.top
        self.assertEqual((top.name, top.path, top.parent, top.depth), ("", "", None, 0))
        cpu = self.design["u_cpu"]
        self.assertEqual(cpu.parent, top)
        self.assertIn(cpu, top.children)
        self.assertEqual([child.depth for child in cpu.children][:1], [2])
        self.assertEqual(cpu.module.name, "cpu_core")
        self.assertTrue(str(cpu.source).endswith(".v:%d" % cpu.source.line))
        self.assertEqual({port.direction for port in cpu.module.ports}, {"input", "output"})

    def test_sequences_count_from_both_ends_and_in_slices(self):
        children = self.design.top.children
        self.assertEqual(children[-1], children[len(children) - 1])
        self.assertEqual(children[1:4], [children[1], children[2], children[3]])
        self.assertEqual(list(reversed(children))[0], children[-1])
        self.assertEqual(len(list(children)), len(children))
        for place in (len(children), -len(children) - 1):
            with self.assertRaises(IndexError):
                children[place]

    def test_nets_are_the_bits_of_buses_and_the_others(self):
        top = self.design.top
        bits = [net for bus in top.buses for net in bus.bits]
        others = [net for net in top.nets if net.bus is None]
        self.assertEqual(set(bits) | set(others), set(top.nets))
        self.assertEqual(len(bits) + len(others), len(top.nets))

    def test_bits_come_from_the_left(self):
        bus = self.design["adc_data_i"]
        self.assertIsInstance(bus, netlistdb.Bus)
        self.assertEqual((bus.left, bus.right, len(bus)), (11, 0, 12))
        self.assertEqual([bit.name for bit in bus][:2], ["adc_data_i[11]", "adc_data_i[10]"])
        self.assertEqual(bus[3].path, "adc_data_i[3]")
        self.assertEqual(bus[3].bus, bus)
        with self.assertRaises(netlistdb.NotFoundError):
            bus[12]

    def test_brackets_find_what_a_path_names(self):
        cpu = self.design["u_cpu"]
        name = cpu.nets[0].name
        self.assertEqual(cpu[name], self.design[f"u_cpu/{name}"])
        self.assertEqual(self.design["adc_data_i[3]"], self.design["adc_data_i"][3])
        self.assertEqual(self.design["adc_data_i[3:2]"], self.design["adc_data_i"].bits[-4:-2])

    def test_every_path_leads_back_to_its_item(self):
        nets = {item.path for item in self.design.find("**", kind=["net", "bus"])}
        for instance in self.design.walk():
            # A net comes before an instance of the same name.
            if instance.path not in nets:
                self.assertEqual(self.design[instance.path], instance)
        for net in self.design["u_cpu"].nets:
            self.assertEqual(self.design[net.path], net)

    def test_what_is_missing_comes_with_the_nearest_names(self):
        with self.assertRaisesRegex(netlistdb.NotFoundError, "did you mean 'u_cpu'"):
            self.design["u_cpx"]
        with self.assertRaises(KeyError):
            self.design["u_cpx"]

    def test_aliases_name_the_same_net(self):
        count = 0
        for net in self.design.top.nets:
            for alias in net.aliases:
                found = self.design[alias]
                self.assertIn(net, found.bits if isinstance(found, netlistdb.Bus) else [found])
                count += 1
        self.assertGreater(count, 0)

    def test_handles_are_values(self):
        first, second = self.design["u_cpu"], self.design["u_cpu"]
        self.assertIsNot(first, second)
        self.assertEqual({first: 1}[second], 1)
        self.assertNotEqual(first, self.design["u_dma"])
        self.assertNotEqual(first, "u_cpu")
        self.assertIs(copy.deepcopy(first), first)
        with self.assertRaises(TypeError):
            pickle.dumps(first)

    def test_the_prompt_and_notebooks_show_them(self):
        self.assertEqual(repr(self.design["u_cpu"]), "<Instance u_cpu: cpu_core>")
        self.assertEqual(repr(self.design["adc_data_i"]), "<Bus adc_data_i[11:0]>")
        self.assertEqual(repr(self.design["adc_data_i[3]"]), "<Net adc_data_i[3]>")
        self.assertIn("<details", self.design["u_cpu"]._repr_html_())
        tree = self.design._repr_html_()
        self.assertLess(tree.index("u_trng"), tree.index("$add$designs/rtl/soc_top.v"), "nameless cells come last")
        self.assertIn("adc_data_i", self.design["adc_data_i"]._repr_html_())
        self.assertIn("u_cpu", self.design._ipython_key_completions_())


if __name__ == "__main__":
    unittest.main()
