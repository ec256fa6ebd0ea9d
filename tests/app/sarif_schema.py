"""The SARIF log of a batch check of the demo model against the official 2.1.0 schema, and what
code-scanning services read from it: a suppressed result with its exclusion's rationale, paths
relative to the source root, the invocation's exit code.
Usage: sarif_schema.py BLOCKARA RESOURCES SOURCE_DIR WORK_DIR"""
import json
import subprocess
import sys

import jsonschema

blockara, root, source, work = sys.argv[1:5]
demo = source + "/examples/demo"
out = work + "/demo.sarif"
status = subprocess.run([blockara, "--root", root, "--prefdir", work + "/prefs", "check",
                         demo + "/plant.bkd", "--config", demo + "/constraints.xml",
                         "--exclusions", demo + "/exclusions.xml", "--format", "sarif",
                         "--out", out, "--source-root", source]).returncode
with open(source + "/tests/app/sarif-schema-2.1.0.json") as f:
    schema = json.load(f)
with open(out) as f:
    log = json.load(f)
jsonschema.Draft4Validator(schema, format_checker=jsonschema.FormatChecker()).validate(log)

run = log["runs"][0]
suppressed = [r for r in run["results"] if r["suppressions"]]
assert len(suppressed) == 1, suppressed
assert suppressed[0]["suppressions"][0]["kind"] == "external"
assert suppressed[0]["suppressions"][0]["justification"].startswith("Kp never leaves")
location = suppressed[0]["locations"][0]["physicalLocation"]
assert location["artifactLocation"] == {"uri": "examples/demo/plant.bkd", "uriBaseId": "SRCROOT"}
assert location["region"]["startLine"] > 1
assert run["invocations"][0]["exitCode"] == status == 0, status
print("SARIF log valid:", len(run["results"]), "result(s)")
