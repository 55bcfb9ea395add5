"""Every error reaches Python as BrixError (TypeMismatchError and OutOfMemoryError where Python has
a natural class) with the library's number, source and description; Python's own protocols raise
Python's own errors; nothing crashes the interpreter."""

import subprocess
import sys
import textwrap

import pytest

import brixobjects4 as brix


def numeric_query():
    query = brix.Query()
    field = query.tables.add("T").fields.add("N")
    field.DBType = brix.DataType.Numeric
    field.add_condition(brix.Clause.EqualTo, "abc")
    return query


def duplicate_condition():
    field = brix.Query().tables.add("T").fields.add("F")
    field.add_condition(brix.Clause.EqualTo, "x", "x")
    field.add_condition(brix.Clause.EqualTo, "x", "x")


def duplicate_table():
    tables = brix.Query().tables
    tables.add("T")
    tables.add("T")


def duplicate_field():
    table = brix.Query().tables.add("T")
    table.fields.add("F")
    table.fields.add("F")


# What raises, the class, number, source and description.
LIBRARY_ERRORS = [
    ("type mismatch", lambda: numeric_query().parameterized(), brix.TypeMismatchError, 13,
     "brixobjects4", "Type mismatch"),
    ("used table name", duplicate_table, brix.BrixError, 1000, "[Add Table]", "A table with this name already exists!"),
    ("used field name", duplicate_field, brix.BrixError, 2000, "[Add Field]",
     "A field with this name already exists in this table!"),
    ("duplicate condition", duplicate_condition, brix.BrixError, -2147218504, "[Add Condition]",
     "A condition with this characteristics already exists in this field!"),
    ("session never set", lambda: brix.Envelope().Session, brix.BrixError, 327, "PropertyBag",
     "Data value named 'Session' not found"),
    ("envelope not compressed", lambda: brix.Envelope.from_bytes(brix.Envelope().to_bytes(),
                                                                compressed=True),
     brix.BrixError, -2147220985, "[QuillMarshall].[SetContents]",
     "Cannot un-compress data\r\nReason: The bytes are not compressed data."),
    ("unreadable parameter", lambda: brix.Envelope(params={"L": [1, 2]}).params, brix.BrixError,
     -2147220987, "[QuillMarshall].[ReadParam]", "Unsupported data type"),
    ("logger flags", lambda: brix.Logger(64), brix.BrixError, 6, "brixobjects4", "Overflow"),
    ("span below 1", lambda: brix.Base64.span(b"abc", 0), brix.BrixError, 5, "brixobjects4",
     "Invalid procedure call or argument"),
    ("negative top", lambda: numeric_query().parameterized(top=-1),
     brix.BrixError, 5, "brixobjects4", "Invalid procedure call or argument"),
]


@pytest.mark.parametrize("name,call,error_class,number,source,description", LIBRARY_ERRORS,
                         ids=[case[0] for case in LIBRARY_ERRORS])
def test_library_errors_carry_number_source_and_description(name, call, error_class, number,
                                                            source, description):
    with pytest.raises(brix.BrixError) as raised:
        call()
    error = raised.value
    assert type(error) is error_class
    assert (error.number, error.source, error.description) == (number, source, description)


def test_a_load_error_keeps_the_load_s_text():
    with pytest.raises(brix.BrixError) as raised:
        brix.Query.load("<PropertyBag><xqb_Query>")
    error = raised.value
    assert (error.number, error.source) == (-2147211403,
                                            "[OrlaXML_qb].[xqb_Persistence].[LoadXMLDef]")
    assert error.description.startswith("Couldn't load xml query definition!\r\n")


def test_error_classes_are_also_python_s_own():
    assert issubclass(brix.TypeMismatchError, ValueError)
    assert issubclass(brix.OutOfMemoryError, MemoryError)
    error = brix.TypeMismatchError(13, "s", "Type mismatch", "help.chm", 1000013)
    assert str(error) == "Type mismatch (error 13, s)"
    import pickle
    back = pickle.loads(pickle.dumps(error))
    assert (type(back), back.number, back.help_file, back.help_context) == (
        brix.TypeMismatchError, 13, "help.chm", 1000013)


OUT_OF_MEMORY = textwrap.dedent("""
    import resource, sys
    import brixobjects4 as brix
    data = bytes(64 << 20)
    # Room for what is loaded now and little more: the encoder's copies cannot fit.
    with open("/proc/self/statm") as statm:
        in_use = int(statm.read().split()[0]) * resource.getpagesize()
    resource.setrlimit(resource.RLIMIT_AS, (in_use + (96 << 20), resource.RLIM_INFINITY))
    try:
        brix.Base64.encode(data)
    except brix.OutOfMemoryError as error:
        print(type(error).__name__, error.number, error.source, error.description)
""")


@pytest.mark.skipif("libasan" in __import__("os").environ.get("LD_PRELOAD", ""),
                    reason="AddressSanitizer reserves more address space than the limit allows")
def test_running_out_of_memory_raises_out_of_memory_error():
    done = subprocess.run([sys.executable, "-c", OUT_OF_MEMORY], capture_output=True, text=True)
    assert done.returncode == 0, done.stderr
    assert done.stdout == "OutOfMemoryError 7 brixobjects4 Out of memory\n"


# Python's own protocols and argument checks.
PYTHON_ERRORS = [
    ("unknown key", lambda q: q.tables["Nope"], KeyError),
    ("unknown attribute", lambda q: q.tables.Nope, AttributeError),
    ("index past the end", lambda q: q.tables[5], IndexError),
    ("value of no variant kind", lambda q: setattr(q.tables[0].fields[0].conditions[0], "Value",
                                                   object()), TypeError),
    ("text property given an int", lambda q: setattr(q, "QueryName", 5), TypeError),
    ("16-bit property overflows", lambda q: setattr(q.tables[0].fields[0], "AppearanceOrder",
                                                    40000), OverflowError),
    ("unknown dialect", lambda q: q.parameterized("oracle"), ValueError),
    ("format style for sqlite", lambda q: q.parameterized("sqlite", paramstyle="format"),
     ValueError),
    ("unknown property", lambda q: brix.Field(NoSuchProperty=1), TypeError),
    ("missing file", lambda q: brix.Query.load("/nonexistent/definition.xml"), FileNotFoundError),
    ("bytes of the wrong type", lambda q: brix.Base64.encode("text"), TypeError),
]


@pytest.mark.parametrize("name,call,error_class", PYTHON_ERRORS,
                         ids=[case[0] for case in PYTHON_ERRORS])
def test_python_protocols_raise_python_errors(name, call, error_class):
    query = brix.Query()
    query.tables.add("T").fields.add("F").add_condition(brix.Clause.EqualTo, "x")
    with pytest.raises(error_class):
        call(query)


def test_logger_reports_to_its_file_and_passes_errors_on(tmp_path):
    log = tmp_path / "host.DBG"
    logger = brix.Logger(brix.DebugMode.ToLogFile | brix.DebugMode.MessageBox, title="Gazda",
                         log_path=str(log), exe_name="gazda", path="/opt/gazda", version=(1, 2, 3))
    seen = []
    logger.on_message(lambda *texts: seen.append(texts) or True)
    with pytest.raises(brix.TypeMismatchError) as raised:
        numeric_query().parameterized()
    with pytest.raises(brix.TypeMismatchError) as passed:
        logger.pass_on(raised.value, 12, "Forms", "Load")
    assert passed.value.source.startswith("<errortrace>")
    assert 'routine="Load" module="Forms"' in passed.value.source
    assert logger.report(passed.value, 40, "Main", "Run", nice_text="Verificati valoarea.") is True
    report = log.read_bytes().decode("utf-8")
    assert report == logger.TXTDescription + "\r\n"
    assert "Numar eroare:    13" in report and "Solutionare:     Verificati valoarea." in report
    assert seen and seen[0][1] == "Verificati valoarea." and seen[0][4] == "Gazda"
    assert "<number>13</number>" in logger.XMLDescription


def test_damaged_input_raises_and_never_crashes():
    rng = __import__("random").Random(7)
    sample = (__import__("conftest").EXAMPLES / "orders.xml").read_bytes()
    envelope = bytes(brix.Envelope(ClassName="C", params={"A": 1, "B": "x"}))
    for _ in range(300):
        for data, read in ((sample, brix.Query.load), (envelope, brix.Envelope.from_bytes)):
            damaged = bytearray(data)
            for _ in range(rng.randrange(1, 4)):
                damaged[rng.randrange(len(damaged))] = rng.randrange(256)
            try:
                read(bytes(damaged[:rng.randrange(1, len(damaged) + 1)]))
            except brix.BrixError:
                pass
    nested = []
    nested.append(nested)
    with pytest.raises(ValueError):
        brix.Condition(Value=nested)
