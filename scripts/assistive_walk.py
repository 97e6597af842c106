"""The walk that assistive-walk starts: programs of the folder argv[1], files in argv[2]."""

import os
import re
import signal
import subprocess
import sys
import time

sys.dont_write_bytecode = True  # this folder is the source's
from assistive_tree import (  # noqa: E402
    NUMBERS, PRESSED, TOGGLED, action_index, children, column_root, controls, descend, key, middle, mouse_click,
    page_root, pyatspi, showing, usable)

BIN, WORK = sys.argv[1:3]
ONLY = sys.argv[3:]  # pages, for who looks for something
PAGES = ["Registers", "ISPTune", "Gamma", "LSC", "AWBTune", "LinearMatrix", "DynamicControl", "FontEditor", "MakeFlash"]
QUIET = 0.16  # of the chip's trace, after which an action counts as over; a write is paced by 0.05 s
LONGEST = 40.0  # the slowest save; DynamicControl's stores for ten seconds, in which nothing is traced, and is read back
# What a press opens has buttons of its own, and what moves by itself has no two equal presses.
NOT_TWICE = {"Load All From ISP", "Load From ISP", "Stop reading registers", "CALIBRATION", "Check field"}
# Each press moves on from where the one before it ended.
COUNTING = {"UP", "DOWN", "LEFT", "RIGHT"}
# What switches other controls on, or shows them.
SWITCHES = ("More", "Enable Color Picker", "Input Manually")
SAVES = {"File/Flash Save"}
# What asks the chip, or sends more than one piece: the next one waits for an answer that may still come.
SLOW = ("File/Flash Save", "GET COLOR", "CALIBRATION", "Apply", "Dump", "Read", "Sensor Read", "Load ", "Get Info")
SLOW_QUIET = 0.8
# A save is read back once the chip has stored it, which takes it up to ten seconds in which nothing is sent.
SAVE_QUIET = 11

findings = 0


def find(text):
    global findings
    findings += 1
    print("FINDING " + text, flush=True)


def note(text):
    print("note: " + text, flush=True)


class Program:
    """The window on a simulated chip of its own, whose trace tells what left."""

    def __init__(self):
        self.trace = open(WORK + "/trace", "w+b")
        link = WORK + "/board"
        self.chip = subprocess.Popen([BIN + "/qv5123sim", "--trace", "--link", link], stdout=self.trace)
        until(lambda: os.path.exists(link), "no simulated chip")
        self.window = subprocess.Popen([BIN + "/QV5123", "--port", link, "--settings", "sample.dat"])
        self.app = until(self.find, "no window on the accessibility bus")
        self.frame = until(lambda: next((c for c in children(self.app) if c.getRole() == pyatspi.ROLE_FRAME), None),
                           "no frame")
        ids = until(lambda: subprocess.run(["xdotool", "search", "--onlyvisible", "--name", "Adjustment Program"],
                                           capture_output=True, text=True).stdout.split(), "no window")
        self.id = ids[0]
        subprocess.run(["xdotool", "windowmove", self.id, "0", "0", "windowsize", self.id, "1900", "1280"])
        self.focus()
        time.sleep(2)

    def find(self):
        desktop = pyatspi.Registry.getDesktop(0)
        return next((a for a in children(desktop) if a.name.startswith("QV5123")), None)

    def focus(self):
        subprocess.run(["xdotool", "windowfocus", self.id])

    def size(self):
        return os.fstat(self.trace.fileno()).st_size

    def wait_quiet(self, quiet=QUIET):
        begun = since = time.monotonic()
        size = self.size()
        while time.monotonic() - since < quiet and time.monotonic() - begun < LONGEST:
            time.sleep(0.02)
            if self.size() != size:
                size, since = self.size(), time.monotonic()

    def frames(self, start):
        """What the chip understood since `start`, without what it said."""
        with open(WORK + "/trace", "rb") as trace:
            trace.seek(start)
            return [line for line in trace.read().decode("latin-1").splitlines() if line.startswith("@")]

    def windows(self):
        return [w for w in children(self.app) if w != self.frame and showing(w)]

    def end(self):
        for process in (self.window, self.chip):
            process.send_signal(signal.SIGTERM)
            try:
                process.wait(10)
            except subprocess.TimeoutExpired:
                process.kill()


def until(what, complaint, seconds=90):
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        found = what()
        if found:
            return found
        time.sleep(0.05)
    raise RuntimeError(complaint)


class Walk:
    def __init__(self, program):
        self.program = program
        self.patience = 1  # how often as long as usual is waited
        self.radios = []

    def did(self, action, quiet=QUIET):
        """What an action sends, and the windows that it opens, which are closed again."""
        quiet *= self.patience
        start = self.program.size()
        action()
        self.program.wait_quiet(quiet)
        opened = []
        for _ in range(4):
            windows = self.program.windows()
            if not windows:
                break
            opened += [window.name for window in windows]
            key("Escape")
            self.program.wait_quiet(quiet)
        self.program.focus()
        return self.program.frames(start), opened

    def compare(self, page, node, what, by_bus, by_hand):
        if node.name in COUNTING:
            by_bus, by_hand = ([frame[:3] for frame in frames] for frames, _ in (by_bus, by_hand))
        label = f"{page}: {node.getRoleName()} \"{node.name}\""
        if by_bus != by_hand:
            find(f"{label}: {what} through the bus sends {by_bus}, by hand {by_hand}")
        return by_bus

    def letter(self, node):
        """The chip waits for an image that does not come, until "Cancel" ends that."""
        def press(start):
            def act():
                start()
                self.program.wait_quiet(0.5)
                key("Escape")
                self.program.wait_quiet(0.5)
                descend(self.program.frame, lambda n: n.name == "Cancel download").queryAction().doAction(0)
            return act
        return press

    def button(self, page, node):
        quiet = SLOW_QUIET if node.name.startswith(SLOW) or node.name in COUNTING else QUIET
        if node.name in SAVES:
            quiet = SAVE_QUIET
        press, click = lambda: node.queryAction().doAction(0), lambda: mouse_click(node)
        if node.name in ("FW", "FONT"):
            press, click, quiet = self.letter(node)(press), self.letter(node)(click), 1.0
        if node.name in NOT_TWICE:
            self.did(press, quiet)
            return
        self.twice(page, node, "a press", lambda: self.did(press, quiet),
                   lambda: self.did(click, quiet))

    def toggle(self, page, node):
        toggle = lambda: node.queryAction().doAction(action_index(node, ("Toggle", "Check", "Uncheck", "Press")))
        if node.getRole() == pyatspi.ROLE_RADIO_BUTTON:
            return self.radio(page, node, toggle)
        click = lambda: mouse_click(node, left=True)
        self.twice(page, node, "two toggles", lambda: [self.did(toggle, 0.3), self.did(toggle, 0.3)],
                   lambda: [self.did(click, 0.3), self.did(click, 0.3)])

    def radio(self, page, node, toggle):
        others = [n for n in self.radios if n != node]
        away = lambda: others and mouse_click(others[0], left=True)
        self.twice(page, node, "a choice", lambda: (self.did(away), self.did(toggle))[1],
                   lambda: (self.did(away), self.did(lambda: mouse_click(node, left=True)))[1])

    def combo(self, page, node):
        """The bus opens the list of these boxes; what is chosen there is chosen with the keyboard either way."""

        def choose(open_list, move):
            def act():
                open_list()
                time.sleep(0.2)
                key(move)
                key("Return")
            return act
        show = lambda: node.queryAction().doAction(action_index(node, ("ShowMenu", "Press")))
        click = lambda: mouse_click(node)
        self.twice(page, node, "two choices",
                   lambda: [self.did(choose(show, "Down")), self.did(choose(show, "Up"))],
                   lambda: [self.did(choose(click, "Down")), self.did(choose(click, "Up"))])

    def rows(self, page, node):
        """A row of a list is chosen."""
        table = node.queryTable()
        other, row = table.getAccessibleAt(0, 1), table.getAccessibleAt(1, 1)
        if not other or not row or not showing(row):
            return
        choose = lambda: row.queryAction().doAction(0)
        outcomes = []
        for act in (choose, lambda: mouse_click(row)):
            self.did(lambda: mouse_click(other), 0.5)
            outcomes.append(self.did(act, 0.5))
        self.compare(page, node, "a row", *outcomes)

    def twice(self, page, node, what, by_bus, by_hand):
        """Compares, and once more in peace where the machine was busy."""
        bus, hand = by_bus(), by_hand()
        if bus != hand and node.name not in COUNTING:
            self.patience = 6
            bus, hand = by_bus(), by_hand()
            self.patience = 1
        self.compare(page, node, what, bus, hand)

    def number(self, page, node):
        value = node.queryValue()
        before, low, high = value.currentValue, value.minimumValue, value.maximumValue
        step = 1 if before < high else -1
        set_to = lambda number: lambda: setattr(node.queryValue(), "currentValue", number)
        keys = ("Up", "Down") if step > 0 else ("Down", "Up")
        if node.getRole() == pyatspi.ROLE_SLIDER:
            keys = ("Right", "Left") if step > 0 else ("Left", "Right")
        shown = []

        def by_bus():
            there = self.did(set_to(before + step))
            shown.append(node.queryValue().currentValue)
            return [there, self.did(set_to(before))]

        def by_hand():
            node.queryComponent().grabFocus()
            return [self.did(lambda: key(keys[0])), self.did(lambda: key(keys[1]))]
        self.twice(page, node, "a step and back", by_bus, by_hand)
        if abs(shown[-1] - before - step) > 1e-9 and low != high:
            find(f"{page}: \"{node.name}\" set to {before + step} shows {shown[-1]}")

    def text(self, page, node):
        if not node.getState().contains(pyatspi.STATE_EDITABLE):
            return
        text = node.queryText()
        before = text.getText(0, -1)
        other = re.sub("[0-9A-F]$", lambda m: "1" if m.group() != "1" else "2", before) or "1"
        set_to = lambda t: lambda: node.queryEditableText().setTextContents(t)

        typed_over = page == "Registers" and before.startswith("0x")  # digit by digit, from the first one on

        def typed(t):
            def act():
                node.queryComponent().grabFocus()
                subprocess.run(["xdotool", "key"] + (["Home", "Right", "Right"] if typed_over else ["ctrl+a"]))
                rest = t[2:] if typed_over else t
                subprocess.run(["xdotool", "type", "--delay", "5", rest] if rest else ["xdotool", "key", "Delete"])
            return act
        # Digit by digit, an address is another one in between.
        last = lambda outcome: [(frames[-2:], windows) for frames, windows in outcome]
        self.twice(page, node, "a text and back",
                   lambda: last([self.did(set_to(other), 0.4), self.did(set_to(before), 0.4)]),
                   lambda: last([self.did(typed(other), 0.4), self.did(typed(before), 0.4)]))

    def control(self, page, node):
        role = node.getRole()
        if role in PRESSED:
            self.button(page, node)
        elif role in TOGGLED:
            self.toggle(page, node)
        elif role in NUMBERS:
            self.number(page, node)
        elif role == pyatspi.ROLE_COMBO_BOX:
            self.combo(page, node)
        elif role == pyatspi.ROLE_TABLE:
            self.rows(page, node)
        else:
            self.text(page, node)

    def names(self, page, nodes):
        seen = {}
        for node in nodes:
            # This toolkit calls a box by what is chosen in it; it is known by its description.
            name = node.description if node.getRole() == pyatspi.ROLE_COMBO_BOX else node.name
            if not name:
                find(f"{page}: a {node.getRoleName()} without a name at {middle(node)}")
            seen.setdefault((node.getRoleName(), name), []).append(node)
        for (role, name), many in seen.items():
            if name and len(many) > 1:
                find(f"{page}: {len(many)} of role {role} are called \"{name}\"")

    def area(self, page, root):
        walked = set()
        self.names(page, controls(root))
        self.walk_usable(page, root, walked)
        for name in SWITCHES:
            switch = descend(root, lambda n: n.name == name and n.getRole() == pyatspi.ROLE_CHECK_BOX)
            if not switch or not usable(switch):
                continue
            flip = lambda: switch.queryAction().doAction(0)
            self.did(flip, 1.0)
            self.names(page, controls(root))
            self.walk_usable(page, root, walked)
            if switch.getState().contains(pyatspi.STATE_CHECKED):
                self.did(flip, 1.0)
        return len(walked)

    def walk_usable(self, page, root, walked):
        nodes = controls(root)
        # Saves come last: they switch the picker off.
        nodes.sort(key=lambda n: (n.name in SAVES, n.name == "Clear"))
        for node in nodes:
            name = (node.getRole(), node.description if node.getRole() == pyatspi.ROLE_COMBO_BOX else node.name)
            if name in walked or not usable(node):
                continue
            walked.add(name)
            self.radios = [n for n in nodes if n.getRole() == pyatspi.ROLE_RADIO_BUTTON and n.parent == node.parent]
            begun = time.monotonic()
            try:
                self.control(page, node)
            except Exception as error:  # a control that the bus cannot use is what is looked for
                find(f"{page}: {node.getRoleName()} \"{node.name}\": {type(error).__name__}: {error}")
            if time.monotonic() - begun > 10:
                note(f"{page}: \"{node.name}\" took {time.monotonic() - begun:.0f} s")


def walk():
    program = Program()
    try:
        walker = Walk(program)
        for page in PAGES:
            if ONLY and page not in ONLY:
                continue
            begun = time.monotonic()
            item = descend(program.frame, lambda n: n.getRole() == pyatspi.ROLE_MENU_ITEM and
                           n.name.replace("&", "") == page)
            if item:
                item.queryAction().doAction(0)
            program.wait_quiet(1.0)
            root = until(lambda: page_root(program.frame), "no page for " + page)
            count = walker.area(page, root)
            print(f"{page}: {count} controls, {time.monotonic() - begun:.0f} s", flush=True)
        if not ONLY or "Column" in ONLY:
            print(f"Column: {walker.area('Column', column_root(program.frame))} controls", flush=True)
    finally:
        program.end()
    return 1 if findings else 0


try:
    sys.exit(walk())
except Exception as error:
    print(f"assistive-walk: {' '.join(ONLY)}: {error}", flush=True)
    sys.exit(2)
