#!/usr/bin/env python3
"""check_snippets.py ROOT: every C++ block of the documents must be the snippet of its name in the compiled test."""

import re
import sys
import textwrap
from pathlib import Path

root = Path(sys.argv[1])
source = (root / "tests/docs/GuideSnippetsTest.cpp").read_text()
compiled = {
    name: textwrap.dedent(text).strip()
    for name, text in re.findall(r"// \[(\w+)\]\n(.*?)\n *// \[end\]", source, re.DOTALL)
}

faults = []
shown = set()
for document in [root / "README.md", *sorted((root / "docs").glob("*.md"))]:
    text = document.read_text()
    for before, block in re.findall(r"([^\n]*)\n```cpp\n(.*?)```", text, re.DOTALL):
        marker = re.search(r"<!-- snippet: (\w+) -->", before)
        if marker is None:
            faults.append(f"{document.name}: a C++ block without a snippet name: {block.splitlines()[0]}")
        elif block.strip() != compiled.get(marker[1]):
            faults.append(f"{document.name}: block '{marker[1]}' differs from the compiled snippet")
        else:
            shown.add(marker[1])
for name in sorted(set(compiled) - shown):
    faults.append(f"the compiled snippet '{name}' stands in no document")
print("\n".join(faults) or f"{len(shown)} snippets agree")
sys.exit(1 if faults else 0)
