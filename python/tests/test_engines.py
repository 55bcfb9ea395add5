"""The parameterized statements run as they are through Python's database clients: sqlite3 on the
sample database and psycopg2 on the test server, which load the same data, return the same rows."""

import datetime
import decimal
import sqlite3

import pytest

import brixobjects4 as brix
from conftest import EXAMPLES

DAY = datetime.date(2024, 3, 15)

# Definition, run-time parameter values, and the rows the sample data must give (in order).
CASES = [
    ("orders.xml", [], [
        (1007, "2024-03-28", "Florin Stan", "Iasi", 2, 22.0, 44.0, "in asteptare"),
        (1008, "2024-03-28", "Dan O'Neill", "Cluj", 6, 8.75, 52.5, "livrata"),
        (1003, "2024-03-12", "Bogdan Ionescu", "Iasi", 5, 7.2, 36.0, "in curs"),
        (1002, "2024-03-05", "Ana Popescu", "Cluj", 2, 40.0, 80.0, "livrata")]),
    ("parameter_query.xml", [("Oras", ["Cluj", "Iasi"])], None),
    ("parameter_query.xml", [("Oras", ["Brasov"])], [(3, "Carmen Dumitru", "Brasov")]),
    ("legal_documents.xml", [], None),
]


def normalised(rows):
    """Rows in one form for both engines: dates as ISO text, numbers as float."""
    def cell(value):
        if isinstance(value, (datetime.date, datetime.datetime)):
            return value.isoformat()
        if isinstance(value, (decimal.Decimal, float)) and not isinstance(value, bool):
            return float(value)
        return value
    return [tuple(cell(value) for value in row) for row in rows]


def load(sample, params):
    query = brix.Query.load(EXAMPLES / sample, today=DAY)
    for name, values in params:
        query.add_param_values(name, values)
    return query


@pytest.mark.parametrize("sample,params,expected", CASES)
def test_sqlite3_and_psycopg2_return_the_same_rows(sample_db, postgres, sample, params, expected):
    with brix.fixed_clock(DAY):
        query = load(sample, params)
        sql, values = query.parameterized("sqlite")
        pg_sql, pg_values = query.parameterized("postgresql", paramstyle="format")
    with sqlite3.connect(f"file:{sample_db}?mode=ro", uri=True) as connection:
        sqlite_rows = normalised(connection.execute(sql, values).fetchall())
    with postgres.cursor() as cursor:
        cursor.execute(pg_sql, pg_values)
        postgres_rows = normalised(cursor.fetchall())
    postgres.rollback()
    assert sqlite_rows == postgres_rows
    assert sqlite_rows, "a case that selects nothing compares nothing"
    if expected is not None:
        assert sqlite_rows == expected


def test_values_are_typed_for_the_clients():
    with brix.fixed_clock(DAY):
        _, values = load("orders.xml", []).parameterized("postgresql")
    assert values == ["Cluj", "Iasi", datetime.date(2024, 3, 1), datetime.date(2024, 3, 31), 2,
                      "livrata", "in %"]
    assert [type(v) for v in values][2:5] == [datetime.date, datetime.date, int]


# Placeholders of the format style: %s in order of appearance, every other % doubled, nothing
# inside quoted text or names taken for a placeholder.
FORMAT_CASES = [
    ("native statement", "a = $1 AND b = $2", "a = %s AND b = %s", [0, 1]),
    ("repeated and reordered", "b = $2 OR a = $1 OR c = $2", "b = %s OR a = %s OR c = %s", [1, 0, 1]),
    ("percent doubled", "a LIKE '%x' AND b = $1", "a LIKE '%%x' AND b = %s", [0]),
    ("quoted dollar kept", "'$1' || \"$1\" || $1", "'$1' || \"$1\" || %s", [0]),
    ("doubled quote inside", "'it''s $1' = $1", "'it''s $1' = %s", [0]),
    ("beyond the parameters", "$12 + $1", "$12 + %s", [0]),
]


@pytest.mark.parametrize("name,native,formatted,order", FORMAT_CASES, ids=[c[0] for c in FORMAT_CASES])
def test_format_style_rewrites_placeholders_only(name, native, formatted, order):
    query = brix.Query()
    field = query.tables.add("T").fields.add("F")
    field.CalculatedFormula = native
    field.add_condition(brix.Clause.EqualTo, "v0", condition_id=1)
    field.add_condition(brix.Clause.EqualTo, "v1", condition_id=2, logic=brix.Logic.Or)
    sql, values = query.parameterized("postgresql", paramstyle="format")
    native_sql, native_values = query.parameterized("postgresql")
    # The formula holds the placeholders under test; the two conditions bind v0 and v1.
    assert sql.startswith(f"SELECT {formatted} AS ")
    expected_order = order + [0, 1]
    assert values == [native_values[i] for i in expected_order]
