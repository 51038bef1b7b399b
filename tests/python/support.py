"""What the Python tests share. Runs under every Python from 2.6 on."""
import sys
import unittest


class TestCase(unittest.TestCase):
    """With the assertions that the oldest unittest lacks."""

    def check_raises(self, kind, message, function, *arguments):
        """The call raises exactly this exception with exactly this text; None: any text."""
        try:
            function(*arguments)
        except kind:
            error = sys.exc_info()[1]
            self.assertEqual(type(error), kind)
            if message is not None:
                self.assertEqual(str(error), message)
            return str(error)
        self.fail("%s%r raised no %s" % (function.__name__, arguments, kind.__name__))

    def check_raises_beginning(self, kind, beginning, function, *arguments):
        text = self.check_raises(kind, None, function, *arguments)
        self.assertEqual(text[:len(beginning)], beginning)


def main():
    """Runs the script's tests; a test that is skipped counts as failed."""
    suite = unittest.defaultTestLoader.loadTestsFromModule(sys.modules["__main__"])
    result = unittest.TextTestRunner(verbosity=1).run(suite)
    skipped = getattr(result, "skipped", [])
    if not result.wasSuccessful() or skipped or result.testsRun == 0:
        sys.exit(1)
