"""Tells what assistive technology is told of the window of a title. Each line on the standard input
names a file; it is there once it holds a line an element that can be seen, or could be once it is
scrolled to. It is empty while there is no such window."""

import os
import sys

import pyatspi
from gi.repository import Atspi, GLib

STATES = (pyatspi.STATE_CHECKED, pyatspi.STATE_FOCUSABLE, pyatspi.STATE_FOCUSED,
          pyatspi.STATE_ENABLED)


def actions_of(element):
    try:
        action = element.queryAction()
    except NotImplementedError:
        return []
    return [action.getName(number) for number in range(action.nActions)]


def value_of(element):
    try:
        value = element.queryValue()
    except NotImplementedError:
        return ""
    return f"{value.minimumValue:g}..{value.currentValue:g}..{value.maximumValue:g}"


def seen_of(element, room):
    """The part of it that lies in all that holds it: left, top, right, bottom."""
    try:
        place = element.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
    except NotImplementedError:
        return room
    whole = (place.x, place.y, place.x + place.width, place.y + place.height)
    if room is None:
        return whole
    return (max(whole[0], room[0]), max(whole[1], room[1]),
            min(whole[2], room[2]), min(whole[3], room[3]))


def place_of(seen):
    if seen is None or seen[2] <= seen[0] or seen[3] <= seen[1]:
        return ""
    return f"{seen[0]},{seen[1]},{seen[2] - seen[0]},{seen[3] - seen[1]}"


def lines_of(element, room=None):
    if element is None:
        return  # it went while its parent was asked
    states = element.getState()
    if not states.contains(pyatspi.STATE_VISIBLE):
        return
    seen = seen_of(element, room)
    named = [pyatspi.stateToString(state) for state in STATES if states.contains(state)]
    yield "|".join([element.getRoleName(), element.name, element.description, ",".join(named),
                    ",".join(actions_of(element)), value_of(element), place_of(seen)])
    for child in element:
        yield from lines_of(child, seen)


def windows():
    desktop = pyatspi.Registry.getDesktop(0)
    desktop.clear_cache()
    for application in desktop:
        if application is not None:
            application.set_cache_mask(Atspi.Cache.NONE)
            yield from application


def told_of(title):
    try:
        return "".join(f"{line}\n" for window in windows() if window.name == title
                       for line in lines_of(window))
    except GLib.Error:
        return ""  # an element went while it was asked


def main(title):
    for line in sys.stdin:
        file = line.rstrip("\n")
        with open(file + ".part", "w", encoding="utf-8") as part:
            part.write(told_of(title))
        os.rename(file + ".part", file)


main(*sys.argv[1:])
