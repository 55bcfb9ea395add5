"""Records, envelopes and Base64 between Python and the C++ side: dict round trips, envelopes that
brixq reads and envelopes a C++ host wrote, Base64 as brixq b64 gives it."""

import datetime
import decimal
import random

import pytest

import brixobjects4 as brix

PARAMS = {
    "Text": "Ştefan \"citat\"", "Long": 7, "Big": 2**40, "Real": 1.5, "Flag": False,
    "Day": datetime.date(2024, 3, 1), "Moment": datetime.datetime(2024, 3, 1, 10, 30),
    "Clock": datetime.time(9, 5), "Blob": b"\x00\x01\xff", "Money": decimal.Decimal("12.3456"),
}
LISTING = """\
class: Catalog.Users
procedure: Save
session: s-1
error: -5, source "[Users].[Save]", description "Nu"
return: Boolean "True"
parameters: 12
  Text: String "Ştefan "citat""
  Long: Long "7"
  Big: Double "1099511627776"
  Real: Double "1.5"
  Flag: Boolean "False"
  Day: Date "3/1/2024"
  Moment: Date "3/1/2024 10:30:00 AM"
  Clock: Date "9:05:00 AM"
  Blob: Byte() 3 bytes
  Money: Currency "12.3456"
  User: Object clsUser
  Saved: Object clsQSOM_DM
"""


def filled(record_type, seed):
    """A record with every property set to a value of its type that differs from the default."""
    rng = random.Random(seed)
    values = {}
    for name, default in record_type().to_dict().items():
        if isinstance(default, bool):
            values[name] = True
        elif isinstance(default, int):
            values[name] = rng.randrange(1, 2**31)
        else:
            values[name] = f"{name}-{rng.randrange(10**6)}-ăîș\r\n<&>"
    return record_type.from_dict(values)


@pytest.mark.parametrize("record_type", [brix.User, brix.SavedQuery])
def test_records_round_trip_through_dicts_and_envelope_bytes(record_type):
    record = filled(record_type, 1)
    assert record_type.from_dict(record.to_dict()) == record
    assert record != filled(record_type, 2)
    for compressed in (False, True):
        data = brix.Envelope(bMakeCompress=compressed, params={"R": record}).to_bytes()
        back = brix.Envelope.from_bytes(data, compressed=compressed).params["R"]
        assert type(back) is record_type and back.to_dict() == record.to_dict()


@pytest.mark.parametrize("compressed", [False, True])
def test_envelope_written_in_python_reads_in_brixq(brixq, tmp_path, compressed):
    envelope = brix.Envelope(
        ClassName="Catalog.Users", ProcedureName="Save", Session="s-1", ErrorNo=-5,
        ErrorSource="[Users].[Save]", ErrorDescription="Nu", Retval=True, bMakeCompress=compressed,
        params=dict(PARAMS, User=brix.User(UserName="ana"), Saved=brix.SavedQuery(ID="Q-1")))
    path = tmp_path / "call.env"
    path.write_bytes(bytes(envelope))
    options = ["--compressed"] if compressed else []
    assert brixq("envelope", path, *options).decode() == LISTING
    back = brix.Envelope.from_bytes(path.read_bytes(), compressed=compressed)
    assert {name: back.params[name] for name in PARAMS} == PARAMS
    assert (back.ClassName, back.Session, back.ErrorNo, back.Retval) == ("Catalog.Users", "s-1", -5, True)


@pytest.mark.parametrize("compressed", [False, True])
def test_envelope_written_by_a_cpp_host_reads_in_python(envelope_example, tmp_path, compressed):
    import subprocess
    path = tmp_path / "call.env"
    subprocess.run([envelope_example, path] + (["--compressed"] if compressed else []), check=True)
    envelope = brix.Envelope.from_bytes(path.read_bytes(), compressed=compressed)
    assert (envelope.ClassName, envelope.ProcedureName, envelope.Session, envelope.Retval) == (
        "Catalog.Queries", "SaveQuery", "s-2026-11-25-0001", 1)
    params = envelope.params
    assert list(params) == ["Record", "Overwrite", "Version"]
    assert (params["Overwrite"], params["Version"]) == (True, 3)
    record = params["Record"]
    assert isinstance(record, brix.SavedQuery)
    assert (record.ID, record.Name) == ("Q-17", "Comenzi martie 2024")
    assert record.QueryDef == '<PropertyBag><xqb_Query name="Comenzi"/></PropertyBag>\r\n'


@pytest.mark.parametrize("size,span", [(0, 0), (1, 0), (2, 4), (3, 1), (100, 76), (1000, 0)])
def test_base64_matches_brixq_b64(brixq, size, span):
    data = random.Random(size).randbytes(size)
    options = ["--span", span] if span else []
    encoded = brix.Base64.encode(data, span=span)
    assert encoded == brixq("b64", "encode", *options, stdin=data)
    assert brix.Base64.decode(encoded) == data == brixq("b64", "decode", stdin=encoded)


def test_base64_text_uses_the_central_european_code_page():
    assert brix.Base64.text_to_bytes("Ţară ș") == b"\xdear\xe3 ?"
