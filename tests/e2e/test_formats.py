import csv
import io
import json
import os
import unittest

import jsonschema
from program import DESIGNS, ELABORATED, REPOSITORY, ProgramTest, bit_module, net, netlist, run

COMMANDS = {
    "info": ("info", "DESIGN"),
    "tree": ("tree", "DESIGN", "--clocks"),
    "search": ("search", "DESIGN", "clk"),
    "clocks": ("clocks", "DESIGN"),
    "clock-of": ("clock-of", "DESIGN", "uart_tx_o", "clk_sys_i"),
    "crossings": ("crossings", "DESIGN"),
    "probes": ("probes", "DESIGN", "--all"),
    "checksum": ("checksum", "DESIGN"),
}


def schema_of(command):
    with open(os.path.join(REPOSITORY, "docs/schema", command + ".schema.json")) as stream:
        return json.load(stream)


def validator(command, part=None):
    schema = schema_of(command)
    if part is not None:
        schema = {"$schema": schema["$schema"], "$defs": schema["$defs"], "$ref": f"#/$defs/{part}"}
    jsonschema.Draft202012Validator.check_schema(schema)
    return jsonschema.Draft202012Validator(schema)


class Formats(ProgramTest):
    documents = {}

    def document(self, words):
        """What a command gives as JSON, read once for all tests."""
        if (*words,) not in self.documents:
            self.documents[(*words,)] = self.json(*words)
        return self.documents[(*words,)]

    def each(self):
        for command, words in COMMANDS.items():
            for design in DESIGNS:
                with self.subTest(command, design=design):
                    yield command, [design if word == "DESIGN" else word for word in words]

    def test_json_is_as_its_schema_says(self):
        for command, words in self.each():
            document = self.document(words)
            validator(command).validate(document)
            self.assertEqual((document["format"], document["version"]), (f"netlistdb-{command}", 1))

    def test_every_line_of_jsonl_is_as_its_schema_says(self):
        for command, words in self.each():
            lines = [json.loads(line) for line in self.succeed(*words, "--format", "jsonl").splitlines()]
            document = self.document(words)
            validator(command, "head").validate(lines[0])
            if command == "info":
                levels = len(document["levels"])
                self.assertEqual(lines[1 : 1 + levels], document["levels"])
                self.assertEqual(lines[1 + levels :], document["module_list"])
                continue
            self.assertEqual(lines[1:-1], document["results"])
            validator(command, "end").validate(lines[-1])
            self.assertEqual({**lines[0], "results": lines[1:-1], **lines[-1]}, document)

    def test_csv_holds_the_results_of_json(self):
        for command, words in self.each():
            if command == "info":
                continue
            rows = list(csv.DictReader(io.StringIO(self.succeed(*words, "--format", "csv"))))
            expected = [{key: self.text(value) for key, value in row.items()} for row in self.document(words)["results"]]
            self.assertEqual(rows, expected)

    def text(self, value):
        if isinstance(value, bool):
            return "yes" if value else "no"
        if isinstance(value, list):
            return " ".join(value)
        if isinstance(value, dict):
            return " ".join(f"{key}={each}" for key, each in value.items())
        return "" if value is None else str(value)

    def test_a_table_has_a_line_for_each_result(self):
        for command, words in self.each():
            if command == "info":
                continue
            lines = self.succeed(*words).splitlines()
            heads = 0 if command == "checksum" else 1
            document = self.document(words)
            # A blank line and a table of its own.
            sums = document["summary"] if command == "crossings" else document.get("groups")
            summary = 2 + len(sums) if sums is not None else 0
            self.assertEqual(len(lines), heads + len(document["results"]) + summary)
            self.assertTrue(all(line == line.rstrip() for line in lines))

    def test_a_schema_refuses_what_is_no_such_answer(self):
        for command in COMMANDS:
            for document in ({}, [], {"format": "netlistdb-" + command, "version": 2}):
                self.assertFalse(validator(command).is_valid(document))

    def test_odd_names_come_through_every_format(self):
        names = ['quote"d', "com,ma", "line\nbreak", "tab\tbed", "bell\x07", "ünï ☂", "back\\slash", "'single'"]
        nets = {name: net(at + 2) for at, name in enumerate(names)}
        design = self.file("odd.json", netlist(top=bit_module({}, nets)))
        self.assertEqual([row["path"] for row in self.results("search", design, "")], names)
        rows = csv.DictReader(io.StringIO(self.succeed("search", design, "", "--format", "csv"), newline=""))
        self.assertEqual([row["path"] for row in rows], names)
        lines = self.succeed("search", design, "").splitlines()[1:]
        shown = [line[len("net           1  ") :] for line in lines]
        expected = [name.replace("\n", "\\n").replace("\t", "\\t").replace("\x07", "\\x07") for name in names]
        self.assertEqual(shown, expected)

    def test_an_unknown_format_is_refused(self):
        message = self.fail_with(2, "info", ELABORATED, "--format", "xml")
        self.assertIn("'xml' is none of table|json|jsonl|csv", message)

    def test_the_end_of_an_empty_result_is_there_too(self):
        result = run("search", ELABORATED, "no such thing", "--format", "jsonl")
        lines = [json.loads(line) for line in result.stdout.splitlines()]
        self.assertEqual((len(lines), lines[-1]), (2, {"ending": "complete"}))
        result = run("search", ELABORATED, "no such thing", "--format", "csv")
        self.assertEqual(result.stdout, "kind,width,path,module,user_module,user_declared,file,line,"
                                        "matched,aliases,sources,attributes\n")


if __name__ == "__main__":
    unittest.main()
