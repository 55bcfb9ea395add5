"""Converts a folder of saved query definitions to parameterized PostgreSQL statements.

For each NAME.xml in FOLDER it writes NAME.sql (the statement, placeholders $1, $2, ...) and
NAME.json (the values to bind, in order) into OUT, and prints one line per definition. A
definition that does not load or render is reported and skipped.

    python3 to_postgresql.py FOLDER OUT
"""

import datetime
import json
import sys
from pathlib import Path

import brixobjects4 as brix


def as_json(value):
    """A bound value as JSON: dates and times in ISO form, everything else as it is."""
    if isinstance(value, (datetime.date, datetime.time)):
        return value.isoformat()
    return value


def convert(folder: Path, out: Path) -> int:
    out.mkdir(parents=True, exist_ok=True)
    failures = 0
    for path in sorted(folder.glob("*.xml")):
        try:
            sql, values = brix.Query.load(path).parameterized("postgresql")
        except brix.BrixError as error:
            print(f"{path.name}: error {error.number}: {error.description}", file=sys.stderr)
            failures += 1
            continue
        (out / f"{path.stem}.sql").write_text(sql + "\n", encoding="utf-8")
        (out / f"{path.stem}.json").write_text(
            json.dumps([as_json(v) for v in values], ensure_ascii=False) + "\n", encoding="utf-8")
        print(f"{path.name}: {len(values)} parameters")
    return failures


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    sys.exit(1 if convert(Path(sys.argv[1]), Path(sys.argv[2])) else 0)
