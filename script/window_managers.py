"""The X11 window managers on which the tile is tried."""
import typing

AWESOME = """
local awful = require("awful")
require("awful.autofocus")
require("beautiful").init(require("gears").filesystem.get_themes_dir() .. "default/theme.lua")
awful.screen.connect_for_each_screen(function(screen)
  awful.tag({"1", "2"}, screen, awful.layout.suit.tile)
  awful.wibar({position = "top", screen = screen})
end)
local menu = awful.menu({items = {{"quit", function() awesome.quit() end}}})
root.buttons(awful.button({}, 3, function() menu:toggle() end))
awful.rules.rules = {{rule = {}, properties = {focus = awful.client.focus.filter}}}
"""
FLUXBOX_KEYS = "OnDesktop Mouse3 :RootMenu\nF12 :ShowDesktop\n"


class WindowManager(typing.NamedTuple):
    argv: tuple = ()
    files: dict = {}  # configuration files: {path in the home directory: text}
    plain: tuple | None = ()  # options without a compositor; None if it always composes
    composing: tuple | None = None  # options for its own compositor; None if it has none
    has_root_menu: bool = False  # opens with the right button
    shows_desktop: bool = True
    has_name: bool = True  # in the property _NET_SUPPORTING_WM_CHECK


XWAYLAND = "mutter with Xwayland"
WINDOW_MANAGERS = {
    "openbox": WindowManager(("openbox",), has_root_menu=True),
    "xfwm4": WindowManager(("xfwm4",), plain=("--compositor=off",), composing=("--compositor=on",)),
    "fluxbox": WindowManager(("fluxbox", "-no-slit"), has_root_menu=True, files={
        ".fluxbox/keys": FLUXBOX_KEYS, ".fluxbox/overlay": "background: none\n"}),
    "icewm": WindowManager(("icewm",), has_root_menu=True),
    "metacity": WindowManager(("metacity", "--sm-disable"), plain=("--no-composite",), composing=("--composite",)),
    "mutter": WindowManager(("mutter", "--x11", "--sm-disable"), plain=None, composing=()),
    XWAYLAND: WindowManager(plain=None, composing=()),  # runs as a Wayland compositor
    "kwin_x11": WindowManager(("kwin_x11",), plain=("KWIN_COMPOSE=N",), composing=()),
    "i3": WindowManager(("i3",), shows_desktop=False, files={
        ".config/i3/config": "# i3 config file (v4)\nfont pango:monospace 8\n"}),
    "awesome": WindowManager(("awesome",), has_root_menu=True, shows_desktop=False, files={".config/awesome/rc.lua": AWESOME}),
    "wmaker": WindowManager(("wmaker", "--no-dock", "--no-clip"), has_root_menu=True, files={"GNUstep/Defaults/WindowMaker": "{WorkspaceBack = None;}"}),
    "twm": WindowManager(("twm",), plain=("LC_ALL=C",), shows_desktop=False, has_name=False, files={".twmrc": "RandomPlacement\n"}),
    "fvwm3": WindowManager(("fvwm3",), shows_desktop=False, files={".fvwm/config": "Style * UsePPosition, !Title, !Borders, !Handles\n"}),
    "marco": WindowManager(("marco",), plain=("--no-composite",), composing=("--composite",)),
    "enlightenment": WindowManager(("enlightenment", "-profile", "standard"), plain=None, shows_desktop=False, composing=("E_START=1",)),
    "ratpoison": WindowManager(("ratpoison",), shows_desktop=False, has_name=False),
    "dwm": WindowManager(("dwm",), shows_desktop=False),
    "spectrwm": WindowManager(("spectrwm",), shows_desktop=False),
    "bspwm": WindowManager(("bspwm",), shows_desktop=False, files={
        ".config/bspwm/bspwmrc": "#!/bin/sh\nbspc monitor -d 1 2\n"}),
    "herbstluftwm": WindowManager(("herbstluftwm",), shows_desktop=False, files={
        ".config/herbstluftwm/autostart": "#!/bin/sh\nherbstclient add 2\n"}),
}
