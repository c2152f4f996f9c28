#!/usr/bin/env -S python3 -B
"""Makes many connections in turn and looks for what they leave behind; with --seconds, does everything together."""
import argparse
import subprocess
import sys
from pathlib import Path

from run import environment
from server import Server

here = Path(__file__).resolve().parent
parser = argparse.ArgumentParser(description=__doc__)
parser.add_argument("nxhost")
parser.add_argument("--count", default="10000", help="how many connections")
parser.add_argument("--seconds", help="for how long to do everything together")
parser.add_argument("--growth", default="4096", help="by how many KiB the process may grow")
words = parser.parse_args()
script, options, amount = "soak.lua", [], words.count
if words.seconds:
    script, options, amount = "churn.lua", ["--cache", "256K"], words.seconds
with Server() as server:
    sys.exit(subprocess.run([Path(words.nxhost).absolute(), *options, here / script, server.url, "", "", amount, words.growth],
                            env=environment()).returncode)
