#!/usr/bin/env python3
"""Stops long work by Ctrl-C, by a callback and by closing; what is left stays usable."""

import os
import signal
import subprocess
import sys
import threading
import time
import unittest

import netlistdb
from designs import BEFORE, ELABORATED


class Stop(unittest.TestCase):
    def test_ctrl_c_while_loading_is_a_keyboard_interrupt(self):
        def interrupt(*_):
            os.kill(os.getpid(), signal.SIGINT)
        with self.assertRaises(KeyboardInterrupt):
            netlistdb.load(ELABORATED, progress=interrupt)
        with netlistdb.load(ELABORATED) as design:
            self.assertEqual(design.top.module.name, "soc_top")

    def test_ctrl_c_in_an_analysis_leaves_the_design_usable(self):
        with netlistdb.load(elaborated=BEFORE[0], post_map=BEFORE[1]) as design:
            net = design.top.nets[0]
            timer = threading.Timer(0.05, os.kill, (os.getpid(), signal.SIGINT))
            timer.start()
            with self.assertRaises(KeyboardInterrupt):
                while True:
                    with netlistdb.load(elaborated=BEFORE[0], post_map=BEFORE[1]) as other:
                        other.map(other.top.nets[0])
            timer.join()
            self.assertTrue(design.map(net).grade)

    def test_ctrl_c_ends_a_search_that_finds_nothing(self):
        with netlistdb.load(ELABORATED) as design:
            timer = threading.Timer(0.2, os.kill, (os.getpid(), signal.SIGINT))
            timer.start()
            with self.assertRaises(KeyboardInterrupt):
                while True:
                    list(design.find("nothing of that name"))
            self.assertEqual(len(list(design.find("**", limit=3))), 3)

    def test_what_a_callback_raises_comes_through(self):
        seen = []

        def refuse(what, done, total):
            seen.append((what, done, total))
            raise LookupError("enough")
        with self.assertRaisesRegex(LookupError, "enough"):
            netlistdb.load(ELABORATED, progress=refuse)
        self.assertEqual(len(seen), 1)
        self.assertIn("soc_elaborated.json", seen[0][0])

    def test_a_callback_may_use_designs(self):
        with netlistdb.load(ELABORATED) as design:
            paths = set()
            with netlistdb.load(ELABORATED, progress=lambda *_: paths.add(design["u_cpu"].nets[0].path)):
                self.assertLessEqual(len(paths), 1)

    def test_other_threads_run_while_a_design_is_loaded(self):
        ticks = []
        over = threading.Event()

        def tick():
            while not over.wait(0.001):
                ticks.append(time.monotonic())
        thread = threading.Thread(target=tick)
        thread.start()
        begin = time.monotonic()
        netlistdb.load(ELABORATED).close()
        end = time.monotonic()
        over.set()
        thread.join()
        self.assertGreater(len([tick for tick in ticks if begin < tick < end]), 3)

    def test_threads_share_a_design(self):
        with netlistdb.load(elaborated=BEFORE[0], post_map=BEFORE[1]) as design:
            expected = [net.path for net in design.find("**", kind="net", limit=300)]
            crossings = len(design.crossings())
            faults = []

            def work():
                try:
                    assert [net.path for net in design.find("**", kind="net", limit=300)] == expected
                    assert all(net.probe.verdict for net in design.top.nets[:5])
                    assert len(design.crossings()) == crossings
                except BaseException as fault:
                    faults.append(fault)
            threads = [threading.Thread(target=work) for _ in range(4)]
            for thread in threads:
                thread.start()
            for thread in threads:
                thread.join()
            self.assertEqual(faults, [])

    def test_after_close_everything_raises_one_error(self):
        design = netlistdb.load(elaborated=BEFORE[0], post_map=BEFORE[1])
        bus, net, cpu = design["u_link/count_q"], design.top.nets[0], design["u_link"]
        search, walk, probes = design.find("**"), design.walk(), design.probes()
        children, iterator, clock, device = cpu.children, iter(cpu.children), design.clocks[0], design.device
        for each in (search, walk, probes, iterator):
            next(each)
        known = {net: 1}
        design.close()
        design.close()
        questions = [
            lambda: design.top, lambda: design.name, lambda: design["u_link"], lambda: design.find("x"),
            lambda: design.clocks, lambda: design.crossings(), lambda: design.probes(), lambda: device.top,
            lambda: cpu.name, lambda: cpu.path, lambda: cpu.children, lambda: cpu.nets, lambda: cpu.buses,
            lambda: cpu.module, lambda: cpu.parent, lambda: cpu["x"], lambda: cpu.source, lambda: cpu.walk(),
            lambda: net.name, lambda: net.path, lambda: net.bus, lambda: net.source, lambda: net.aliases,
            lambda: net.clocks, lambda: net.captures, lambda: net.why(), lambda: net.probe, lambda: bus.bits,
            lambda: bus.width, lambda: bus[0], lambda: bus.left, lambda: len(children), lambda: children[0],
            lambda: clock.name, lambda: clock.parents, lambda: clock.net,
            lambda: next(search), lambda: next(walk), lambda: next(probes), lambda: next(iterator),
        ]
        for number, question in enumerate(questions):
            with self.assertRaises(netlistdb.ClosedError, msg=number) as caught:
                question()
            self.assertEqual(str(caught.exception), "the design has been closed")
        self.assertEqual(known[net], 1)
        self.assertEqual(repr(net), "<Net of a closed design>")
        self.assertEqual(repr(design), "<Design, closed>")
        self.assertIn("closed", design._repr_html_() + cpu._repr_html_() + bus._repr_html_())

    def test_the_process_ends_well_with_designs_open_and_work_left(self):
        script = ("import netlistdb, signal, os, warnings\nwarnings.simplefilter('ignore')\n"
                  f"d = netlistdb.load(elaborated={str(BEFORE[0])!r}, post_map={str(BEFORE[1])!r})\n"
                  "s = d.find('**'); next(s)\n"
                  "try: d.map(d.top.nets[0], progress=lambda *a: os.kill(os.getpid(), signal.SIGINT))\n"
                  "except KeyboardInterrupt: print('stopped')\n")
        result = subprocess.run([sys.executable, "-c", script], check=False, capture_output=True, text=True,
                                timeout=120)
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "stopped\n", ""))


if __name__ == "__main__":
    unittest.main()
