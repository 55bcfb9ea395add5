"""Shared fixtures: the brixq command, the samples, the sample database and the throwaway
PostgreSQL server that the CTest fixture starts. Paths come from the environment CTest sets."""

import os
import subprocess
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
EXAMPLES = Path(os.environ.get("BRIX_EXAMPLES_DIR", ROOT / "examples"))
SAMPLES = ["orders.xml", "legal_documents.xml", "parameter_query.xml"]


def _tool(variable):
    path = os.environ.get(variable)
    if not path:
        pytest.skip(f"{variable} is not set (the suite runs under ctest -R python_tests)")
    return path


@pytest.fixture(scope="session")
def brixq():
    """Runs brixq with the given arguments; returns its standard output as bytes, or with
    check=False the completed process."""
    path = _tool("BRIX_BRIXQ")

    def run(*args, check=True, stdin=None):
        done = subprocess.run([path, *map(str, args)], capture_output=True, input=stdin)
        if not check:
            return done
        if done.returncode != 0:
            raise AssertionError(f"brixq {args} failed: {done.stderr.decode(errors='replace')}")
        return done.stdout
    return run


@pytest.fixture(scope="session")
def envelope_example():
    return _tool("BRIX_ENVELOPE_EXAMPLE")


@pytest.fixture(scope="session")
def sample_db():
    return _tool("BRIX_SAMPLE_DB")


@pytest.fixture(scope="session")
def postgres():
    """A psycopg2 connection to the test server's database holding the sample data."""
    info_file = Path(_tool("BRIX_POSTGRES_INFO_FILE"))
    if not info_file.exists():
        pytest.skip("the PostgreSQL test server is not running (ctest starts it)")
    import psycopg2
    connection = psycopg2.connect(info_file.read_text().strip())
    yield connection
    connection.close()
