"""Plants faults in tiny trees and expects each check to name every one of them, and nothing else."""
import subprocess
import tempfile
import unittest
from pathlib import Path

CHECKS = Path(__file__).resolve().parent


class Planted(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.top = Path(folder.name)
        subprocess.run(["git", "init", "-q", self.top], check=True)

    def plant(self, files):
        for path, text in files.items():
            (self.top / path).parent.mkdir(parents=True, exist_ok=True)
            (self.top / path).write_text(text)

    def told(self, check, *arguments):
        run = subprocess.run([CHECKS / check, *arguments], cwd=self.top, capture_output=True, text=True)
        self.assertEqual(run.stderr, "")
        return run.stdout.splitlines() if run.returncode else []

    def test_module_headers(self):
        self.plant({
            "modules.tsv": "low\tsome/low\t\t\t\t\n",
            "some/low/Low.h": "namespace low {\n\ntemplate <class T>\nclass Box final : public T {\n    class Inner {};\n};\n\n"
                              "namespace impl {\nstruct Hidden {};\n}  // namespace impl\n\nenum class Kind : char { a };\n"
                              "class Known;\nstruct NX_API Plain {\n};\n\n}  // namespace low\n"})
        self.assertEqual(len(self.told("module_headers", "modules.tsv")), 2)
        self.assertEqual(self.told("module_headers", "--update", "modules.tsv"), [])
        self.assertEqual(self.told("module_headers", "modules.tsv"), [])
        declared = (self.top / "some/low/fwd.h").read_text()
        for wanted in ["template <class T> class Box;", "enum class Kind : char;", "struct Plain;"]:
            self.assertIn(wanted, declared)
        for other in ["Inner", "Hidden", "Known"]:
            self.assertNotIn(other, declared)
        self.assertIn('#include "some/low/Low.h"', (self.top / "some/low/low.h").read_text())

    def test_layers(self):
        self.plant({
            "modules.tsv": "low\tlow\t\tEigen3::Eigen\tabsl::btree\t\n"
                           "high\thigh\tlow\t\t\tside\n"
                           "side\tside\tlow\t\t\t\n",
            "low/Low.h": "#include <absl/btree.h>\n#include <vector>\n#include <Eigen/Dense>\n"
                         '#include "low/impl/Own.h"\n',
            "low/impl/Own.h": "#include <Eigen/Dense>\n",
            "low/Low.cpp": '#include "high/High.h"\n#include "low/impl/Own.h"\n',
            "high/High.h": '#include "low/Low.h"\n#include "side/Side.h"\n#include "Near.h"\n',
            "high/Near.h": "", "side/Side.h": "",
            "high/High.cpp": '#include "low/impl/Own.h"\n#include <absl/btree.h>\n#include "high/Absent.h"\n',
            "high/tests/high_test.cpp": '#include "side/Side.h"\n#include <gtest/gtest.h>\n',
            "tools/one/main.cpp": '#include "tools/one/One.h"\n#include "high/High.h"\n#include "low/impl/Own.h"\n',
            "tools/one/One.h": '#include "tools/two/Two.h"\n#include "fuzz/help.h"\n', "tools/two/Two.h": "",
            "fuzz/one_fuzz.cpp": '#include "fuzz/help.h"\n#include "tools/one/One.h"\n#include "high/tests/Model.h"\n'
                                 '#include "low/impl/Own.h"\n',
            "fuzz/help.h": "", "high/tests/Model.h": ""})
        self.assertEqual(self.told("check_layers", "modules.tsv"), [
            "high/CMakeLists.txt:1: high uses side, which is not entered before it",
            "fuzz/one_fuzz.cpp:4: low/impl/Own.h is not a public header",
            "high/High.cpp:1: low/impl/Own.h is private to low",
            "high/High.cpp:2: absl/btree.h is not among PACKAGES",
            "high/High.cpp:3: high/Absent.h does not exist",
            "high/High.h:2: side/Side.h belongs to side, which high does not use",
            "high/High.h:3: Near.h is not written from the root",
            "low/Low.cpp:1: high/High.h belongs to high, which low does not use",
            "low/Low.h:3: Eigen/Dense is not among PUBLIC_PACKAGES",
            "low/Low.h:4: low/impl/Own.h is private, but this header is public",
            "tools/one/One.h:1: tools/two/Two.h is not a public header",
            "tools/one/One.h:2: fuzz/help.h is not a public header",
            "tools/one/main.cpp:3: low/impl/Own.h is not a public header"])

    def test_docs(self):
        self.plant({
            "examples/a.cpp": "int a;\n// [part]\n    int b;\n// [part]\n",
            "packaging/apt-packages": "# head\nbuild  one  reason\n",
            "CONTRIBUTING.md": "# A head, here\n[x](README.md) [y](#a-head-here) [z](https://x.y) `[no](link)`\n",
            "README.md": "[a](gone.md)\n[b](CONTRIBUTING.md#none)\n"
                         "```cpp\nint a;\n```\n```cpp file=examples/a.cpp region=none\n```\n"
                         "```console\n$ false\n```\n",
            "docs/README.md": "[a](listing.md) [b](output.md) [c](table.md)\n",
            "docs/good.md": "```cpp file=examples/a.cpp region=part\nint b;\n```\n<!-- packages -->\n"
                            "| package | for | why |\n|---|---|---|\n| `one` | build | reason |\n\n"
                            "```console\n$ seq 3; exit 2\n1\n...\n# exit 2\n```\n",
            "docs/listing.md": "```cpp file=examples/a.cpp region=part\nint c;\n```\n",
            "docs/output.md": "\n```console\n$ echo a\nb\n```\n",
            "docs/table.md": "<!-- packages -->\n| package |\n"})
        self.assertEqual(self.told("check_docs"), [
            "README.md:3: a cpp block names no file that is compiled; use `text` for what is not code",
            "README.md:6: examples/a.cpp has 0 lines `// [none]`, not 2",
            "README.md:8: `false` exits with 1, not 0: ",
            "README.md:1: the link to gone.md leads nowhere",
            "README.md:2: the link to CONTRIBUTING.md#none finds no heading #none",
            "docs/listing.md:2: reads “int c;”, should read “int b;”; `make docs` updates it",
            "docs/output.md:4: reads “b”, should read “a”; `make docs` updates it",
            "docs/table.md:2: reads “| package |”, should read “| package | for | why |”; `make docs` updates it",
            "docs/README.md:1: does not link to good.md"])


if __name__ == "__main__":
    unittest.main()
