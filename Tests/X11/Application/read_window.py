"""Writes what assistive technology is told of the window of this title: one line an element."""

import sys

import pyatspi

STATES = (pyatspi.STATE_CHECKED, pyatspi.STATE_FOCUSABLE, pyatspi.STATE_ENABLED)


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


def lines_of(element):
    states = element.getState()
    named = [pyatspi.stateToString(state) for state in STATES if states.contains(state)]
    yield "|".join([element.getRoleName(), element.name, element.description, ",".join(named),
                    ",".join(actions_of(element)), value_of(element)])
    for child in element:
        yield from lines_of(child)


def main(title, file):
    for application in pyatspi.Registry.getDesktop(0):
        for window in application or ():
            if window.name == title:
                with open(file, "w", encoding="utf-8") as out:
                    out.write("\n".join(lines_of(window)) + "\n")
                return 0
    return 1


sys.exit(main(*sys.argv[1:]))
