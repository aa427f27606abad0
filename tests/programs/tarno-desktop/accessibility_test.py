"""What a screen reader finds in the tile and hears of it."""
import os

from gi.repository import GLib

from support import LOCKED, UNLOCKED, Clock, run_tests, wait_for


def test_screen_reader(rig):
    rig.x11()
    rig.session_bus()
    os.environ |= rig.env
    import pyatspi  # reads the environment

    clock = Clock(rig, rate=30)
    rig.save(LOCKED, clock.now())
    tile = rig.tile(env=clock.env)

    def application():
        found = [one for one in pyatspi.Registry.getDesktop(0) if one and one.name == "tarno-desktop"]
        return found[0] if found and len(found[0]) == 1 and len(found[0][0]) > 0 else None

    window = wait_for(application, message="the tile in the accessibility tree")[0]
    assert (window.getRoleName(), window.name) == ("frame", "Tarno"), (window.getRoleName(), window.name)
    age = window[4].name
    assert [(element.getRoleName(), element.name) for element in window] == [
        ("image", "Kivo's Mac locked"), ("label", "Kivo's Mac"), ("label", "Locked"), ("label", "Lid closed"),
        ("label", age), ("label", "Face seen")], list(window)
    assert age.endswith("s ago"), age
    outer = window.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
    for index, element in enumerate(window):
        assert element.getIndexInParent() == index and len(element) == 0
        assert element.getState().contains(pyatspi.STATE_SHOWING)
        assert not element.getState().contains(pyatspi.STATE_FOCUSABLE)
        inner = element.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
        assert outer.x <= inner.x and inner.x + inner.width <= outer.x + outer.width, (outer, inner)
        assert outer.y <= inner.y and inner.y + inner.height <= outer.y + outer.height, (outer, inner)
        assert inner.width > 10 and inner.height > 5

    heard = []
    pyatspi.Registry.registerEventListener(lambda event: heard.append(event.any_data),
                                           "object:property-change:accessible-name")
    rig.save(UNLOCKED, clock.now())

    def is_heard():
        while GLib.MainContext.default().iteration(False):
            pass
        return {"Kivo's Mac unlocked", "Unlocked"} <= set(heard)

    wait_for(is_heard, 5, "the new label")
    assert not {"Kivo's Mac", "Lid closed", "Face seen"} & set(heard), heard
    assert tile.end() == 0


run_tests(globals())
