"""Designs for the tests, and the program to compare with."""

import json
import os
import subprocess
from pathlib import Path

REPOSITORY = Path(os.environ["REPOSITORY"])
ELABORATED = REPOSITORY / "designs/soc_elaborated.json"
POST_MAP = REPOSITORY / "designs/soc_postmap.json"
#: Small ones: two builds of a design, each in both forms.
PLANS = REPOSITORY / "designs/plans"
BEFORE = (PLANS / "netlists/before_elaborated.json", PLANS / "netlists/before_postmap.json")
AFTER = (PLANS / "netlists/after_elaborated.json", PLANS / "netlists/after_postmap.json")


def program(*arguments):
    """What the program says, as JSON."""
    environment = {name: value for name, value in os.environ.items() if name != "LD_PRELOAD"}
    result = subprocess.run([os.environ["NETLISTDB"], *map(str, arguments), "--format", "json"], env=environment,
                            capture_output=True, timeout=300, check=False)
    return json.loads(result.stdout)
