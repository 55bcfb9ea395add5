"""The README's example converts the sample folder as brixq converts each definition."""

import json
import subprocess
import sys
from pathlib import Path

from conftest import EXAMPLES, SAMPLES

EXAMPLE = Path(__file__).resolve().parents[1] / "examples" / "to_postgresql.py"


def text(value):
    return str(value).lower() if isinstance(value, bool) else str(value)


def test_readme_example_converts_a_folder_to_postgresql_statements(brixq, tmp_path):
    folder = tmp_path / "saved"
    folder.mkdir()
    for sample in SAMPLES:
        (folder / sample).write_bytes((EXAMPLES / sample).read_bytes())
    (folder / "broken.xml").write_text("<PropertyBag>")
    done = subprocess.run([sys.executable, EXAMPLE, folder, tmp_path / "out"],
                          capture_output=True, text=True)
    assert done.returncode == 1
    assert done.stdout == ("legal_documents.xml: 8 parameters\norders.xml: 7 parameters\n"
                           "parameter_query.xml: 0 parameters\n")
    assert done.stderr.startswith("broken.xml: error -2147211403: Couldn't load")
    for sample in SAMPLES:
        stem = Path(sample).stem
        listing = brixq("sql", "--json", "--dialect", "postgresql", EXAMPLES / sample)
        expected = json.loads(listing)
        assert (tmp_path / "out" / f"{stem}.sql").read_text() == expected["sql"] + "\n"
        values = json.loads((tmp_path / "out" / f"{stem}.json").read_text())
        assert list(map(text, values)) == [text(p["value"]) for p in expected["parameters"]]
