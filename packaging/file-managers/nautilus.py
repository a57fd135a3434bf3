"""Nautilus: "Convert with Corvana" in the context menu of sounds and folders."""

import locale
import os

import gi
from gi.repository import Gio, GObject, Nautilus

try:
    gi.require_version("Gdk", "4.0")
    from gi.repository import Gdk
except (ImportError, ValueError):
    Gdk = None

PROGRAM = "example.corvana.Corvana.desktop"


def label():
    language = os.environ.get("LANGUAGE") or locale.setlocale(locale.LC_MESSAGES)
    german = language.startswith("de")
    return "Mit Corvana konvertieren" if german else "Convert with Corvana"


def convert(_item, program, locations):
    # The context carries the proof that the user wants the window in front.
    context = Gdk.Display.get_default().get_app_launch_context() if Gdk else None
    program.launch(locations, context)


class CorvanaMenu(GObject.GObject, Nautilus.MenuProvider):
    def get_file_items(self, *arguments):
        files = arguments[-1]  # before Nautilus 43 a window comes first
        try:
            program = Gio.DesktopAppInfo.new(PROGRAM)
        except TypeError:  # removed while Nautilus runs
            return []
        types = program.get_supported_types()
        if not all(file.is_directory() or file.get_mime_type() in types for file in files):
            return []
        item = Nautilus.MenuItem(name="Corvana::convert", label=label())
        item.connect("activate", convert, program, [file.get_location() for file in files])
        return [item]
