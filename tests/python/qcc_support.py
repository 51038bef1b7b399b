"""What the tests of libqcc share. Runs under every Python from 2.6 on."""
import os
import shutil
import struct
import tempfile

import libqcc as qc
import libqmSSTRc as ss
from small_figure import small_body
from support import TestCase

PYTHON_2 = str is bytes
ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
DEFAULT_HUMAN = os.path.join(ROOT, "figures", "human.urdf")


def single(number):
    """The nearest number in single precision."""
    return struct.unpack("f", struct.pack("f", number))[0]


def native_text(utf8):
    """The str whose bytes are given, UTF-8 or not: what a path or a property of those bytes looks like."""
    return utf8 if PYTHON_2 else utf8.decode("utf-8", "surrogateescape")


class HostTest(TestCase):
    """A test with a scene of its own. A message that the test does not take fails it."""

    def setUp(self):
        qc.qcMessages_take()
        self.scene = qc.qcScene_new()
        self.analyses = []
        self.folder = tempfile.mkdtemp()

    def tearDown(self):
        for analysis in self.analyses:
            ss.delete_qmStaticStrength(analysis)
        if self.scene:
            qc.qcScene_close(self.scene)
        shutil.rmtree(self.folder)
        self.assertEqual(qc.qcMessages_take(), [])

    def path(self, name):
        return os.path.join(self.folder, name)

    def posed_human(self, name="man"):
        human = qc.qcScene_addPosedHuman(self.scene, small_body(name).text())
        self.assertNotEqual(human, "NULL")
        return human

    def posed_figure(self, name="man"):
        return qc.qcHuman_getFigure(self.posed_human(name))

    def default_human(self, name="worker"):
        human = qc.qcScene_addHuman(self.scene, DEFAULT_HUMAN, name)
        self.assertNotEqual(human, "NULL")
        return human

    def analysis_of(self, human):
        """The human's analysis, deleted after the test as long as it is listed in self.analyses."""
        self.analyses.append(ss.qmStaticStrength_getHandle(human))
        return self.analyses[-1]

    def take_one_error(self):
        """The text of the one message there is, an error."""
        messages = qc.qcMessages_take()
        self.assertEqual([kind for kind, text in messages], ["error"])
        return messages[0][1]
