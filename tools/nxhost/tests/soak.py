#!/usr/bin/env -S python3 -B
"""Makes many connections in turn and looks for what they leave behind; with --seconds, does everything together.

usage: soak.py NXHOST [COUNT [KIBIBYTES]]
       soak.py --seconds SECONDS NXHOST [KIBIBYTES]
"""
import subprocess
import sys
from pathlib import Path

from run import environment
from server import Server

here = Path(__file__).resolve().parent
if sys.argv[1] == "--seconds":
    script, options = "churn.lua", ["--cache", "256K"]
    amount, nxhost, *more = sys.argv[2:]
else:
    script, options = "soak.lua", []
    nxhost, amount, *more = sys.argv[1:] + ["10000"][len(sys.argv) - 2:]
growth = more[0] if more else "4096"
with Server() as server:
    sys.exit(subprocess.run([nxhost, *options, here / script, server.url, "", "", amount, growth],
                            env=environment()).returncode)
