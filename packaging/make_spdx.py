#!/usr/bin/env python3
"""Lists what the programs are made of as an SPDX 2.3 document, from the linker's own account, and what
the installer is.

    make_spdx.py VERSION STAGE SETUP OUTPUT BUILD...    BUILD: folders with *.map and CMakeCache.txt

Stops when something is linked in that is not known here: then its licence is not known either.
"""

import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys
import time

# Of each: a pattern for the linked archive, name, licence, supplier's page.
COMPONENTS = [
    (r"libdeflate\.a$", "libdeflate", "MIT", "https://github.com/ebiggers/libdeflate"),
    (r"/libz\.a$", "zlib", "Zlib", "https://zlib.net"),
    (r"/lib(stdc\+\+|gcc|gcc_eh|supc\+\+)\.a$|/gcc/.*/crt\w+\.o$", "GCC runtime libraries",
     "GPL-3.0-or-later WITH GCC-exception-3.1", "https://gcc.gnu.org"),
    (r"/lib(win)?pthread\.a$", "winpthreads", "MIT AND BSD-3-Clause", "https://www.mingw-w64.org"),
    # Thunks that dlltool writes, for what is loaded late; the code that they call is the runtime's.
    (r"\bdelayed/lib\w+\.a$", "mingw-w64 runtime", "ZPL-2.1", "https://www.mingw-w64.org"),
    (r"-w64-mingw32/lib/", "mingw-w64 runtime", "ZPL-2.1", "https://www.mingw-w64.org"),
]
# The installer's and uninstaller's own code: what starts, unpacks, and asks for rights and folders.
INSTALLER = "NSIS", "Zlib AND CPL-1.0 WITH LZMA-exception", "https://nsis.sourceforge.io"
OWN = re.compile(r"/libvesk_\w+\.a$|^(src/)?libvesk_\w+\.a$|\.obj$|^src/")


def cached(build, name):
    text = (build / "CMakeCache.txt").read_text()
    return re.search(rf"^{name}:\w+=(.*)$", text, re.MULTILINE)[1]


def linked(build):
    """Paths of the archives and objects that gave something to the programs."""
    for program in ("veskbuild", "veskbuilder"):
        text = (build / f"{program}.map").read_text(errors="replace")
        text = text[text.index("Linker script and memory map"):]
        yield from (match[1] for match in
                    re.finditer(r"^ \.(?:text|rdata|data|idata)\S*(?:\n)? +0x[0-9a-f]+ +0x[0-9a-f]*[1-9a-f][0-9a-f]* (\S+?)(?:\(.*\))?$",
                                text, re.MULTILINE))


def macro(build, header, name):
    compiler = re.search(r'set\(CMAKE_CXX_COMPILER "(.*)"\)',
                         next(build.glob("CMakeFiles/*/CMakeCXXCompiler.cmake")).read_text())[1]
    text = subprocess.run([compiler, "-E", "-dM", "-x", "c++", "-include", header, "/dev/null"],
                          check=True, capture_output=True, text=True).stdout
    return re.search(rf"^#define {name} \"?([^\"\n]*)", text, re.MULTILINE)[1].strip()


def versions(build):
    """Of each component, as the headers and the compiler say that the build used."""
    mingw = ".".join(macro(build, "_mingw.h", f"__MINGW64_VERSION_{part}")
                     for part in ("MAJOR", "MINOR", "BUGFIX"))
    deflate = pathlib.Path(cached(build, "VESK_DEPS_DIR")) / "libdeflate/libdeflate.h"
    zlib = pathlib.Path(cached(build, "ZLIB_INCLUDE_DIR")) / "zlib.h"
    return {"libdeflate": macro(build, str(deflate), "LIBDEFLATE_VERSION_STRING"),
            "zlib": macro(build, str(zlib), "ZLIB_VERSION"),
            "GCC runtime libraries": macro(build, "_mingw.h", "__VERSION__"),
            "winpthreads": mingw, "mingw-w64 runtime": mingw}


def components(build):
    """Name to entry of the list above, for what is linked into the programs of a build folder."""
    found = {}
    for path in sorted({os.path.normpath(path) for path in linked(build)}):
        for pattern, name, *rest in COMPONENTS:
            if re.search(pattern, path):
                found[name] = rest
                break
        else:
            if not OWN.search(path):
                sys.exit(f"make_spdx.py: {path} is linked in, and its licence is not known here")
    return found


def package(name, version, licence, page):
    return {"SPDXID": "SPDXRef-" + re.sub(r"[^A-Za-z0-9.-]+", "-", name), "name": name,
            "versionInfo": version, "downloadLocation": page, "filesAnalyzed": False,
            "licenseConcluded": licence, "licenseDeclared": licence, "copyrightText": "NOASSERTION"}


def checksums(path):
    data = path.read_bytes()
    return [{"algorithm": kind, "checksumValue": hashlib.new(kind, data).hexdigest()}
            for kind in ("SHA1", "SHA256")]


def installer():
    name, *rest = INSTALLER
    version = subprocess.run(["makensis", "-VERSION"], check=True, capture_output=True, text=True).stdout
    return package(name, version.strip().removeprefix("v"), *rest)


def described(number, path, name):
    return {"SPDXID": f"SPDXRef-File-{number}", "fileName": f"./{name}", "checksums": checksums(path),
            "licenseConcluded": "NOASSERTION", "copyrightText": "NOASSERTION"}


def document(version, stage, setup, builds):
    parts = {}
    for build in builds:
        of = versions(build)
        parts |= {name: package(name, of[name], *rest) for name, rest in components(build).items()}
    own = package("Vesk Builder", version, "MIT", "NOASSERTION")
    programs = [described(i, path, path.relative_to(stage))
                for i, path in enumerate(sorted(stage.rglob("*.exe")))]
    programs.append(described(len(programs), setup, setup.name))
    maker = installer()
    relations = [("SPDXRef-DOCUMENT", "DESCRIBES", own["SPDXID"])]
    relations += [(own["SPDXID"], "CONTAINS", file["SPDXID"]) for file in programs]
    relations += [(own["SPDXID"], "STATIC_LINK", parts[name]["SPDXID"]) for name in sorted(parts)]
    relations.append((programs[-1]["SPDXID"], "STATIC_LINK", maker["SPDXID"]))
    digest = hashlib.sha256("".join(file["checksums"][1]["checksumValue"]
                                    for file in programs).encode()).hexdigest()
    created = time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime(int(os.environ["SOURCE_DATE_EPOCH"])))
    return {"spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT",
            "name": f"VeskBuilder-{version}",
            "documentNamespace": f"urn:vesk-builder:{version}:{digest}",
            "creationInfo": {"created": created, "creators": ["Tool: packaging/make_spdx.py"]},
            "packages": [own] + [parts[name] for name in sorted(parts)] + [maker], "files": programs,
            "relationships": [{"spdxElementId": one, "relationshipType": kind,
                               "relatedSpdxElement": other} for one, kind, other in relations]}


if __name__ == "__main__":
    if len(sys.argv) < 6:
        sys.exit(__doc__)
    stage, setup, output, *builds = map(pathlib.Path, sys.argv[2:])
    made = document(sys.argv[1], stage, setup, builds)
    output.write_text(json.dumps(made, indent=2) + "\n")
