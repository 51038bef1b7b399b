"""The interpreter of the run that is to have a decimal comma has one, and no other; our libraries leave it as it is."""
import locale
import os

import libqcc
import libqmSSTRc
from support import TestCase, main


class ProcessLocale(TestCase):

    def test_decimal_comma_is_there_in_the_run_that_is_to_have_one_only(self):
        # scripts/test-comma.sh tells by this variable that it preloads the locale
        expected = "," if "SSTR_COMMA_PRELOAD" in os.environ else "."
        self.assertEqual(locale.localeconv()["decimal_point"], expected)
        self.assertEqual(locale.format_string("%.1f", 0.5), "0" + expected + "5")


if __name__ == "__main__":
    main()
