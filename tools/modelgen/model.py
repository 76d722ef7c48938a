"""Loads the JSON model and refuses one that contradicts itself.

A refusal is one line "file: place: reason". Everything that the templates lean on is checked here, so that they hold no tests.
"""

import json
import re
from pathlib import Path

import jsonschema

KEYWORDS = set("""alignas alignof and asm auto bool break case catch char class const continue default delete do double else enum
    explicit export extern false float for friend goto if inline int long mutable namespace new noexcept not nullptr operator or
    private protected public register return short signed sizeof static struct switch template this throw true try typedef union
    unsigned using virtual void volatile while xor""".split())
WIRE_TYPE = {"bool": 0, "uint8_t": 0, "uint16_t": 1, "uint32_t": 2, "float": 2, "uint64_t": 3, "std::string": 7, "uuid16": 7}
SCHEMA = json.loads((Path(__file__).parent / "schema.json").read_text(encoding="utf-8"))


class Refusal(Exception):
    def __init__(self, file, place, reason):
        super().__init__(f"{file}: {place}: {reason}")


def snake(name):
    return re.sub(r"(?<=.)(?=[A-Z])", "_", name).lower()


def upper(name):
    return name[0].upper() + name[1:]


def lower(name):
    return name[0].lower() + name[1:]


class File:
    """One JSON file, valid by its schema. `refuse` names it."""

    def __init__(self, root, path, kind):
        self.path = path
        try:
            self.data = json.loads((root / path).read_text(encoding="utf-8"), object_pairs_hook=self._object)
        except FileNotFoundError:
            self.refuse("file", "missing")
        except (json.JSONDecodeError, UnicodeDecodeError) as error:
            self.refuse(f"line {error.lineno}" if isinstance(error, json.JSONDecodeError) else "text", str(error))
        validator = jsonschema.Draft202012Validator({"$ref": f"#/$defs/{kind}", "$defs": SCHEMA["$defs"]})
        for error in validator.iter_errors(self.data):
            deepest = jsonschema.exceptions.best_match([error])
            self.refuse("/".join(map(str, deepest.absolute_path)) or "top", deepest.message[:200])

    def refuse(self, place, reason):
        raise Refusal(self.path, place, reason)

    def unique(self, place, values, what):
        for value in values:
            if values.count(value) > 1:
                self.refuse(place, f"{what} {value} given twice")

    def _object(self, pairs):
        result = {}
        for key, value in pairs:
            if key in result:
                self.refuse(key, "key given twice")
            result[key] = value
        return result


class Service:
    """A vehicle service: `enumerations` (name to rows), `records` (name to members), `fields` in the order of their index."""

    def __init__(self, root, name):
        self.name, self.snake = name, snake(name)
        enumerations = File(root, f"model/enumerations_{self.snake}.json", "enumerations")
        records = File(root, f"model/records_{self.snake}.json", "records")
        service = File(root, f"model/service_{self.snake}.json", "service")
        for file in (enumerations, records, service):
            if file.data["service"] != name:
                file.refuse("service", f"{file.data['service']} instead of {name}")
        self.enumerations = self._enumerations(enumerations)
        self.references = records.data.get("references", [])
        self.records = self._records(records)
        self.namespace = service.data["namespace"]
        self.fields = self._fields(service)

    def _enumerations(self, file):
        given, result = file.data["enumerations"], {}
        for name, rows in given.items():
            if isinstance(rows, dict):
                other = rows["rowsOf"]
                if not isinstance(given.get(other), list):
                    file.refuse(name, f"rowsOf {other}, which has no rows of its own")
                rows = given[other]
            file.unique(name, [number for number, _ in rows], "number")
            file.unique(name, [word for _, word in rows], "word")
            for _, word in rows:
                if word in KEYWORDS:
                    file.refuse(name, f"word {word} is a keyword of C++")
            result[name] = rows
        return result

    def _records(self, file):
        known = dict(WIRE_TYPE)
        known |= {f"DT_{self.name}_{name}": 2 for name in self.enumerations}
        known |= {f"std::vector<DT_{self.name}_{name}>": 7 for name in self.enumerations}
        known |= {reference: 7 for reference in self.references}
        for name, members in file.data["records"].items():
            file.unique(name, [member["member"] for member in members], "member")
            file.unique(name, [member["id"] for member in members], "id")
            for member in members:
                place = f"{name}/{member['member']}"
                if member["member"] in KEYWORDS:
                    file.refuse(place, "a keyword of C++")
                if member["type"] not in known:
                    file.refuse(place, f"unknown type {member['type']}")
                if member["wire"] != known[member["type"]]:
                    file.refuse(place, f"wire type {member['wire']}, but {member['type']} has {known[member['type']]}")
        return file.data["records"]

    def _fields(self, file):
        fields = [{"settable": False} | field for field in file.data["fields"]]
        names = [field["field"] for field in fields]
        file.unique("fields", names, "field")
        file.unique("fields", [field["record"] for field in fields], "record")
        if names != sorted(names):
            file.refuse("fields", "not in alphabetical order, which is their index on the wire")
        for field in fields:
            if field["record"] not in self.records:
                file.refuse(f"fields/{field['field']}", f"unknown record {field['record']}")
        return fields


class Document:
    """A specification document. `tables` holds the words of the vehicle service that it shows, if there is one."""

    def __init__(self, root, path, tables):
        self.file = File(root, path, "document")
        self.name, self.description = self.file.data["name"], self.file.data["description"]
        self.resources, self.tables = self.file.data["resources"], tables
        self.file.unique("resources", [resource["model"]["name"] for resource in self.resources.values()], "model")
        for name, resource in self.resources.items():
            self._check_resource(name, resource)

    def embedded(self, definition):
        """The resource whose element a property embeds, or None."""
        return definition["oneOf"][0]["#ref"].split(".")[1] if "oneOf" in definition else None

    def _check_resource(self, name, resource):
        full, properties = f"{self.name}.{name}", resource["model"]["properties"]
        if resource["model"]["resource"] != full:
            self.file.refuse(f"{name}/model", f"resource {resource['model']['resource']} instead of {full}")
        for property_, definition in properties.items():
            self._check_property(f"{name}/{property_}", definition, self.tables.get(f"{name}_{property_}"))
        for place, endpoints in resource["endpoints"].items():
            for method, endpoint in endpoints.items():
                self._check_endpoint(f"{name}/{place}/{method}", method, full, endpoint.get("parameters", {}), properties)

    def _check_property(self, place, definition, rows):
        words = definition.get("enum") or definition.get("items", {}).get("enum")
        if words:
            self.file.unique(place, words, "word")
        if rows and not words:
            self.file.refuse(place, "a table of words, but no words")
        if words and self.tables and not rows:
            self.file.refuse(place, "words without a table")
        if words and rows and sorted(words) != sorted(word for _, word in rows):
            self.file.refuse(place, f"words differ from the table's: {sorted(set(words) ^ {word for _, word in rows})}")
        if definition.get("minimum", 0) > definition.get("maximum", 0):
            self.file.refuse(place, f"minimum {definition['minimum']} above maximum {definition['maximum']}")
        for reference in definition.get("oneOf", []):
            service, _, rest = reference["#ref"].partition(".")
            resource, _, model = rest.partition(".")
            if service != self.name or self.resources.get(resource, {}).get("model", {}).get("name") != model:
                self.file.refuse(place, f"#ref {reference['#ref']} leads nowhere")

    def _check_endpoint(self, place, method, full, parameters, properties):
        if parameters and (parameters.get("method"), parameters.get("resource")) != (method, full):
            self.file.refuse(place, f"method {parameters.get('method')} of {parameters.get('resource')} instead of {method} of {full}")
        for name, definition in parameters.get("properties", {}).items():
            if name not in properties:
                self.file.refuse(f"{place}/{name}", "not a property of the model")
            if definition | {"description": ""} != properties[name] | {"description": ""}:
                self.file.refuse(f"{place}/{name}", "differs from the model's property")
        for name in parameters.get("required", []):
            if name not in parameters["properties"]:
                self.file.refuse(f"{place}/required", f"{name} is not a property of this endpoint")


class Model:
    def __init__(self, root):
        root = Path(root)
        self.services = [Service(root, name) for name in ("ChargingManagementCore", "RouteBasedEnergyContents")]
        tables = {service.name: service.enumerations for service in self.services}
        self.documents = [Document(root, f"rest/model/{name}.json", tables.get(title, {}))
                          for name, title in (("charging_management_core", "ChargingManagementCore"), ("factory_reset", ""))]
        self.operations = self._operations(File(root, "rest/model/operations.json", "operations"))

    def _operations(self, file):
        models = {resource["model"]["name"]: resource["model"]["properties"]
                  for document in self.documents for resource in document.resources.values()}
        for name, operations in file.data.items():
            if name not in models:
                file.refuse(name, "no such element model")
            for kind, types in (("set", ("string", "integer", "array", "object")), ("get", ("string", "array"))):
                for property_ in operations.get(kind, []):
                    if models[name].get(property_, {}).get("type") not in types:
                        file.refuse(f"{name}/{kind}", f"{property_} is no property of a type in {types}")
        return file.data
