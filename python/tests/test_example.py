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


def readme_python_blocks():
    readme = (Path(__file__).resolve().parents[2] / "README.md").read_text(encoding="utf-8")
    section = readme.split("\n## Python\n", 1)[1].split("\n## ", 1)[0]
    return [block.split("```", 1)[0] for block in section.split("```python\n")[1:]]


def test_readme_shows_the_example_file_as_it_is():
    assert readme_python_blocks()[0] in EXAMPLE.read_text(encoding="utf-8")


def test_readme_tour_runs(sample_db, monkeypatch):
    monkeypatch.chdir(Path(__file__).resolve().parents[2])
    tour = readme_python_blocks()[1].replace("build/release/examples/sample.db", sample_db)
    namespace = {}
    exec(compile(tour, "README.md", "exec"), namespace)
    assert len(namespace["rows"]) == 4
