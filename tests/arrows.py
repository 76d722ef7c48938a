#!/usr/bin/env python3
"""Checks every #include of the project against the allowed arrows between its folders (a compiler with one source root cannot)."""
import pathlib
import re
import sys

ALLOWED = {
    "app": {"commmngr", "commmngr/interfaces", "model", "platform", "rest/server", "someip"},
    "bench": {"*"},
    "binding": {"binding/generated", "platform/com", "platform/log", "model"},
    "commmngr": {"commmngr/interfaces", "model", "platform/log"},
    "commmngr/interfaces": {"model"},
    "fuzz": {"*"},
    "model": set(),
    "platform/com": {"platform/log", "platform/os"},
    "platform/log": {"platform/os"},
    "platform/os": set(),
    "platform/process": {"platform/log"},
    "platform/rest": {"platform/log", "platform/os"},
    "rest": {"platform/rest", "platform/log", "rest/generated"},
    "rest/server": {"commmngr/interfaces", "model", "platform/log", "platform/os", "platform/rest", "rest", "rest/generated"},
    "someip": {"binding", "binding/generated", "commmngr/interfaces", "model", "platform/com", "platform/log", "platform/os"},
    "tests": {"*"},
    "tools": {"binding", "binding/generated", "model", "platform/com", "platform/log"},
}
ROOTS = [("ara/log/", "platform/log"), ("ara/core/", "platform/log"), ("ara/exec/", "platform/process"), ("ara/phm/", "platform/process"),
         ("os/", "platform/os"), ("ara/rest/", "platform/rest"), ("zuva/", "platform/rest"), ("serve/", "platform/rest"), ("xr/com/", "platform/com")]
FOLDERS = sorted(ALLOWED | {"binding/generated": 0, "rest/generated": 0}, key=len, reverse=True)


def folder_of(path):
    for prefix, folder in ROOTS:
        if path.startswith(prefix):
            return folder
    return next((f for f in FOLDERS if path.startswith(f + "/")), None)


def main(top):
    wrong = []
    for file in sorted(p for p in top.rglob("*") if p.suffix in (".h", ".cpp") and not {"build", "templates"} & set(p.relative_to(top).parts)):
        name = str(file.relative_to(top))
        source = folder_of(name)
        if source is None:
            continue
        allowed = ALLOWED[source]
        for number, line in enumerate(file.read_text(encoding="utf-8").splitlines(), 1):
            match = re.match(r'\s*#\s*include\s+"([^"]+)"', line)
            target = match and folder_of(match[1])
            if not target or target == source or "*" in allowed or target in allowed or ("platform" in allowed and target.startswith("platform/")):
                continue
            wrong.append(f"{name}:{number}: {source} may not include {target} ({match[1]})")
    print("\n".join(wrong) or "all includes follow the allowed arrows")
    return bool(wrong)


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1])))
