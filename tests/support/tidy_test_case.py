"""The base class of all tests in Python. Tests clean up even if a signal ends them."""
import signal
import sys
import unittest

signal.alarm(540)  # a minute before ctest kills the test


class TidyTest(unittest.TestCase):
    def run(self, result=None):
        def end(*_):
            result.failfast = True
            sys.exit("told to end")  # unittest treats it as an error, and cleans up

        for number in (signal.SIGALRM, signal.SIGINT, signal.SIGTERM):
            signal.signal(number, end)
        return super().run(result)
