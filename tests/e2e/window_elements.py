"""The controls of a program as its user's screen reader finds them: by role and caption."""

import functools
import time
import warnings

PATIENCE = 60  # seconds after which an answer of the program counts as missing
CLOSED_ROLES = ("table", "tree table", "list", "list box", "menu", "icon")  # children on demand

FRAME_ROLES = ("frame", "dialog", "file chooser", "alert")
POPUP_ROLES = ("window", "menu")

ROLES = {
    "button": ("push button", "toggle button"),
    "checkbox": ("check box",),
    "option": ("radio button",),
    "field": ("text", "entry", "password text"),
    "label": ("label", "static"),
    "tab": ("page tab",),
    "list": ("list", "list box", "table", "tree table", "tree"),
    "choice": ("combo box",),
    "window": ("frame", "dialog", "window", "file chooser"),
    "message": ("alert",),
    "progress": ("progress bar",),
    "link": ("link", "hyper link"),
    "menu": ("menu",),
    "picture": ("icon", "image"),
    "item": ("menu item", "check menu item"),
}


@functools.cache
def atspi():
    """The bus, once the screen is there."""
    warnings.simplefilter("ignore", DeprecationWarning)  # the new names are not in every version
    import gi  # pylint: disable=import-outside-toplevel  # it connects when it is loaded
    gi.require_version("Atspi", "2.0")
    from gi.repository import Atspi  # pylint: disable=import-outside-toplevel
    Atspi.init()
    Atspi.set_timeout(10000, 10000)
    return Atspi


class Ear:
    """What a screen reader hears of the focus: also where it is in a part that no list of parts
    tells of."""

    def __init__(self):
        self.node = None
        from gi.repository import GLib  # pylint: disable=import-outside-toplevel
        self.context = GLib.MainContext.default()
        self.listener = atspi().EventListener.new(self.hear)
        self.listener.register("object:state-changed:focused")

    def hear(self, event):
        if event.detail1:
            self.node = event.source

    def focused(self):
        while self.context.pending():
            self.context.iteration(False)
        return self.node


@functools.cache
def ear():
    return Ear()


def wait_for(question, what, patience=PATIENCE):
    """The first answer that counts; an error that names what was waited for."""
    deadline = time.monotonic() + patience
    while True:
        answer = question()
        if answer:
            return answer
        if time.monotonic() > deadline:
            raise TimeoutError(f"rien ne vient : {what}")
        time.sleep(0.02)


def forgiving(default):
    """A control can go away while it is asked."""
    def decorate(function):
        @functools.wraps(function)
        def answer(*arguments, **options):
            try:
                return function(*arguments, **options)
            except Exception as error:  # pylint: disable=broad-except
                if type(error).__name__ not in ("Error", "GError", "AttributeError"):
                    raise
                return default
        return answer
    return decorate


class Element:
    """One control, window, list or entry."""

    def __init__(self, node, screen):
        self.node = node
        self.screen = screen

    def __repr__(self):
        return f"{self.role} « {self.name} »"

    # ---- what it is ---------------------------------------------------------------------------

    @property
    @forgiving("")
    def role(self):
        return self.node.get_role_name()

    @property
    @forgiving("")
    def name(self):
        self.forget()
        return self.node.get_name() or ""

    @property
    @forgiving("")
    def description(self):
        return self.node.get_description() or ""

    def forget(self):
        """What the program has just changed counts, not what it said before."""
        self.node.clear_cache()

    @forgiving(False)
    def state(self, name):
        self.forget()
        return self.node.get_state_set().contains(getattr(atspi().StateType, name))

    showing = property(lambda self: self.state("SHOWING"))
    enabled = property(lambda self: self.state("SENSITIVE"))
    checked = property(lambda self: self.state("CHECKED"))
    focused = property(lambda self: self.state("FOCUSED"))
    active = property(lambda self: self.state("ACTIVE"))
    selected = property(lambda self: self.state("SELECTED"))

    @property
    @forgiving("")
    def text(self):
        """What it holds; a label's name."""
        face = self.node.get_text_iface()
        if face is None:
            return self.name
        return atspi().Text.get_text(face, 0, atspi().Text.get_character_count(face))

    @property
    @forgiving(0.0)
    def value(self):
        face = self.node.get_value_iface()
        return face.get_current_value() if face else 0.0

    @property
    @forgiving((0, 0, 0, 0))
    def extents(self):
        """x, y, width, height on the screen."""
        box = self.node.get_component_iface().get_extents(atspi().CoordType.SCREEN)
        return box.x, box.y, box.width, box.height

    @property
    def middle(self):
        x, y, width, height = self.extents
        return x + width // 2, y + height // 2

    @property
    @forgiving(())
    def children(self):
        self.forget()
        found = (self.node.get_child_at_index(i) for i in range(self.node.get_child_count()))
        return tuple(Element(node, self.screen) for node in found if node is not None)

    @property
    @forgiving(None)
    def parent(self):
        node = self.node.get_parent()
        return Element(node, self.screen) if node is not None else None

    # ---- what it holds ------------------------------------------------------------------------

    @property
    def frame(self):
        """The window that it is in, when that is one that comes to the front: a menu's is not."""
        element = self
        while element is not None and element.role not in (*FRAME_ROLES, *POPUP_ROLES):
            element = element.parent
        return None if element is None or element.role in POPUP_ROLES else element

    def below(self):
        """Everything below it that shows, in reading order; the entries of lists are left out."""
        for child in self.children:
            if not child.showing:
                continue
            yield child
            if child.role not in CLOSED_ROLES:
                yield from child.below()

    def find_all(self, kind, caption=None):
        """`caption`: the whole caption, a function of it, or none for every control of a kind."""
        fits = caption if callable(caption) else lambda name: caption in (None, name)
        return [element for element in self.below()
                if element.role in ROLES[kind] and fits(element.name)]

    def find(self, kind, caption=None, patience=PATIENCE):
        """The control of that kind and caption, waited for."""
        found = wait_for(lambda: self.find_all(kind, caption), f"{kind} {caption!r} dans {self}",
                         patience)
        return found[0]

    def has(self, kind, caption=None):
        return bool(self.find_all(kind, caption))

    def labels(self):
        return [element.text for element in self.find_all("label") if element.text]

    @forgiving([])
    def entries(self):
        """The texts of a list, row by row."""
        table = self.node.get_table_iface()
        if table is None:
            return [child.text or child.name for child in self.children]
        columns = range(table.get_n_columns())
        rows = []
        for row in range(table.get_n_rows()):
            cells = [self.cell(table, row, column) for column in columns]
            rows.append(cells[0] if len(cells) == 1 else cells)
        return rows

    def cell_at(self, row, column):
        """A cell of a list, to press."""
        return Element(self.node.get_table_iface().get_accessible_at(row, column), self.screen)

    def cell(self, table, row, column):
        element = Element(table.get_accessible_at(row, column), self.screen)
        # A cell with a picture holds the picture and the text.
        return element.text or "".join(child.text for child in element.children)

    def position_of(self, caption):
        """Which of its children bears that caption."""
        return [child.name for child in self.children].index(caption)

    # ---- what the user does with it -----------------------------------------------------------

    def activate(self):
        """Presses it as a screen reader does."""
        wait_for(lambda: self.enabled, f"{self} se laisse presser")
        if not self.node.get_action_iface().do_action(0):
            raise RuntimeError(f"{self} ne se laisse pas presser")

    def press(self, button=1, count=1):
        """Presses it with the mouse, where it has come to stand."""
        wait_for(lambda: self.enabled and self.extents[2] > 1, f"{self} se laisse presser")
        self.comes_forward()
        wait_for(self.stands_still, f"{self} ne bouge plus")
        self.screen.click(*self.middle, button=button, count=count)

    def keys(self, *names):
        """Presses keys, once its window is the one that they go to."""
        self.comes_forward()
        self.screen.keys(*names)

    def comes_forward(self):
        """A window shows before the window manager has given it its place and the keyboard."""
        frame = self.frame
        if frame is not None:
            wait_for(lambda: frame.active, f"{frame} passe devant")

    def stands_still(self):
        before = self.extents
        time.sleep(0.03)
        return self.extents == before

    def set(self, text):
        """Replaces the text of a field."""
        if not self.node.get_editable_text_iface().set_text_contents(text):
            raise RuntimeError(f"{self} ne se laisse pas écrire")

    @forgiving(False)
    def focus(self):
        return self.node.get_component_iface().grab_focus()

    @forgiving(False)
    def take(self):
        """Selects it among its neighbours; False until that is seen."""
        captions = [child.name for child in self.parent.children]
        face = self.parent.node.get_selection_iface()
        if face is not None and self.name in captions:
            face.select_child(captions.index(self.name))
        return self.selected

    def select(self, index):
        """Selects a child: a tab, an entry of a list or of a drop-down list."""
        face = self.node.get_selection_iface()
        if face is None or not face.select_child(index):
            raise RuntimeError(f"{self} ne se laisse pas choisir")
