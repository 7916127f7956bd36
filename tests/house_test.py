"""The map of ARCHITECTURE.md against the sources: arrows between layers, names, units."""
import pathlib
import re
import unittest

TOP = pathlib.Path(__file__).resolve().parent.parent
SRC = TOP / "src"
MAP = (TOP / "ARCHITECTURE.md").read_text(encoding="utf-8")
UNITS = [path for path in sorted(SRC.rglob("*")) if path.suffix in (".h", ".cpp", ".in", ".rc")]

HEADERS = [path for path in UNITS if path.suffix == ".h"]

PREFIXES = ("frm", "pag", "cls", "mod")
INCLUDE = re.compile(r'^ *#include (?:"([^"]+)/[^/"]+"|<([^>]+)/[^/>]+>)', re.M)
TYPE = re.compile(r"^(?:class|struct|enum class|enum|using) (\w+)", re.M)
CLASS = re.compile(r"^class (\w+)[^;{]*\{(.*?)^\};", re.M | re.S)


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
        for quoted, angled in INCLUDE.findall(path.read_text(encoding="utf-8")):
            include = quoted or (angled if (SRC / angled).is_dir() else layer(path))
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
            if name := re.fullmatch(r"([a-z/]+/)?(\w+\*?)(\.h(?:\.in)?|\.cpp)?", span):
                folder = name[1] or folder
                yield row, folder + name[2] + (name[3] or ".h")


class Table(unittest.TestCase):
    def test_rows_name_what_is_there(self):
        for row, name in named_files():
            self.assertTrue(list(SRC.glob(name)), f"{name} in: {row}")

    def test_every_unit_stands_in_a_row(self):
        named = {path.with_suffix("") for _, name in named_files() for path in SRC.glob(name)}
        missing = [path.name for path in UNITS if path.suffix in (".h", ".in")
                   and path.with_suffix("") not in named]
        self.assertEqual(missing, [])


class Names(unittest.TestCase):
    def test_a_source_has_the_header_of_its_name(self):
        lonely = [path.name for path in UNITS if path.suffix == ".cpp" and path.stem != "main"
                  and not path.with_suffix(".h").exists()]
        self.assertEqual(lonely, [])

    def test_a_prefix_tells_what_a_unit_holds(self):
        for path in HEADERS:
            if path.stem.startswith("mod") or layer(path) == "ui/resources":
                continue
            with self.subTest(path.relative_to(SRC)):
                self.assertIn(path.stem, TYPE.findall(path.read_text(encoding="utf-8")))

    def test_plain_data_and_interfaces_have_no_source(self):
        self.assertEqual([path.name for path in HEADERS if layer(path) != "base"
                          and not path.stem.startswith(PREFIXES)
                          and path.with_suffix(".cpp").exists()], [])

    def test_a_class_with_behaviour_has_a_unit_of_its_own(self):
        """Interfaces stand with what takes them; small tools of base/ are whole in a header."""
        for path in HEADERS:
            is_tool = (layer(path) == "base" and not path.stem.startswith("mod")
                       and not path.with_suffix(".cpp").exists())
            if path.stem.startswith(PREFIXES[:3]) or is_tool:
                continue
            for name, body in CLASS.findall(path.read_text(encoding="utf-8")):
                self.assertIn(" = 0;", body, f"{name} in {path.relative_to(SRC)}")


if __name__ == "__main__":
    unittest.main()
