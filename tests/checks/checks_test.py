"""The checks themselves: each must find the fault it exists for."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).parent


def run(script, root, *arguments):
    return subprocess.run([sys.executable, HERE / script, root, *arguments], capture_output=True, text=True)


class Tree(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.root = pathlib.Path(self.folder.name)
        self.addCleanup(self.folder.cleanup)

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)
        return path


class Layering(Tree):
    def verdict(self, name, line, layers="engine/image zr_image\nengine/depth zr_depth zr_image\napp/session zr_s zr_depth\n"):
        self.write(name, line + "\n")
        return run("layering.py", self.root, self.write("layers.txt", layers))

    def test_finds_each_forbidden_include_and_passes_the_allowed(self):
        cases = [
            ("engine/depth/a.cpp", '#include "engine/image/image.h"', 0),
            ("engine/image/a.cpp", '#include "engine/depth/depth.h"', 1),
            ("app/session/a.cpp", '#include "engine/image/image.h"', 1),
            ("engine/image/a.cpp", "#include <QString>", 1),
            ("app/session/a.cpp", "#include <QWidget>", 1),
            ("app/session/a.cpp", "#include <QSettings>", 1),
            ("engine/image/a.cpp", '#include "tests/support/testkit.h"', 1),
            ("engine/image/a.cpp", '#include "engine/nowhere/a.h"', 1),
        ]
        for name, line, expected in cases:
            with self.subTest(line=line, file=name):
                self.setUp()
                self.assertEqual(self.verdict(name, line).returncode, expected)

    def test_finds_a_cycle_of_edges(self):
        layers = "engine/a zr_a zr_b\nengine/b zr_b zr_a\n"
        result = self.verdict("engine/a/a.cpp", "", layers)
        self.assertEqual(result.returncode, 1)
        self.assertIn("cycle", result.stdout)


class Budgets(Tree):
    def test_finds_the_long_function_and_the_long_file(self):
        body = "    x();\n"
        self.write("engine/a.cpp", "void f()\n{\n" + body * 98 + "}\n")
        self.assertEqual(run("budgets.py", self.root).returncode, 0)
        self.write("engine/a.cpp", "void f()\n{\n" + body * 99 + "}\n")
        self.assertEqual(run("budgets.py", self.root).returncode, 1)
        self.write("engine/a.cpp", "void g()\n{\n}\n\nclass A\n{\n" + body * 99 + "};\n")
        self.assertEqual(run("budgets.py", self.root).returncode, 0, "the body of a class is no function")
        self.write("engine/a.cpp", ("void f()\n{\n" + body + "}\n") * 201)
        self.assertEqual(run("budgets.py", self.root).returncode, 1)


if __name__ == "__main__":
    unittest.main()
