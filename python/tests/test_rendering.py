"""Every rendering through Python equals what brixq prints, byte for byte: the samples under each
command and its options, and random definitions built through the Python API."""

import datetime
import random

import pytest

import brixobjects4 as brix
from conftest import EXAMPLES, SAMPLES

DAY = datetime.datetime(2024, 3, 15, 9, 30)
DAY_OPTION = "--date=2024-03-15T09:30:00"


def statement_lines(statement, dialect):
    """A parameterized statement as brixq prints it: the text, then placeholder, type, value."""
    sql, values = statement
    mark = "?" if dialect == "sqlite" else "$"
    names = {str: "text", bool: "boolean", int: "integer", float: "real",
             datetime.date: "date", datetime.datetime: "datetime", datetime.time: "time"}
    lines = [sql]
    for number, value in enumerate(values, 1):
        if isinstance(value, bool):
            text = "true" if value else "false"
        elif isinstance(value, datetime.datetime):
            text = value.isoformat(" ")
        elif isinstance(value, float):
            text = repr(value)
        else:
            text = str(value)
        lines.append(f"{mark}{number} {names[type(value)]} {text}")
    return "\n".join(lines)


def clause_lines(query):
    return "\n".join(f"{table}\t{field}\t{' '.join(map(str, numbers))}"
                     for table, field, numbers in query.clauses())


# brixq's arguments, and the same rendering through Python.
RENDERINGS = [
    (["sql"], lambda q: q.sql()),
    (["sql", "--top", "5"], lambda q: q.sql(top=5)),
    (["where"], lambda q: q.where()),
    (["where", "--qualified", "--joins"], lambda q: q.where(simple_fields=False, with_joins=True)),
    (["where", "--table", "orders"], lambda q: q.where(table=q.tables["Orders"])),
    (["dt"], lambda q: q.full_text()),
    (["dt", "--near", "7"], lambda q: q.full_text(near=7)),
    (["describe"], lambda q: "\n".join(f"{i}\t{text}" for i, text in q.describe())),
    (["clauses"], clause_lines),
    (["sql", "--dialect", "sqlite"], lambda q: statement_lines(q.parameterized("sqlite"), "sqlite")),
    (["sql", "--dialect", "postgresql", "--top", "3"],
     lambda q: statement_lines(q.parameterized("postgresql", top=3), "postgresql")),
    (["where", "--dialect", "postgresql"],
     lambda q: statement_lines(q.parameterized_where("postgresql"), "postgresql")),
]


def python_output(path, render, params=()):
    with brix.fixed_clock(DAY):
        query = brix.Query.load(path)
        for name, values in params:
            query.add_param_values(name, values)
        return (render(query) + "\n").encode()


@pytest.mark.parametrize("sample", SAMPLES)
@pytest.mark.parametrize("arguments,render", RENDERINGS, ids=[" ".join(a) for a, _ in RENDERINGS])
def test_samples_render_as_brixq_prints_them(brixq, sample, arguments, render):
    path = EXAMPLES / sample
    if "--table" in arguments and sample != "orders.xml":
        pytest.skip("only the orders sample has an Orders table")
    assert python_output(path, render) == brixq(*arguments, DAY_OPTION, path)


@pytest.mark.parametrize("sample", SAMPLES)
def test_saving_gives_brixq_save_byte_for_byte(brixq, sample):
    path = EXAMPLES / sample
    assert brix.Query.load(path).save().encode() == brixq("save", path)


def test_parameter_values_expand_as_with_brixq_param(brixq):
    path = EXAMPLES / "parameter_query.xml"
    for arguments, render in RENDERINGS[:3] + RENDERINGS[-3:]:
        expected = brixq(*arguments, DAY_OPTION, "--param", "Oras=Cluj,Iasi", path)
        assert python_output(path, render, [("Oras", ["Cluj", "Iasi"])]) == expected


def random_definition(rng):
    """A query of random tables, fields and conditions over every data and clause kind."""
    query = brix.Query(QueryName=f"q{rng.randrange(1000)}", DistinctRows=rng.random() < 0.3)
    words = ["Alfa", "Beta", "Gama", "Delta Zeta", "O'Neil", "Ştefan", "x%y_z", "10", "2024-03-01"]
    for t in range(rng.randrange(1, 4)):
        table = query.tables.add(f"T{t}", rng.choice(["", "Tabel"]))
        for f in range(rng.randrange(1, 5)):
            field = table.fields.add(f"F{f}" if rng.random() < 0.7 else f"Camp {f}")
            field.DBType = field.ShowAsType = rng.choice(list(brix.DataType))
            field.AppearanceOrder = rng.randrange(0, 4)
            field.OrderByLevel = rng.randrange(0, 3)
            field.OrderByOrder = rng.choice(list(brix.SortType))
            field.UseInStatement = rng.random() < 0.8
            for c in range(rng.randrange(0, 4)):
                clause = rng.choice([c for c in brix.Clause if c not in (
                    brix.Clause.InList, brix.Clause.NotInList)])
                value = rng.choice(words + [str(rng.randrange(-5, 50))])
                field.add_condition(clause, value, rng.choice(words), condition_id=100 * t + 10 * f + c,
                                    logic=rng.choice(list(brix.Logic)))
    return query


def outcome(render, query):
    """What brixq would print for a rendering: its output, or its error line."""
    try:
        return 0, (render(query) + "\n").encode()
    except brix.BrixError as error:
        message = error.description.replace("\r\n", " ")
        return 1, f"brixq: {message} (error {error.number})\n".encode()


@pytest.mark.parametrize("seed", range(12))
def test_random_definitions_render_as_brixq_prints_their_saved_form(brixq, tmp_path, seed):
    rng = random.Random(seed)
    with brix.fixed_clock(DAY):
        query = random_definition(rng)
        path = tmp_path / "definition.xml"
        path.write_text(query.save(), encoding="utf-8", newline="")
        for arguments, render in RENDERINGS[:3] + RENDERINGS[5:]:
            done = brixq(*arguments, DAY_OPTION, path, check=False)
            # Before its error line brixq may warn about what the definition holds.
            printed = done.stdout if done.returncode == 0 else done.stderr.splitlines(True)[-1]
            assert outcome(render, query) == (done.returncode, printed), arguments
