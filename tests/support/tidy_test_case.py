"""What all tests in Python share: they take back what they made, however they end."""

import signal
import sys
import unittest

signal.alarm(540)  # a minute before ctest kills the test


class TidyTest(unittest.TestCase):
    def run(self, result=None):
        def end(*_):
            result.failfast = True
            sys.exit("told to end")  # unittest takes it for an error, and cleans up as after any other

        for number in (signal.SIGALRM, signal.SIGINT, signal.SIGTERM):
            signal.signal(number, end)
        return super().run(result)
