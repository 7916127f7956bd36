#!/usr/bin/env python3
"""One call of each function of the system fails: the program still tells the truth. `all`
tries many more."""

import pathlib
import re
import subprocess
import sys
import unittest

from failures import Campaign

PROGRAM, NM, OBJECTS = pathlib.Path(sys.argv[1]), sys.argv[2], sys.argv[3].split(",")
WINE = sys.argv[4:]
TABLE = pathlib.Path(__file__).with_name("Calls.inc")


class Failures(unittest.TestCase):
    def test_a_drawn_call_of_each_function_fails(self):
        campaign = Campaign(PROGRAM, WINE, tries_all=False)
        self.addCleanup(campaign.folder.cleanup)
        self.assertEqual((campaign.good.code, campaign.good.errors), (0, ""))
        campaign.run()
        self.assertEqual([f"{fault}: {what}" for fault, what in campaign.found], [])
        self.assertGreaterEqual(len(campaign.tried), 105)
        # Some failures do no harm; if none did any, none would have been tried.
        self.assertLess(sum(campaign.whole.values()), 0.7 * sum(campaign.tried.values()))

    def test_no_function_is_left_out(self):
        symbols = subprocess.run([NM, "-u", *OBJECTS], capture_output=True, text=True, check=True)
        called = set(re.findall(r" U __imp__?(\w+)@", symbols.stdout) or
                     re.findall(r" U __imp_(\w+)", symbols.stdout))
        table = TABLE.read_text() + TABLE.read_text().replace("LongPtr", "Long")
        listed = re.findall(r"^(?:FAILS|CLOSES)\((\w+)", table, re.MULTILINE)
        for names in re.findall(r'^KEEPS\(".*",([^)]+)\)', table, re.MULTILINE):
            listed += re.findall(r"\w+", names)
        self.assertEqual(called - set(listed), set())
        self.assertGreater(len(called), 100)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
