"""What the tests on desktops share: a rig of each test's own."""

import os
import unittest

from headless import Rig


class DesktopTest(unittest.TestCase):
    def setUp(self):
        self.rig = self.enterContext(Rig(os.environ["TARNO_BIN"]))
