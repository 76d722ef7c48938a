"""The generator refuses a model that contradicts itself, in one line with file, place and reason, and writes only what changed."""

import json
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(sys.argv.pop(1))
sys.path.insert(0, str(ROOT / "tools/modelgen"))
sys.dont_write_bytecode = True
from model import Model, Refusal  # noqa: E402
ENUMERATIONS = "model/enumerations_charging_management_core.json"
RECORDS = "model/records_charging_management_core.json"
SERVICE = "model/service_charging_management_core.json"
DOCUMENT = "rest/model/charging_management_core.json"
RESET = "rest/model/factory_reset.json"
OPERATIONS = "rest/model/operations.json"

# file, first occurrence of this text, what stands there instead, place, reason
BROKEN = [
    (ENUMERATIONS, '[1, "bcamScreen"]', '[0, "bcamScreen"]', "views_type", "number 0 given twice"),
    (ENUMERATIONS, '[1, "bcamScreen"]', '[1, "popup"]', "views_type", "word popup given twice"),
    (ENUMERATIONS, '[1, "bcamScreen"]', '[1, "default"]', "views_type", "keyword"),
    (ENUMERATIONS, '[1, "bcamScreen"]', '[4294967296, "bcamScreen"]', "enumerations/views_type", "4294967296"),
    (ENUMERATIONS, '[1, "bcamScreen"]', '[1, "bcamScreens"]', "views/type", "words differ from the table's: ['bcamScreen', 'bcamScreens']"),
    (ENUMERATIONS, '"rowsOf": "notifications_value"', '"rowsOf": "notifications_values"', "pastErrorInformation_value", "no rows"),
    (ENUMERATIONS, '"views_content": [', '"views_type": [', "views_type", "key given twice"),
    (ENUMERATIONS, '"enumerations": {', '"enumerations": ', "line 4", "Expecting"),
    (RECORDS, '"member": "content"', '"member": "type"', "DT_views_struct", "member type given twice"),
    (RECORDS, '"wire": 2, "id": 1', '"wire": 2, "id": 0', "DT_views_struct", "id 0 given twice"),
    (RECORDS, '"wire": 2, "id": 1', '"wire": 3, "id": 1', "DT_views_struct/content", "wire type 3"),
    (RECORDS, 'Core_views_content"', 'Core_views_contents"', "DT_views_struct/content", "unknown type"),
    (SERVICE, '"field": "batteryCareModes"', '"field": "zzz"', "fields", "alphabetical"),
    (SERVICE, '"record": "DT_views_struct"', '"record": "DT_view_struct"', "fields/views", "unknown record"),
    (DOCUMENT, '.valueIndications.valueIndicationObject', '.valueIndications.valueIndicationObjects',
     "bidirectionalChargingModes/amountOfEnergy", "#ref"),
    (DOCUMENT, '"value": {\n            "description": "The value of the notification', '"valeu": {\n            "description": "The value of the notification',
     "pastErrorInformation/valeu", "words without a table"),
    (DOCUMENT, '"minimum": 1,', '"minimum": 101,', "valueControls/resolution", "minimum 101 above"),
    (DOCUMENT, '"required": []', '"required": ["switchValues"]', "switchControls/element/post/required", "switchValues"),
    (DOCUMENT, '"switchValue": {', '"switchValues": {', "switchControls/element/post/switchValues", "not a property"),
    (DOCUMENT, '"unlocked",', "", "switchControls/element/post/switchValue", "differs from the model"),
    (DOCUMENT, '"name": "switchControlObject"', '"name": "viewObject"', "resources", "model viewObject given twice"),
    (DOCUMENT, '"method": "post"', '"method": "get"', "switchControls/element/post", "method get"),
    (OPERATIONS, '"content"]', '"contents"]', "viewObject/set", "contents is no property"),
    (OPERATIONS, '"viewObject"', '"viewsObject"', "viewsObject", "no such element model"),
]


class Tree:
    """A copy of the model that a case may break."""

    def __enter__(self):
        self.directory = tempfile.TemporaryDirectory()
        self.path = Path(self.directory.name)
        for file in [*ROOT.glob("model/*.json"), *ROOT.glob("rest/model/*.json")]:
            copy = self.path / file.relative_to(ROOT)
            copy.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(file, copy)
        return self

    def __exit__(self, *_):
        self.directory.cleanup()

    def replace(self, file, old, new):
        text = (self.path / file).read_text(encoding="utf-8")
        assert old in text, f"{old} is not in {file}"
        (self.path / file).write_text(text.replace(old, new, 1), encoding="utf-8")

    def run(self, *arguments):
        return subprocess.run(["/usr/bin/python3", str(ROOT / "tools/modelgen/modelgen.py"), "--root", str(self.path), *arguments],
                              capture_output=True, text=True, check=False)

    def render(self, product):
        result = self.run("--output", str(self.path / "out"), product)
        assert result.returncode == 0, result.stderr
        return {file: file.stat().st_mtime_ns for file in (self.path / "out").rglob("*") if file.is_file()}


class Refusals(unittest.TestCase):
    def test_each_contradiction_is_refused_with_file_place_and_reason(self):
        for file, old, new, place, reason in BROKEN:
            with self.subTest(f"{file}: {old} -> {new}"), Tree() as tree:
                tree.replace(file, old, new)
                with self.assertRaises(Refusal) as refused:
                    Model(tree.path)
                named, where, why = str(refused.exception).split(": ", 2)
                self.assertIn(place, where)
                self.assertIn(reason, why)
                # A word that two files disagree on is told where the REST model stands.
                self.assertEqual(named, DOCUMENT if "words differ" in why else file)

    def test_the_program_says_one_line_and_fails(self):
        with Tree() as tree:
            (tree.path / RESET).unlink()
            for mode in (["--list"], ["--output", str(tree.path / "out")]):
                result = tree.run(*mode, "rest")
                self.assertEqual((result.returncode, result.stdout, result.stderr), (1, "", f"{RESET}: file: missing\n"))
            self.assertFalse((tree.path / "out").exists())


class Rendering(unittest.TestCase):
    def test_lists_exactly_the_files_that_it_writes(self):
        for product in ("model", "binding", "rest"):
            with self.subTest(product), Tree() as tree:
                listed = tree.run("--list", product).stdout.split()
                self.assertEqual(sorted(str(file.relative_to(tree.path / "out")) for file in tree.render(product)), sorted(listed))

    def test_an_added_word_touches_only_the_files_that_show_it(self):
        with Tree() as tree:
            before = tree.render("model")
            tree.replace(ENUMERATIONS, '[3, "both"]', '[3, "both"], [4, "neither"]')
            tree.replace(DOCUMENT, '"enum": ["left", "right", "both"]', '"enum": ["left", "right", "both", "neither"]')
            after = tree.render("model")
            touched = {file.name for file, time in after.items() if before[file] != time}
            self.assertEqual(touched, {"enumerations_charging_management_core.h", "name_tables_charging_management_core.cpp"})


class Counts(unittest.TestCase):
    def test_nothing_was_lost_from_the_model(self):
        def load(path):
            return json.loads((ROOT / path).read_text(encoding="utf-8"))
        services = ("charging_management_core", "route_based_energy_contents")
        given = [load(f"model/enumerations_{service}.json")["enumerations"] for service in services]
        rows = [tables[rows["rowsOf"]] if isinstance(rows, dict) else rows for tables in given for rows in tables.values()]
        records = [record for service in services for record in load(f"model/records_{service}.json")["records"].values()]
        models = [resource["model"] for document in (DOCUMENT, RESET) for resource in load(document)["resources"].values()]
        category = load(RESET)["resources"]["resets"]["model"]["properties"]["category"]["enum"]

        self.assertEqual((len(rows), sum(map(len, rows))), (70, 540))
        self.assertEqual((len(records), sum(map(len, records))), (24, 159))
        self.assertEqual((len(models), sum(len(model["properties"]) for model in models)), (20, 203))
        self.assertEqual((len(category), len(set(category))), (71, 71))


if __name__ == "__main__":
    unittest.main()
