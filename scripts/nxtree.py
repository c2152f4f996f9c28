"""What the checks share: the files of the tree, the table of modules, and how offences are told."""
import subprocess
import sys
from dataclasses import dataclass
from pathlib import Path


@dataclass(frozen=True)
class Module:
    name: str
    folder: str
    uses: frozenset
    packages: frozenset         # of its sources
    public_packages: frozenset  # of its headers too
    test_uses: frozenset


def files(*suffixes):
    """The paths of the sources, new ones included, ignored ones not; all of them or those ending so."""
    listed = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], check=True, capture_output=True, text=True)
    return [path for path in sorted(set(listed.stdout.splitlines()))
            if path.endswith(suffixes or "") and Path(path).is_file()]


def cpp_files():
    return files(".h", ".cpp")


def modules(table):
    """The modules in the order in which the build enters them."""
    rows = [line.split("\t") for line in Path(table).read_text().splitlines() if not line.startswith("#")]
    return [Module(name, folder, *(frozenset(names.split()) for names in lists)) for name, folder, *lists in rows]


def is_public_header(path, known):
    """Whether the path lies directly in the folder of a module and is a header."""
    folder, _, name = path.rpartition("/")
    return name.endswith(".h") and any(module.folder == folder for module in known)


def finish(offences, checked):
    """Prints one line per offence, or what was found good, and ends the program."""
    for offence in offences:
        print(offence)
    if offences:
        sys.exit(1)
    print(checked)
    sys.exit(0)
