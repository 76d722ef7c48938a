#!/usr/bin/python3
"""Renders the generated C++ out of the JSON model: `modelgen.py --root TREE [--list | --output DIR] PRODUCT`.

A model that contradicts itself is refused with one line, file: place: reason, and exit code 1.
"""

import argparse
import json
import sys
from pathlib import Path

import jinja2

from model import Model, Refusal, lower, snake, upper

WIRE_NAMES = ["one_byte", "two_bytes", "four_bytes", "eight_bytes", "configured_length_field", "one_byte_length_field",
              "two_byte_length_field", "four_byte_length_field"]
KINDS = {"string": "String", "integer": "Int", "number": "Real", "boolean": "Bool", "array": "Array", "object": "Object"}


def model_files(model):
    for service in model.services:
        for kind in ("enumerations.h", "records.h", "name_tables.h", "name_tables.cpp"):
            stem, _, ending = kind.partition(".")
            yield kind, f"model/{stem}_{service.snake}.{ending}", {"service": service}


def binding_files(model):
    for service in model.services:
        for ending in ("h", "cpp"):
            yield f"proxy.{ending}", f"binding/generated/{service.snake}_proxy.{ending}", {"service": service}


def rest_files(model):
    services = [rest_service(document, model.operations) for document in model.documents]
    yield "words.h", "rest/generated/words.h", {"vocabularies": vocabularies(services)}
    for service in services:
        folder = f"rest/generated/{service['snake']}"
        for ending in ("h", "cpp"):
            yield f"rest_service.{ending}", f"{folder}/{service['snake']}.{ending}", {"service": service}
            for resource in service["resources"]:
                context = {"service": service, "resource": resource, "element": resource["element"]}
                yield f"rest_resource.{ending}", f"{folder}/{resource['snake']}.{ending}", context
                if resource["element"]["byHand"]:
                    yield f"rest_element_model.{ending}", f"{folder}/{resource['element']['snake']}_model.{ending}", context
    for ending in ("h", "cpp"):
        yield f"zuva_server.{ending}", f"rest/generated/zuva_server.{ending}", {"services": services}


def rest_service(document, operations):
    service = {"name": document.name, "snake": snake(document.name), "member": lower(document.name),
               "description": document.description}
    service["namespace"] = f"zuva::server::{service['snake']}"
    service["resources"] = [rest_resource(document, name, resource, operations) for name, resource in document.resources.items()]
    return service


def rest_resource(document, name, resource, operations):
    model, post = resource["model"], resource["endpoints"]["element"].get("post", {}).get("parameters", {})
    own = operations.get(model["name"], {})
    properties = []
    for property_, definition in model["properties"].items():
        embedded = document.embedded(definition)
        properties.append({
            "name": property_, "Name": upper(property_), "type": definition["type"], "kind": KINDS[definition["type"]],
            "words": definition.get("enum") or definition.get("items", {}).get("enum"),
            "minimum": definition.get("minimum"), "maximum": definition.get("maximum"),
            "post": "required" if property_ in post.get("required", []) else "yes" if property_ in post.get("properties", {}) else "no",
            "embedded": upper(document.resources[embedded]["model"]["name"]) if embedded else None,
            "embedded_snake": snake(embedded) if embedded else None})
    by_name = {property_["name"]: property_ for property_ in properties}
    element = {"class": upper(model["name"]), "snake": snake(model["name"]), "properties": properties,
               "setters": [by_name[setter] for setter in own.get("set", [])], "getters": [by_name[getter] for getter in own.get("get", [])],
               "byHand": own.get("byHand", False)}
    text = json.dumps(resource, ensure_ascii=False, separators=(",", ":"))
    return {"name": name, "class": upper(name), "snake": snake(name), "uri": f"/{document.name}/{name}", "text": text,
            "description": resource["description"], "element": element, "typedList": own.get("typedList", False)}


def vocabularies(services):
    """The distinct word lists in order of appearance; gives each property the name of its list."""
    names = {}
    for service in services:
        for resource in service["resources"]:
            for property_ in resource["element"]["properties"]:
                if property_["words"]:
                    name = f"k{resource['class']}{property_['Name']}"
                    property_["vocabulary"] = names.setdefault(tuple(property_["words"]), name)
    return [{"name": name, "words": words} for words, name in names.items()]


def environment():
    """Templates look like the C++ that they give: `${value}`, and `/*% statement %*/`."""
    env = jinja2.Environment(loader=jinja2.FileSystemLoader(Path(__file__).parent / "templates"), undefined=jinja2.StrictUndefined,
                             keep_trailing_newline=True, trim_blocks=True, lstrip_blocks=True, variable_start_string="${",
                             variable_end_string="}", block_start_string="/*%", block_end_string="%*/")
    env.filters |= {"quote": lambda text: json.dumps(text, ensure_ascii=False), "wire": WIRE_NAMES.__getitem__}
    return env


def write(path, text):
    if not path.exists() or path.read_text(encoding="utf-8") != text:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--root", type=Path, required=True, help="top of the source tree")
    parser.add_argument("--output", type=Path, help="root of the generated tree")
    parser.add_argument("--list", action="store_true", help="list the files of the product instead of writing them")
    parser.add_argument("product", choices=["model", "binding", "rest"])
    arguments = parser.parse_args()
    if not arguments.list and not arguments.output:
        parser.error("--output or --list")
    try:
        files = {"model": model_files, "binding": binding_files, "rest": rest_files}[arguments.product](Model(arguments.root))
    except Refusal as refusal:
        sys.exit(str(refusal))
    env = environment()
    for template, path, context in files:
        if arguments.list:
            print(path)
        else:
            write(arguments.output / path, env.get_template(template).render(context))


if __name__ == "__main__":
    main()
