"""A plain client of the server: it writes and reads lines, and knows nothing of the protocol but its envelopes."""

import json
import subprocess
import threading
import queue

from program import PROGRAM, REPOSITORY, environment

SESSION = ("2025-06-18", "2025-11-25")
STATELESS = "2026-07-28"
VERSION_KEY = "io.modelcontextprotocol/protocolVersion"
CAPABILITIES_KEY = "io.modelcontextprotocol/clientCapabilities"
CLIENT_KEY = "io.modelcontextprotocol/clientInfo"
CLIENT = {"name": "test", "version": "1"}
PATIENCE = 120


def envelope(version=STATELESS):
    return {VERSION_KEY: version, CAPABILITIES_KEY: {}, CLIENT_KEY: CLIENT}


class Server:
    """A running server, as a context that ends its input and expects it to end well."""

    def __init__(self, *arguments, expect=0):
        self.process = subprocess.Popen([PROGRAM, "serve", *arguments], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        stderr=subprocess.PIPE, cwd=REPOSITORY, env=environment())
        self.expect = expect
        self.lines = queue.Queue()
        self.others = []
        self.number = 0
        self.has_ended = False
        self.complaints = []
        self.threads = [threading.Thread(target=target, daemon=True) for target in (self.read, self.listen)]
        for thread in self.threads:
            thread.start()

    def read(self):
        for line in self.process.stdout:
            self.lines.put(line)
        self.lines.put(None)

    def listen(self):
        for line in self.process.stderr:
            self.complaints.append(line.decode())

    def __enter__(self):
        return self

    def __exit__(self, kind, fault, trace):
        if kind is not None:
            self.process.kill()
        rest = self.end()
        code = self.process.wait(PATIENCE)
        for thread in self.threads:
            thread.join()
        self.process.stdout.close()
        self.process.stderr.close()
        if kind is None:
            assert rest == [], f"nobody asked for {rest}"
            assert code == self.expect, (code, self.complaints)

    def end(self):
        """Ends the input; returns the messages that still come."""
        rest = []
        if self.has_ended:
            return rest
        self.has_ended = True
        self.process.stdin.close()
        while (line := self.lines.get(timeout=PATIENCE)) is not None:
            rest.append(json.loads(line))
        return rest

    def write(self, data):
        self.process.stdin.write(data if isinstance(data, bytes) else data.encode())
        self.process.stdin.flush()

    def send(self, message):
        self.write(json.dumps(message) + "\n")

    def receive(self):
        line = self.lines.get(timeout=PATIENCE)
        assert line is not None, f"the server has ended: {self.complaints}"
        assert line.endswith(b"\n")
        message = json.loads(line)
        assert message["jsonrpc"] == "2.0"
        return message

    def request(self, method, params=None, identity=None):
        """Sends a request and returns its answer; what else comes before is kept in others."""
        self.number += 1
        identity = self.number if identity is None else identity
        message = {"jsonrpc": "2.0", "id": identity, "method": method}
        if params is not None:
            message["params"] = params
        self.send(message)
        while True:
            answer = self.receive()
            if "id" in answer:
                assert answer["id"] == identity, answer
                return answer
            self.others.append(answer)

    def notify(self, method, params=None):
        self.send({"jsonrpc": "2.0", "method": method, **({"params": params} if params is not None else {})})

    def initialize(self, version=SESSION[-1]):
        answer = self.request("initialize", {"protocolVersion": version, "capabilities": {}, "clientInfo": CLIENT})
        self.notify("notifications/initialized")
        return answer["result"]

    def call(self, tool, meta=None, **arguments):
        params = {"name": tool, "arguments": arguments}
        if meta is not None:
            params["_meta"] = meta
        return self.request("tools/call", params)

    def ask(self, tool, **arguments):
        """The structured result of a tool that succeeds."""
        result = self.call(tool, **arguments)["result"]
        assert not result.get("isError"), result
        assert json.loads(result["content"][0]["text"]) == result["structuredContent"]
        return result["structuredContent"]

    def refusal(self, tool, **arguments):
        """The text of a tool that cannot answer."""
        result = self.call(tool, **arguments)["result"]
        assert result.get("isError") is True, result
        assert "structuredContent" not in result
        return result["content"][0]["text"]
