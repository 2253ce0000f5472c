#!/usr/bin/env python3
"""serve.py PROGRAM DESIGN... [OPTIONS]: how long the server takes to load a design and to answer each tool.

The first page of each question, made anew nine times: median and worst, in milliseconds, as a client sees them. What a
tool makes once, with the first question, stands by itself.
"""

import json
import statistics
import subprocess
import sys
import time

TIMES = 9


class Server:
    def __init__(self, program, arguments):
        self.process = subprocess.Popen([program, "serve", *arguments], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.number = 0

    def request(self, method, params):
        """The result of a request, the seconds and the bytes that it took."""
        self.number += 1
        message = {"jsonrpc": "2.0", "id": self.number, "method": method, "params": params}
        line = json.dumps(message).encode() + b"\n"
        begin = time.perf_counter()
        self.process.stdin.write(line)
        self.process.stdin.flush()
        answer = self.process.stdout.readline()
        seconds = time.perf_counter() - begin
        return json.loads(answer)["result"], seconds, len(answer)

    def call(self, tool, **arguments):
        return self.request("tools/call", {"name": tool, "arguments": arguments})

    def page(self, tool, **arguments):
        return self.call(tool, **arguments)[0]["structuredContent"]

    def memory(self):
        """The most that the server has taken, in MiB."""
        with open(f"/proc/{self.process.pid}/status") as status:
            return next(int(line.split()[1]) for line in status if line.startswith("VmHWM")) // 1024


def bench(server, title, tool, **arguments):
    seconds = []
    for time_number in range(TIMES):
        # Another limit is another page of the same question, which is not kept.
        result, taken, size = server.call(tool, **arguments, limit=100 - time_number)
        if result.get("isError"):
            sys.exit(f"{title}: {result['content'][0]['text']}")
        seconds.append(taken * 1000)
    print(f"| {title} | {statistics.median(seconds):.2f} | {max(seconds):.2f} | {size} |")


def main():
    program, arguments = sys.argv[1], sys.argv[2:]
    server = Server(program, arguments)
    session = {"protocolVersion": "2025-11-25", "capabilities": {}, "clientInfo": {"name": "bench", "version": "1"}}
    print(f"session: {server.request('initialize', session)[1] * 1000:.1f} ms")
    print(f"loaded: {server.call('children', limit=1)[1]:.1f} s, {server.memory()} MiB")
    net = server.page("search", pattern="", kinds=["net"], limit=1)["results"][0]["path"]
    for tool in ("info", "clocks", "probes", "crossings") + (("map",) if "--post-map" in arguments else ()):
        print(f"first {tool}: {server.call(tool, limit=1, max_bytes=1 << 24)[1]:.2f} s, {server.memory()} MiB")
    print("\n| question | median ms | worst ms | bytes |\n|---|---:|---:|---:|")
    bench(server, "info", "info")
    bench(server, "children", "children")
    bench(server, "search, everything", "search", pattern="")
    bench(server, "search, plain", "search", pattern="_1")
    bench(server, "search, glob", "search", pattern="**1*", mode="glob")
    bench(server, "search, regex", "search", pattern="[02468]$", mode="regex")
    bench(server, "net", "net", path=net)
    bench(server, "clocks", "clocks")
    bench(server, "why", "why", path=net)
    bench(server, "crossings", "crossings")
    bench(server, "crossings, summary", "crossings", summary=True)
    bench(server, "probes", "probes")
    if "--post-map" in arguments:
        bench(server, "map", "map")
    print(f"\nsearch without a hit: {server.call('search', pattern='no such name anywhere')[1] * 1000:.0f} ms")
    print(f"wrong path: {server.call('net', path=net + 'x')[1] * 1000:.0f} ms")
    server.process.stdin.close()
    begin = time.perf_counter()
    server.process.wait()
    print(f"end: {time.perf_counter() - begin:.2f} s")


if __name__ == "__main__":
    main()
