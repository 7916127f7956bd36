"""The map of ARCHITECTURE.md against the sources: arrows between layers, names, units."""
import pathlib
import re
import unittest

TOP = pathlib.Path(__file__).resolve().parent.parent
SRC = TOP / "src"
MAP = (TOP / "ARCHITECTURE.md").read_text(encoding="utf-8")
UNITS = [path for path in sorted(SRC.rglob("*")) if path.suffix in (".h", ".cpp", ".in")]

PREFIXES = ("frm", "pag", "cls", "mod")


def layer(path):
    return path.parent.relative_to(SRC).as_posix()


def drawn_arrows():
    """The picture: a line for each layer, and after the arrow the layers that it uses."""
    picture = re.search(r"```\n((?:\S+ +->.*\n)+)```", MAP).group(1)
    rows = (line.split("->") for line in picture.splitlines())
    return {name.strip(): targets.split() for name, targets in rows}


def included_arrows():
    arrows = {}
    for path in UNITS:
        targets = arrows.setdefault(layer(path), set())
        for include in re.findall(r'#include "([^"]+)/[^/"]+"', path.read_text(encoding="utf-8")):
            if include != layer(path):
                targets.add(include)
    return arrows


class Arrows(unittest.TestCase):
    def test_the_picture_shows_what_the_includes_say(self):
        drawn, included = drawn_arrows(), included_arrows()
        for name, targets in included.items():
            self.assertEqual(sorted(drawn.get(name, [])), sorted(targets), f"arrows of {name}")
        self.assertEqual([name for name in drawn if name not in included], [])

    def test_every_arrow_points_down(self):
        order = list(drawn_arrows())
        for name, targets in drawn_arrows().items():
            for target in targets:
                self.assertGreater(order.index(target), order.index(name), f"{name} -> {target}")

    def test_rows_of_the_map_name_what_is_there(self):
        rows = [line for line in MAP.splitlines() if line.startswith("| ") and "`" in line]
        for line in rows:
            folder = ""
            for name in re.findall(r"`([A-Za-z/]+/)?([A-Za-z]+)(?:\.h|\.cpp)?\*?`", line):
                folder = name[0] or folder
                if folder:
                    found = list((SRC / folder).glob(name[1] + "*"))
                    self.assertTrue(found, f"{folder}{name[1]} in: {line}")


class Names(unittest.TestCase):
    def test_a_source_has_the_header_of_its_name(self):
        lonely = [path.name for path in UNITS if path.suffix == ".cpp" and path.stem != "main"
                  and not path.with_suffix(".h").exists()]
        self.assertEqual(lonely, [])

    def test_a_prefix_tells_what_a_unit_holds(self):
        for path in (unit for unit in UNITS if unit.suffix == ".h"):
            declared = re.findall(r"^(?:class|struct) (\w+)", path.read_text(encoding="utf-8"), re.M)
            with self.subTest(path.relative_to(SRC)):
                if path.stem.startswith(PREFIXES[:3]):
                    self.assertIn(path.stem, declared)
                elif not path.stem.startswith("mod") and layer(path) != "base":
                    self.assertFalse(path.with_suffix(".cpp").exists(),
                                     "plain data and interfaces have no source")


if __name__ == "__main__":
    unittest.main()
