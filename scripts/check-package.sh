#!/usr/bin/env bash
# Builds the .deb in build/release and checks that it holds and asks for what the program needs. Prints its path.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/setup.sh
setup build package
configure release
{
  ninja -C build/release
  rm -f build/release/lumenpair_*.deb
  (cd build/release && cpack -G DEB)
} </dev/null >&2
deb=$(echo "$PWD"/build/release/lumenpair_*.deb)

python3 - "$deb" <<'PY'
import json
import re
import subprocess
import sys

deb = sys.argv[1]


def out(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


# Of macOS's menus alone, which are not in this build.
elsewhere = {"Qt.labs.platform"}
faults = []

# What is asked for by name, which nothing but the list in packaging/DebianPackage.cmake knows of.
asked = set(re.findall(r"(?:^|, )([a-z0-9.+-]+)", out("dpkg-deb", "-f", deb, "Depends")))
modules = out("qmake6", "-query", "QT_INSTALL_QML").strip()
scanner = out("qmake6", "-query", "QT_INSTALL_LIBEXECS").strip() + "/qmlimportscanner"
for module in json.loads(out(scanner, "-rootPath", "src/screens", "-importPath", modules)):
    if module["type"] != "module" or module["name"].startswith("Lumenpair.") or module["name"] in elsewhere:
        continue
    if "path" not in module:
        faults.append(f"{module['name']} is imported, and not installed here")
        continue
    package = out("dpkg", "-S", module["path"] + "/qmldir").split(":")[0]
    if package not in asked:
        faults.append(f"{module['name']} is imported, and {package} is not asked for")

# What must be there, and run. The launcher finds the others beside itself, so they stand in one folder.
listed = out("dpkg-deb", "-c", deb)
programs = "usr/libexec/lumenpair/"
for path in (
    programs + "lumenpair",
    *(programs + "lumenpair-" + name for name in ("guardian", "sandbox", "terminal", "window")),
    programs + "lumenpair-audio.so",
    "usr/share/doc/lumenpair/copyright",
    "usr/bin/lumenpair -> ../libexec/lumenpair/lumenpair",
    "usr/share/applications/com.tolvey.lumenpair.desktop",
    "usr/share/metainfo/com.tolvey.lumenpair.metainfo.xml",
    "usr/share/icons/hicolor/scalable/apps/com.tolvey.lumenpair.svg",
    "usr/share/icons/hicolor/48x48/apps/com.tolvey.lumenpair.png",
):
    if f"./{path}\n" not in listed:
        faults.append(f"{path} is missing")

if faults:
    sys.exit("\n".join(faults))
PY
echo "$deb"
