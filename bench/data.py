"""What the benchmarks work on; the same at every run."""

import random
import shutil
import zipfile

import fixtures
from fixtures import crc_of

INF = "[Version]\r\nSignature=$Windows NT$\r\n\r\n[PEBuilder]\r\nName=\"{}\"\r\nEnable=1\r\n"


class Contents:
    """Members' contents as programs have them: texts, tables and bytes that hardly shrink."""

    def __init__(self, seed):
        self.chance = random.Random(seed)
        self.words = ["".join(self.chance.choices("abcdefghijklmnopqrstuvwxyz",
                                                  k=self.chance.randint(2, 9)))
                      for _ in range(2000)]

    def size(self, middle):
        return int(self.chance.lognormvariate(middle, 1.25))

    def words_of(self, size):
        return " ".join(self.chance.choices(self.words, k=size // 6 + 1)).encode()

    def of(self, number, size):
        if number % 4 == 3:
            return self.chance.randbytes(size // 2) + bytes(size - size // 2)
        return self.words_of(size)


def tree_archive(path, files=1500, middle=9.7, folders=120, extra=()):
    """An archive of many files in folders, by default 58 MB. @return bytes of content"""
    contents = Contents(1)
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
        for name, text in extra:
            archive.writestr(name, text)
        for number in range(files):
            name = f"folder{number % folders:03}/file{number:04}.dat"
            archive.writestr(name, contents.of(number, contents.size(middle)))
        return sum(member.file_size for member in archive.infolist())


def small_archive(path, members):
    """An archive of small files, 100 to a folder."""
    contents = Contents(2)
    texts = [contents.words_of(600) for _ in range(50)]
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED, compresslevel=1) as archive:
        archive.writestr("pebuilder.exe", b"x")
        for number in range(members - 1):
            archive.writestr(f"folder{number // 100:04}/file{number:06}.txt", texts[number % 50])


def large_archive(path, megabytes):
    """An archive of one large member, and PE Builder's program."""
    chance = random.Random(3)
    piece = b"".join(chance.choices([chance.randbytes(40), b"some words of text "], k=1 << 15))
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED, compresslevel=1) as archive:
        archive.writestr("pebuilder.exe", b"x")
        with archive.open("large", "w", force_zip64=True) as member:
            for _ in range(megabytes * 1_000_000 // len(piece)):
                member.write(piece)


def program_folder(wine, folder):
    """A folder with the delivered programs and their read-me in it."""
    program = folder / "program"
    program.mkdir(parents=True)
    for path in ("src/console/veskbuild.exe", "src/ui/veskbuilder.exe"):
        shutil.copy(wine.built / path, program)
    (program / "readme.txt").write_text("Read me.")
    return program


def write_catalogue(program, plugins=()):
    """veskbuilder.ini with PE Builder and plug-ins (archive, address, checksum)."""
    base = program / "pebuilder3110a.zip"
    fixtures.write_catalogue(
        program, [("PE Builder", base.name, "", 1, 1, "", crc_of(base) if base.exists() else "1")],
        [(f"Plug-in {number}", archive, "100", 1, 0, url, checksum)
         for number, (archive, url, checksum) in enumerate(plugins)])
