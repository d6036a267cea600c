#!/usr/bin/env python3
"""Holds the #include lines of the product against the edges that the build files declare.

usage: layering.py SOURCE_ROOT LAYERS_FILE

LAYERS_FILE, written at configure time, has a line "folder target edge ..." for each folder. A file may include from its own
folder and from those its folder has an edge to; the engine knows no Qt outside engine/qt; widgets, settings and message
boxes stay where they belong.
"""

import pathlib
import re
import sys

INCLUDE = re.compile(r'^\s*#\s*include\s+(?:"([^"]+)"|<([^>]+)>)')
WIDGET_FOLDERS = (
    "app/mainwindow", "app/main", "app/playback", "app/flyby", "app/video", "app/sky", "app/stars", "app/depthedit", "app/panel", "app/prefs",
    "tools/screenshots",
)
WIDGET_HEADERS = re.compile(
    r"^Q(Widget|MainWindow|Dialog|MessageBox|FileDialog|Application|Label|PushButton|Action|Menu|Slider|Layout|"
    r"StatusBar|ToolBar|ScrollArea|GraphicsView|VBoxLayout|HBoxLayout|ProgressDialog|UndoStack)$")
# Headers that one file alone may use.
SOLE_OWNERS = {
    "QSettings": ("app/persist/appcfg",),
    "QMessageBox": ("app/mainwindow/prompter", "app/mainwindow/widget_prompter"),
    "QFileDialog": ("app/mainwindow/prompter", "app/mainwindow/widget_prompter"),
}


def read_layers(path):
    folder_of, edges = {}, {}
    for line in path.read_text().splitlines():
        folder, target, *links = line.split()
        folder_of[target] = folder
        edges[folder] = links
    return {folder: {folder_of[t] for t in links if t in folder_of} for folder, links in edges.items()}


def folder_of_file(name, layers):
    return max((f for f in layers if name.startswith(f + "/")), key=len, default=None)


def faults_of(name, text, layers):
    home = folder_of_file(name, layers)
    for number, line in enumerate(text.splitlines(), 1):
        match = INCLUDE.match(line)
        if not match:
            continue
        own, system = match.groups()
        where = f"{name}:{number}"
        if own:
            other = folder_of_file(own, layers)
            if own.startswith("tests/"):
                yield f"{where}: the product includes a test header"
            elif home and other and other != home and other not in layers[home]:
                yield f"{where}: {home} has no edge to {other}"
            elif home and other is None and own.split("/")[0] in ("engine", "app", "tools"):
                yield f"{where}: {own} lies in no declared folder"
            continue
        if name.startswith("engine/") and not name.startswith("engine/qt/") and re.match(r"Q[A-Z]|Qt", system):
            yield f"{where}: the engine knows no Qt"
        if not name.startswith(WIDGET_FOLDERS) and WIDGET_HEADERS.match(system):
            yield f"{where}: no widgets here"
        owners = SOLE_OWNERS.get(system)
        if owners and not name.startswith(owners):
            yield f"{where}: <{system}> belongs to {owners[0]} alone"


def cycles(layers):
    done, active = set(), []

    def visit(folder):
        if folder in active:
            yield "cycle: " + " -> ".join(active[active.index(folder):] + [folder])
            return
        if folder in done:
            return
        active.append(folder)
        for other in sorted(layers[folder]):
            yield from visit(other)
        active.pop()
        done.add(folder)

    for folder in sorted(layers):
        yield from visit(folder)


def main():
    root, layers = pathlib.Path(sys.argv[1]), read_layers(pathlib.Path(sys.argv[2]))
    files = [p for top in ("engine", "app", "tools") for p in sorted((root / top).rglob("*")) if p.suffix in (".h", ".cpp")]
    faults = list(cycles(layers))
    for path in files:
        faults += faults_of(path.relative_to(root).as_posix(), path.read_text(), layers)
    print("\n".join(faults) or f"{len(files)} files keep to {len(layers)} folders' edges")
    return 1 if faults or not files else 0


if __name__ == "__main__":
    sys.exit(main())
