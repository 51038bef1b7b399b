"""The example script on the flat modules alone runs, under every Python, and tells the numbers of the README."""
import errno
import os
import subprocess
import sys

from qcc_support import ROOT
from support import TestCase, main


class LegacyScript(TestCase):

    def test_script_shows_settings_and_results(self):
        process = subprocess.Popen([sys.executable, os.path.join(ROOT, "examples", "legacy_script.py")],
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        output, errors = process.communicate()
        self.assertEqual((process.returncode, errors), (0, b""))
        lines = output.decode("ascii").splitlines()
        self.assertEqual(lines[:7], [
            "worker: Two Feet",
            "right_hand.right_palmcenter\tWeight: 2500.0 gr",
            "left_hand.left_palmcenter\tWeight: 2500.0 gr",
            'Strategy: "Two Feet"',
            "Gravity: (0.00, -980.66, 0.00) cm/sec^2",
            "worker.right_hand.right_palmcenter\tweight at (17.40, -12.00, 5.00) cm",
            "worker.left_hand.left_palmcenter\tweight at (-17.40, -12.00, 5.00) cm"])
        self.assertEqual([line.replace("-0.000", "0.000") for line in lines[7:]], [
            "waist        force (0.000, -48.471, 0.000) kgf, moment (145.968, 0.000, 0.000) N m",
            "l4_l5        force (0.000, -46.833, 0.000) kgf, moment (129.934, 0.000, 0.000) N m",
            "right_hip    force (0.000, -28.122, 0.000) kgf, moment (61.979, 0.000, 0.000) N m",
            "left_knee    force (0.000, -45.186, 0.000) kgf, moment (-6.598, 0.000, -5.166) N m",
            "left_ball    no result"])

    def test_scene_that_is_missing_is_reported(self):
        program = "import sys; sys.path.insert(0, %r); import legacy_script; legacy_script.HERE = 'nowhere'; " \
                  "sys.exit(legacy_script.main())" % os.path.join(ROOT, "examples")
        process = subprocess.Popen([sys.executable, "-c", program], stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        output, errors = process.communicate()
        self.assertEqual((process.returncode, output), (1, b""))
        path = os.path.join("nowhere", "lift_box.json")
        self.assertEqual(errors.decode("utf-8"),
                         "error: %s: cannot be read: %s.\n" % (path, os.strerror(errno.ENOENT)))


if __name__ == "__main__":
    main()
