#!/usr/bin/python3
"""Renders what the simulated vehicle needs of the model beyond the shared code, member names and the table of fields, into a folder."""

import sys
from pathlib import Path

import jinja2

sys.dont_write_bytecode = True
HERE = Path(__file__).parent
sys.path.insert(0, str(HERE.parent / "modelgen"))

from model import Model, Refusal
from modelgen import environment, write

env = environment()
env.loader = jinja2.FileSystemLoader(HERE / "templates")
try:
    services = Model(HERE.parent.parent).services
except Refusal as refusal:
    sys.exit(str(refusal))
for name in ("record_names.h", "field_codecs.cpp"):
    write(Path(sys.argv[1]) / name, env.get_template(name).render(services=services))
