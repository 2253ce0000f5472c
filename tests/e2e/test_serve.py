#!/usr/bin/env python3
"""The server, asked by a plain client: the protocol, and that every tool says what the program says."""

import json
import signal
import subprocess
import unittest

from jsonschema import Draft202012Validator
from mcp import (CAPABILITIES_KEY, CLIENT, SESSION, STATELESS, VERSION_KEY, Server, envelope)
from program import ELABORATED, POST_MAP, PROGRAM, REPOSITORY, ProgramTest, environment

PARSE_ERROR, INVALID_REQUEST, METHOD_NOT_FOUND, INVALID_PARAMS = -32700, -32600, -32601, -32602
UNSUPPORTED_VERSION = -32022
TOOLS = ["info", "children", "search", "net", "clocks", "why", "crossings", "probes", "map"]


class Sessions(ProgramTest):
    def test_a_session_begins_with_the_revision_that_the_client_asks_for(self):
        for version in SESSION:
            with Server(ELABORATED) as server:
                result = server.initialize(version)
                self.assertEqual(result["protocolVersion"], version)
                self.assertEqual(result["capabilities"], {"tools": {}})
                self.assertEqual(result["serverInfo"]["name"], "netlistdb")
                self.assertIn("soc_elaborated", result["instructions"])
                self.assertEqual(server.request("ping")["result"], {})

    def test_an_unknown_revision_is_answered_with_the_newest_that_begins_like_this(self):
        for version in ("2024-11-05", "1999-01-01", STATELESS):
            with Server(ELABORATED) as server:
                self.assertEqual(server.initialize(version)["protocolVersion"], SESSION[-1])

    def test_a_session_begins_once(self):
        with Server(ELABORATED) as server:
            server.initialize()
            params = {"protocolVersion": SESSION[0], "capabilities": {}, "clientInfo": CLIENT}
            self.assertEqual(server.request("initialize", params)["error"]["code"], INVALID_REQUEST)

    def test_nothing_but_ping_goes_before_the_session(self):
        with Server(ELABORATED) as server:
            self.assertEqual(server.request("ping")["result"], {})
            for method, params in (("tools/list", None), ("tools/call", {"name": "info"})):
                error = server.request(method, params)["error"]
                self.assertEqual(error["code"], INVALID_REQUEST)
                self.assertIn("initialize", error["message"])

    def test_a_session_that_says_too_little_does_not_begin(self):
        whole = {"protocolVersion": SESSION[0], "capabilities": {}, "clientInfo": CLIENT}
        with Server(ELABORATED) as server:
            for missing in whole:
                params = {name: value for name, value in whole.items() if name != missing}
                error = server.request("initialize", params)["error"]
                self.assertEqual(error["code"], INVALID_PARAMS)
                self.assertIn(missing, error["message"])
            self.assertEqual(server.request("tools/list")["error"]["code"], INVALID_REQUEST)

    def test_what_was_not_declared_is_no_method(self):
        with Server(ELABORATED) as server:
            server.initialize()
            for method in ("logging/setLevel", "prompts/list", "resources/list", "server/discover", "no/such", ""):
                self.assertEqual(server.request(method)["error"]["code"], METHOD_NOT_FOUND)


class Stateless(ProgramTest):
    def test_the_server_is_discovered_and_asked_without_a_session(self):
        with Server(ELABORATED) as server:
            result = server.request("server/discover", {"_meta": envelope()})["result"]
            self.assertEqual(result["supportedVersions"], [STATELESS])
            self.assertEqual(result["resultType"], "complete")
            self.assertEqual(result["cacheScope"], "private")
            self.assertGreaterEqual(result["ttlMs"], 0)
            listed = server.request("tools/list", {"_meta": envelope()})["result"]
            self.assertEqual([tool["name"] for tool in listed["tools"]], TOOLS)
            self.assertEqual((listed["resultType"], listed["cacheScope"]), ("complete", "private"))
            called = server.call("clocks", meta=envelope())["result"]
            self.assertEqual(called["resultType"], "complete")
            self.assertEqual(called["_meta"]["io.modelcontextprotocol/serverInfo"]["name"], "netlistdb")
            self.assertTrue(called["structuredContent"]["results"])

    def test_the_client_need_not_say_who_it_is(self):
        with Server(ELABORATED) as server:
            meta = {VERSION_KEY: STATELESS, CAPABILITIES_KEY: {}}
            self.assertIn("result", server.request("tools/list", {"_meta": meta}))

    def test_another_revision_is_refused_with_those_that_there_are(self):
        with Server(ELABORATED) as server:
            for version in ("2027-01-01", SESSION[0], ""):
                error = server.request("tools/list", {"_meta": envelope(version)})["error"]
                self.assertEqual(error["code"], UNSUPPORTED_VERSION)
                self.assertEqual(error["data"], {"supported": [STATELESS], "requested": version})

    def test_an_envelope_that_is_not_whole_is_refused(self):
        with Server(ELABORATED) as server:
            for change in ({CAPABILITIES_KEY: None}, {CAPABILITIES_KEY: []}, {VERSION_KEY: 20260728}):
                meta = {**envelope(), **change}
                self.assertEqual(server.request("tools/list", {"_meta": meta})["error"]["code"], INVALID_PARAMS)

    def test_it_has_neither_ping_nor_initialize(self):
        with Server(ELABORATED) as server:
            for method in ("ping", "initialize", "subscriptions/listen"):
                self.assertEqual(server.request(method, {"_meta": envelope()})["error"]["code"], METHOD_NOT_FOUND)


class Messages(ProgramTest):
    def error_of(self, server, line):
        server.write(line + (b"\n" if isinstance(line, bytes) else "\n"))
        answer = server.receive()
        self.assertNotIn("result", answer)
        return answer["id"], answer["error"]["code"]

    def test_what_is_no_message_is_refused_and_the_server_goes_on(self):
        with Server(ELABORATED) as server:
            for line, expected in (
                ("nonsense", (None, PARSE_ERROR)),
                ('{"jsonrpc":"2.0","id":1,"method":"ping"', (None, PARSE_ERROR)),
                ('{"jsonrpc":"2.0","id":1,"method":"ping"} {}', (None, PARSE_ERROR)),
                (b'{"jsonrpc":"2.0","id":1,"method":"\xff\xfe"}', (None, PARSE_ERROR)),
                (b'\x00', (None, PARSE_ERROR)),
                ('1e999999', (None, PARSE_ERROR)),
                ("17", (None, INVALID_REQUEST)),
                ("null", (None, INVALID_REQUEST)),
                ("{}", (None, INVALID_REQUEST)),
                ('{"jsonrpc":"1.0","id":4,"method":"ping"}', (4, INVALID_REQUEST)),
                ('{"id":"four","method":"ping"}', ("four", INVALID_REQUEST)),
                ('{"jsonrpc":"2.0","id":5}', (5, INVALID_REQUEST)),
                ('{"jsonrpc":"2.0","id":6,"method":7}', (6, INVALID_REQUEST)),
                ('{"jsonrpc":"2.0","id":null,"method":"ping"}', (None, INVALID_REQUEST)),
                ('{"jsonrpc":"2.0","id":1.5,"method":"ping"}', (None, INVALID_REQUEST)),
                ('{"jsonrpc":"2.0","id":[1],"method":"ping"}', (None, INVALID_REQUEST)),
                ('{"jsonrpc":"2.0","id":8,"method":"ping","params":[]}', (8, INVALID_PARAMS)),
                ('{"jsonrpc":"2.0","id":9,"method":"ping","params":null}', (9, INVALID_PARAMS)),
                ("[" * 100000, (None, INVALID_REQUEST)),
                ('{"a":' * 100000, (None, INVALID_REQUEST)),
            ):
                self.assertEqual(self.error_of(server, line), expected, line[:80])
            self.assertEqual(server.request("ping")["result"], {})

    def test_a_batch_is_refused_clearly(self):
        with Server(ELABORATED) as server:
            server.write('[{"jsonrpc":"2.0","id":1,"method":"ping"}]\n')
            error = server.receive()["error"]
            self.assertEqual(error["code"], INVALID_REQUEST)
            self.assertIn("batch", error["message"])

    def test_a_line_that_is_too_long_is_refused_and_skipped(self):
        with Server(ELABORATED) as server:
            self.assertEqual(self.error_of(server, '{"jsonrpc":"2.0","id":1,"x":"' + "x" * 5_000_000 + '"}'),
                             (None, INVALID_REQUEST))
            most = (1 << 20) - len('{"jsonrpc":"2.0","id":1,"method":"ping","x":""}')
            for size, outcome in ((most, "result"), (most + 1, "error")):
                server.write('{"jsonrpc":"2.0","id":1,"method":"ping","x":"%s"}\n' % ("x" * size))
                self.assertIn(outcome, server.receive())

    def test_unknown_members_blank_lines_and_returns_are_ignored(self):
        with Server(ELABORATED) as server:
            server.write('\n  \n\r\n{"more":{"a":[1]},"jsonrpc":"2.0","id":"a","method":"ping","params":{"x":1}}\r\n')
            self.assertEqual(server.receive(), {"jsonrpc": "2.0", "id": "a", "result": {}})

    def test_ids_come_back_as_they_are(self):
        with Server(ELABORATED) as server:
            for identity in (0, -7, 9007199254740993, "", "1", "é\u0000\n\"", "x" * 1000):
                self.assertEqual(server.request("ping", identity=identity)["id"], identity)

    def test_notifications_and_responses_get_no_answer(self):
        with Server(ELABORATED) as server:
            for line in ('{"jsonrpc":"2.0","method":"no/such"}', '{"jsonrpc":"2.0","id":1,"result":{}}',
                         '{"jsonrpc":"2.0","id":1,"error":{"code":1,"message":"x"}}',
                         '{"jsonrpc":"2.0","method":"notifications/cancelled"}',
                         '{"jsonrpc":"2.0","method":"notifications/cancelled","params":{"requestId":[]}}',
                         '{"jsonrpc":"2.0","method":"notifications/cancelled","params":{"requestId":77}}'):
                server.write(line + "\n")
            self.assertEqual(server.request("ping")["result"], {})

    def test_bytes_that_come_one_by_one_are_messages_too(self):
        with Server(ELABORATED) as server:
            for byte in b'{"jsonrpc":"2.0","id":1,"method":"ping"}\n':
                server.write(bytes([byte]))
            self.assertEqual(server.receive()["result"], {})

    def test_the_last_line_may_lack_its_end(self):
        with Server(ELABORATED) as server:
            server.write('{"jsonrpc":"2.0","id":1,"method":"ping"}')
            self.assertEqual(server.end(), [{"jsonrpc": "2.0", "id": 1, "result": {}}])


class Ends(ProgramTest):
    def test_the_end_of_the_input_ends_it_at_once(self):
        with Server(ELABORATED, POST_MAP):
            pass

    def test_what_was_asked_before_the_end_is_answered(self):
        with Server(ELABORATED) as server:
            server.send({"jsonrpc": "2.0", "id": 1, "method": "tools/call",
                         "params": {"name": "clocks", "_meta": envelope()}})
            rest = server.end()
            self.assertEqual([message["id"] for message in rest], [1])
            self.assertTrue(rest[0]["result"]["structuredContent"]["results"])

    def test_a_reader_that_goes_away_ends_it_quietly(self):
        process = subprocess.Popen([PROGRAM, "serve", ELABORATED], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE, cwd=REPOSITORY, env=environment())
        process.stdout.close()
        call = {"jsonrpc": "2.0", "id": 1, "method": "tools/call", "params": {"name": "info", "_meta": envelope()}}
        process.stdin.write(json.dumps(call).encode() + b"\n")
        process.stdin.flush()
        self.assertEqual(process.wait(120), 0)
        self.assertEqual(process.stderr.read(), b"")
        process.stderr.close()
        process.stdin.close()

    def test_a_design_that_cannot_be_read_ends_it_with_a_message(self):
        broken = self.file("broken.json", '{"modules": 17}')
        with Server(broken, expect=3) as server:
            server.send({"jsonrpc": "2.0", "id": 1, "method": "tools/call",
                         "params": {"name": "info", "_meta": envelope()}})
            self.assertEqual(server.process.wait(60), 3)
        self.assertEqual(len(server.complaints), 1)
        self.assertIn("broken.json", server.complaints[0])

    def test_interrupting_ends_it(self):
        process = subprocess.Popen([PROGRAM, "serve", ELABORATED], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE, cwd=REPOSITORY, env=environment())
        process.stdin.write(b'{"jsonrpc":"2.0","id":1,"method":"ping"}\n')
        process.stdin.flush()
        self.assertTrue(process.stdout.readline())
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(120), 130)
        self.assertEqual(process.communicate()[1], b"netlistdb: interrupted\n")


class Calls(ProgramTest):
    def test_every_tool_has_its_schemas(self):
        with Server(ELABORATED) as server:
            server.initialize()
            tools = server.request("tools/list")["result"]["tools"]
        self.assertEqual([tool["name"] for tool in tools], TOOLS)
        for tool in tools:
            for schema in ("inputSchema", "outputSchema"):
                Draft202012Validator.check_schema(tool[schema])
                self.assertEqual(tool[schema]["type"], "object")
            self.assertEqual(tool["inputSchema"]["additionalProperties"], False)
            self.assertNotIn("design", tool["inputSchema"].get("required", []))
            self.assertTrue(tool["annotations"]["readOnlyHint"])

    def test_wrong_calls_are_errors_of_the_protocol(self):
        with Server(ELABORATED) as server:
            server.initialize()
            for params in ({}, {"name": 7}, {"name": "seach"}, {"name": "info", "arguments": []},
                           {"name": "info", "arguments": "x"}):
                self.assertEqual(server.request("tools/call", params)["error"]["code"], INVALID_PARAMS)
            error = server.request("tools/call", {"name": "seach"})["error"]
            self.assertIn("did you mean 'search'", error["message"])
            self.assertEqual(server.request("tools/list", {"cursor": "x"})["error"]["code"], INVALID_PARAMS)

    def test_wrong_arguments_are_answers_that_say_what_is_wrong(self):
        with Server(ELABORATED) as server:
            server.initialize()
            for tool, arguments, text in (
                ("search", {}, "pattern: missing"),
                ("search", {"patern": "x"}, "did you mean 'pattern'"),
                ("search", {"pattern": 7}, "pattern: not a text"),
                ("search", {"pattern": "x", "mode": "fuzzy"}, "none of plain, glob, regex"),
                ("search", {"pattern": "(", "mode": "regex"}, "("),
                ("search", {"pattern": "x", "kinds": "net"}, "kinds: not a list"),
                ("search", {"pattern": "x", "kinds": ["net", "pin"]}, "'pin' is none of"),
                ("search", {"pattern": "x", "ignore_case": "yes"}, "ignore_case"),
                ("search", {"pattern": "x", "limit": 0}, "limit: not an integer from 1"),
                ("search", {"pattern": "x", "limit": 1.5}, "limit"),
                ("search", {"pattern": "x", "limit": -1}, "limit"),
                ("search", {"pattern": "x", "limit": 10 ** 30}, "limit"),
                ("info", {"design": "soc"}, "'soc' is none of soc_elaborated"),
                ("info", {"form": "post-map"}, "only its elaborated form"),
                ("net", {"path": "u_urat/x"}, "no net or bus 'u_urat/x'"),
                ("children", {"path": "u_cpuu"}, "did you mean"),
                ("crossings", {"from": "no_clock"}, "no clock 'no_clock'"),
                ("map", {}, "--post-map"),
                ("probes", {"path": "clk_adc", "all": True}, "path"),
            ):
                self.assertIn(text, server.refusal(tool, **arguments), (tool, arguments))

    def test_null_stands_for_nothing(self):
        with Server(ELABORATED) as server:
            server.initialize()
            self.assertTrue(server.ask("search", pattern="clk", mode=None, kinds=None, cursor=None)["results"])

    def test_answers_come_in_the_order_of_calls_and_pings_pass_them(self):
        with Server(ELABORATED) as server:
            server.initialize()
            for number in range(100, 150):
                server.send({"jsonrpc": "2.0", "id": number, "method": "tools/call",
                             "params": {"name": "search", "arguments": {"pattern": "clk"}}})
            server.send({"jsonrpc": "2.0", "id": "ping", "method": "ping"})
            answers = [server.receive()["id"] for _ in range(51)]
            self.assertEqual([identity for identity in answers if identity != "ping"], list(range(100, 150)))
            self.assertNotEqual(answers[-1], "ping")

    def test_an_id_that_waits_is_not_taken_twice(self):
        with Server(ELABORATED) as server:
            call = {"jsonrpc": "2.0", "id": "a", "method": "tools/call", "params": {"name": "info", "_meta": envelope()}}
            server.send(call)
            server.send(call)
            answers = [server.receive() for _ in range(2)]
            self.assertEqual([answer["id"] for answer in answers], ["a", "a"])
            self.assertEqual(answers[0]["error"]["code"], INVALID_REQUEST)
            self.assertIn("result", answers[1])
            self.assertIn("result", server.call("info", meta=envelope()))

    def test_a_cancelled_call_is_not_answered(self):
        with Server(ELABORATED) as server:
            for identity in (1, "1", 2):
                server.send({"jsonrpc": "2.0", "id": identity, "method": "tools/call",
                             "params": {"name": "info", "_meta": envelope()}})
            server.notify("notifications/cancelled", {"requestId": "1", "reason": "no more interest"})
            server.notify("notifications/cancelled", {"requestId": 2})
            self.assertEqual(server.receive()["id"], 1)
            self.assertIn("result", server.request("tools/call", {"name": "info", "_meta": envelope()}, identity="1"))

    def test_progress_goes_to_those_who_want_it_and_never_back(self):
        with Server(ELABORATED, "--post-map", POST_MAP) as server:
            server.initialize()
            answer = server.call("probes", meta={"progressToken": "t"}, groups=True)
            self.assertIn("result", answer)
            numbers = [other["params"]["progress"] for other in server.others]
            self.assertEqual(numbers, sorted(set(numbers)))
            for other in server.others:
                self.assertEqual((other["method"], other["params"]["progressToken"]), ("notifications/progress", "t"))
            server.others.clear()
            server.call("map")
            self.assertEqual(server.others, [])


if __name__ == "__main__":
    unittest.main()
