"""The README shows what the program prints: the whole table of the lifted box."""
import os
import subprocess
import sys
import unittest

PROGRAM = sys.argv.pop(1)
ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))


class ReadmeTable(unittest.TestCase):
    def test_is_the_programs_output(self):
        scene = os.path.join(ROOT, "examples", "lift_box.json")
        printed = subprocess.run([PROGRAM, "compute", scene], stdout=subprocess.PIPE, check=True).stdout.decode("utf-8")
        self.assertIn("waist", printed)
        with open(os.path.join(ROOT, "README.md"), encoding="utf-8") as readme:
            self.assertIn("```text\n" + printed + "```", readme.read())


if __name__ == "__main__":
    unittest.main()
