"""Archives with all that a member may carry: time, attributes, storing, damage."""

import struct
import zipfile
import zlib
from typing import NamedTuple

STAMP = (2006, 5, 4, 3, 2, 2)


class Member(NamedTuple):
    """@c stamp is local time; @c unix_time, where it is given, says the same exactly."""
    name: str
    text: str = ""
    stamp: tuple = STAMP
    attributes: int = 0x20
    stored: bool = False
    unix_time: int | None = None
    damaged: bool = False


def dos_time(stamp):
    year, month, day, hour, minute, second = stamp
    return (year - 1980) << 9 | month << 5 | day, hour << 11 | minute << 5 | second // 2


def write_zip(path, members):
    """Returns the archive's checksum as catalogues hold it."""
    with zipfile.ZipFile(path, "w") as archive:
        for member in members:
            info = zipfile.ZipInfo(member.name, member.stamp)
            info.filename = member.name  # as it is, whatever the class makes of it
            info.create_system = 0
            info.external_attr = member.attributes
            info.compress_type = zipfile.ZIP_STORED if member.stored else zipfile.ZIP_DEFLATED
            if member.unix_time is not None:
                info.extra = struct.pack("<HHBI", 0x5455, 5, 1, member.unix_time)
            archive.writestr(info, member.text.encode("cp1252"))
    content = bytearray(path.read_bytes())
    for member in members:
        if member.damaged:  # it must be stored
            content[content.index(member.text.encode("cp1252"))] ^= 1
    path.write_bytes(content)
    return f"{zlib.crc32(content):X}"


def write_cab(path, members):
    """All members stored in one folder and one block. Returns the archive's checksum."""
    names = [member.name.encode("cp1252") + b"\0" for member in members]
    data = b"".join(member.text.encode("cp1252") for member in members)
    files_at = 36 + 8
    data_at = files_at + sum(16 + len(name) for name in names)
    cabinet = struct.pack("<4s5I2B5H", b"MSCF", 0, data_at + 8 + len(data), 0, files_at, 0, 3, 1, 1,
                          len(members), 0, 0, 0) + struct.pack("<IHH", data_at, 1, 0)
    offset = 0
    for name, member in zip(names, members):
        date, time = dos_time(member.stamp)
        cabinet += struct.pack("<IIHHHH", len(member.text), offset, 0, date, time,
                               member.attributes) + name
        offset += len(member.text)
    cabinet += struct.pack("<IHH", 0, len(data), len(data)) + data
    path.write_bytes(cabinet)
    return f"{zlib.crc32(cabinet):X}"
