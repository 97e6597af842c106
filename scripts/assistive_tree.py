"""The tree of controls that the accessibility bus shows, and what a user does with mouse and keyboard."""

import os
import subprocess

os.environ["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
os.environ["QT_ACCESSIBILITY"] = "1"
import pyatspi  # noqa: E402  (it connects to the bus at once)

PRESSED = (pyatspi.ROLE_PUSH_BUTTON,)
TOGGLED = (pyatspi.ROLE_CHECK_BOX, pyatspi.ROLE_RADIO_BUTTON)
NUMBERS = (pyatspi.ROLE_SPIN_BUTTON, pyatspi.ROLE_SLIDER)
CONTROLS = PRESSED + TOGGLED + NUMBERS + (pyatspi.ROLE_COMBO_BOX, pyatspi.ROLE_TEXT, pyatspi.ROLE_TABLE)


def key(name):
    subprocess.run(["xdotool", "key", name], check=False)


def children(node):
    try:
        return [child for child in (node.getChildAtIndex(i) for i in range(node.childCount)) if child]
    except Exception:
        return []


def showing(node):
    return node.getState().contains(pyatspi.STATE_SHOWING)


def usable(node):
    state = node.getState()
    return showing(node) and state.contains(pyatspi.STATE_ENABLED)


def controls(node, found=None):
    found = [] if found is None else found
    if not showing(node):
        return found
    if node.getRole() in CONTROLS:
        found.append(node)
        return found  # an edit inside a box is the box
    for child in children(node):
        controls(child, found)
    return found


def middle(node):
    box = node.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
    return box.x + box.width // 2, box.y + box.height // 2


def mouse_click(node, left=False):
    box = node.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
    x, y = (box.x + 9, box.y + box.height // 2) if left else middle(node)
    subprocess.run(["xdotool", "mousemove", str(x), str(y), "click", "1"])


def action_index(node, names):
    action = node.queryAction()
    have = [action.getName(i) for i in range(action.nActions)]
    return next((have.index(name) for name in names if name in have), 0)


def descend(node, test):
    if test(node):
        return node
    for child in children(node):
        found = descend(child, test)
        if found:
            return found
    return None


def page_root(frame):
    """The page that is shown, beside the column with the console."""
    stack = descend(frame, lambda n: n.getRole() == pyatspi.ROLE_LAYERED_PANE)
    return next((c for c in children(stack or frame) if showing(c)), None)


def column_root(frame):
    stack = descend(frame, lambda n: n.getRole() == pyatspi.ROLE_LAYERED_PANE)
    return next(c for c in reversed(children(stack.parent)) if showing(c) and c != stack)
