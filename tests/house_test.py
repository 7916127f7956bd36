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


def named_files():
    """Row and file of each name in the table "Where is ...?"; a row's folder goes on to the next."""
    for row in MAP[MAP.index("| behaviour |"):].split("\n\n")[0].splitlines():
        folder = ""
        for span in re.findall(r"`([^`]+)`", row):
            if name := re.fullmatch(r"([a-z/]+/)?(\w+\*?)(\.h|\.cpp)?", span):
                folder = name[1] or folder
                yield row, folder + name[2] + (name[3] or ".h")


class Table(unittest.TestCase):
    def test_rows_name_what_is_there(self):
        for row, name in named_files():
            self.assertTrue(list(SRC.glob(name)), f"{name} in: {row}")

    def test_every_unit_stands_in_a_row(self):
        named = {path.with_suffix("") for _, name in named_files() for path in SRC.glob(name)}
        missing = [path.name for path in UNITS if path.suffix == ".h"
                   and path.stem.startswith(PREFIXES) and path.with_suffix("") not in named]
        self.assertEqual(missing, [])


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
