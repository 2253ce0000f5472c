// The official clients of the protocol, against the program: the old package begins a session, the new one finds out that
// it needs none. Both check what comes back against the schemas of the protocol and of the tools.
//
//   NETLISTDB=… REPOSITORY=… node --test client.test.mjs

import assert from "node:assert/strict";
import { test } from "node:test";
import { Client as SessionClient } from "@modelcontextprotocol/sdk/client/index.js";
import { StdioClientTransport as SessionTransport } from "@modelcontextprotocol/sdk/client/stdio.js";
import { Client } from "@modelcontextprotocol/client";
import { StdioClientTransport } from "@modelcontextprotocol/client/stdio";

const program = process.env.NETLISTDB;
const designs = process.env.REPOSITORY + "/designs";
const both = ["serve", "soc=" + designs + "/soc_elaborated.json", "--post-map", designs + "/soc_postmap.json"];
const me = { name: "test", version: "1.0.0" };
const patience = { timeout: 120_000 };

const tools = ["info", "children", "search", "net", "clocks", "why", "crossings", "probes", "map"];
const questions = [
    ["info", {}],
    ["children", { depth: 2 }],
    ["search", { pattern: "**/*fifo*", mode: "glob" }],
    ["net", { path: "u_cpu/pc_o" }],
    ["clocks", { form: "post-map" }],
    ["why", { path: "u_cpu/pc_o[2]" }],
    ["crossings", { severities: ["unsafe"] }],
    ["crossings", { summary: true }],
    ["probes", { from: "u_cpu" }],
    ["probes", { path: "clk_sys_i" }],
    ["probes", { groups: true }],
    ["map", { paths: ["u_cpu/pc_o"] }],
];

/** Asks a connected client everything. */
async function askAll(client) {
    const listed = await client.listTools(undefined, patience);
    assert.deepEqual(listed.tools.map((tool) => tool.name), tools);
    for (const [name, given] of questions) {
        // The client throws when the result breaks the output schema of the tool.
        const result = await client.callTool({ name, arguments: given }, ...ways(client));
        assert.ok(!result.isError, name + ": " + JSON.stringify(result.content));
        assert.deepEqual(JSON.parse(result.content[0].text), result.structuredContent);
        const rows = result.structuredContent[name === "info" ? "module_list" : "results"];
        assert.ok(rows.length > 0, name);
    }
    const wrong = await client.callTool({ name: "net", arguments: { path: "u_cpu/pc_q0" } }, ...ways(client));
    assert.equal(wrong.isError, true);
    assert.match(wrong.content[0].text, /no net or bus 'u_cpu\/pc_q0'/);
    await assert.rejects(client.callTool({ name: "nothing", arguments: {} }, ...ways(client)), { code: -32602 });
}

/** The old package takes a schema between the call and the options. */
function ways(client, options = patience) {
    return client instanceof SessionClient ? [undefined, options] : [options];
}

async function pagesAndCancelling(client) {
    let found = 0;
    let cursor;
    do {
        const { structuredContent: page } = await client.callTool(
            { name: "search", arguments: { pattern: "u_cpu", limit: 20, ...(cursor && { cursor }) } }, ...ways(client));
        found += page.results.length;
        cursor = page.next_cursor;
    } while (cursor);
    assert.ok(found > 40);

    const stop = new AbortController();
    const given = { name: "search", arguments: { pattern: "nothing is called like this" } };
    const cancelled = client.callTool(given, ...ways(client, { ...patience, signal: stop.signal }));
    stop.abort("enough");
    await assert.rejects(cancelled);
    const after = await client.callTool({ name: "clocks", arguments: {} }, ...ways(client));
    assert.ok(!after.isError);
}

for (const version of ["2025-06-18", "2025-11-25"]) {
    test("a session of revision " + version, async (context) => {
        const client = new SessionClient(me);
        const transport = new SessionTransport({ command: program, args: both });
        const send = transport.send.bind(transport);
        transport.send = (message, options) => {
            if (message.method === "initialize") {
                message.params.protocolVersion = version;
            }
            return send(message, options);
        };
        await client.connect(transport, patience);
        context.after(() => client.close());
        assert.equal(client.getServerVersion().name, "netlistdb");
        assert.deepEqual(client.getServerCapabilities(), { tools: {} });
        assert.match(client.getInstructions(), /'soc'/);
        await client.ping(patience);
        await askAll(client);
        await pagesAndCancelling(client);
    });
}

test("no session, found out by the client", async (context) => {
    const client = new Client(me, { versionNegotiation: { mode: "auto" } });
    await client.connect(new StdioClientTransport({ command: program, args: both }), patience);
    context.after(() => client.close());
    assert.equal(client.getNegotiatedProtocolVersion(), "2026-07-28");
    assert.equal(client.getServerVersion().name, "netlistdb");
    await askAll(client);
    await pagesAndCancelling(client);
});

test("no session, for a client that knows nothing else", async (context) => {
    const client = new Client(me, { versionNegotiation: { mode: { pin: "2026-07-28" } } });
    await client.connect(new StdioClientTransport({ command: program, args: both }), patience);
    context.after(() => client.close());
    const heard = [];
    const options = { ...patience, onprogress: (progress) => heard.push(progress) };
    const result = await client.callTool({ name: "crossings", arguments: {} }, options);
    assert.ok(!result.isError);
    for (const each of heard) {
        assert.equal(typeof each.progress, "number");
    }
});
