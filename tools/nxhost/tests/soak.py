#!/usr/bin/env -S python3 -B
"""Makes many connections in turn and looks for what they leave behind.  usage: soak.py NXHOST [COUNT [KIBIBYTES]]"""
import subprocess
import sys
from pathlib import Path

from run import environment
from server import Server

here = Path(__file__).resolve().parent
nxhost, count, growth = (sys.argv[1:] + ["10000", "4096"][len(sys.argv) - 2:])[:3]
with Server() as server:
    sys.exit(subprocess.run([nxhost, here / "soak.lua", server.url, "", "", count, growth],
                            env=environment()).returncode)
