"""libqcc: a save that fails keeps the old scene."""
import errno
import os
import resource
import signal

import libqcc as qc
from qcc_support import HostTest
from support import main


def content_of(path):
    with open(path, "rb") as scene:
        return scene.read()


class FailedSave(HostTest):

    def setUp(self):
        HostTest.setUp(self)
        self.default_human()
        self.target = self.path("scene.json")
        self.assertEqual(qc.qcScene_save(self.scene, self.target), 1)
        self.before = content_of(self.target)
        qc.qcScene_setGravity(self.scene, 0, -162, 0)

    def test_full_disk_keeps_the_old_scene(self):
        before = resource.getrlimit(resource.RLIMIT_FSIZE)
        signal_before = signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
        resource.setrlimit(resource.RLIMIT_FSIZE, (len(self.before) // 2, before[1]))
        try:
            saved = qc.qcScene_save(self.scene, self.target)
        finally:
            resource.setrlimit(resource.RLIMIT_FSIZE, before)
            signal.signal(signal.SIGXFSZ, signal_before)
        self.assertEqual(saved, 0)
        self.assertEqual(self.take_one_error(), self.target + ": cannot be written: " + os.strerror(errno.EFBIG) + ".")
        self.assertEqual(content_of(self.target), self.before)
        self.assertEqual(os.listdir(self.folder), ["scene.json"])
        self.assertEqual(qc.qcScene_save(self.scene, self.target), 1)
        self.assertNotEqual(content_of(self.target), self.before)

    def test_full_device_is_said(self):
        self.assertEqual(qc.qcScene_save(self.scene, "/dev/full"), 0)
        self.assertEqual(self.take_one_error(), "/dev/full: cannot be written: " + os.strerror(errno.ENOSPC) + ".")

    def test_folder_that_takes_no_files_is_said(self):
        # a folder of the system in which not even the superuser makes files
        self.assertEqual(qc.qcScene_save(self.scene, "/proc/a.json"), 0)
        start = '/proc/a.json: cannot be written: no file can be made in the folder "/proc": '
        self.assertEqual(self.take_one_error()[:len(start)], start)


if __name__ == "__main__":
    main()
