"""What the tests on desktops share: a rig of each test's own."""

import os

from headless import Rig
from tidy_test_case import TidyTest


class DesktopTest(TidyTest):
    def setUp(self):
        self.rig = self.enterContext(Rig(os.environ["TARNO_BIN"]))
