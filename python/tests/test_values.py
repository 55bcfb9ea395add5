"""Values between Python and the library's variant, and day-number dates, both ways."""

import datetime
import decimal

import pytest

import brixobjects4 as brix

# A Python value, and what reading it back gives when that is not the value itself.
ROUND_TRIPS = [
    (None, None), (brix.Null, brix.Null), (True, True), (0, 0), (-2**31, -2**31),
    (2**31, float(2**31)), (1.25, 1.25), ("", ""), ("Ştefan\x00'\"", "Ştefan\x00'\""),
    (b"\x00\xff", b"\x00\xff"), (bytearray(b"ab"), b"ab"),
    (datetime.date(2024, 3, 15), datetime.date(2024, 3, 15)),
    (datetime.datetime(2024, 3, 15, 10, 30, 15), datetime.datetime(2024, 3, 15, 10, 30, 15)),
    (datetime.datetime(2024, 3, 15), datetime.date(2024, 3, 15)),
    (datetime.time(6, 0), datetime.time(6, 0)),
    (datetime.datetime(1899, 12, 29, 6, 0), datetime.datetime(1899, 12, 29, 6, 0)),
    (datetime.date(100, 1, 1), datetime.date(100, 1, 1)),
    (decimal.Decimal("12.3456"), decimal.Decimal("12.3456")),
    ([1, "a", [None]], [1, "a", [None]]), ((1, 2), [1, 2]),
    (brix.ErrorValue(5), brix.ErrorValue(5)),
]


@pytest.mark.parametrize("value,expected", ROUND_TRIPS, ids=[repr(v) for v, _ in ROUND_TRIPS])
def test_condition_values_read_back(value, expected):
    condition = brix.Condition(Value=value)
    assert condition.Value == expected
    assert type(condition.Value) is type(expected)


# Calendar dates and their day numbers (day 0 is 30 December 1899).
DAY_NUMBERS = [
    (datetime.date(1899, 12, 30), 0), (datetime.date(1900, 1, 1), 2),
    (datetime.date(2017, 11, 12), 43051), (datetime.date(2024, 3, 15), 45366),
    (datetime.date(1899, 12, 29), -1), (datetime.date(100, 1, 1), -657434),
    (datetime.date(9999, 12, 31), 2958465),
]


@pytest.mark.parametrize("day,number", DAY_NUMBERS)
def test_today_is_a_day_number_and_a_date(day, number):
    query = brix.Query(today=day)
    assert (query.Today, query.today) == (number, day)
    query.today = number
    assert query.today == day


def test_fixed_clock_sets_the_day_of_new_queries_and_is_restored():
    before = brix.Query().today
    with brix.fixed_clock(datetime.datetime(2001, 2, 3, 4, 5, 6)):
        assert brix.Query().today == datetime.date(2001, 2, 3)
        with brix.fixed_clock(datetime.date(1999, 1, 1)):
            assert brix.Query().today == datetime.date(1999, 1, 1)
        assert brix.Query().today == datetime.date(2001, 2, 3)
    assert brix.Query().today == before


def test_today_argument_sets_the_reference_day_of_relative_conditions():
    query = brix.Query(today=datetime.date(2024, 2, 10))
    field = query.tables.add("T").fields.add("D")
    field.DBType = field.ShowAsType = brix.DataType.Date
    field.add_condition(brix.Clause.LastXDays, "5")
    assert query.parameterized()[1] == [datetime.date(2024, 2, 5), datetime.date(2024, 2, 10)]


def test_enumerated_properties_read_as_enumerations_and_keep_unknown_values():
    field = brix.Field(DBName="F", DBType=brix.DataType.Date)
    assert field.DBType is brix.DataType.Date
    condition = brix.Condition(Clause=99)
    assert condition.Clause == 99 and not isinstance(condition.Clause, brix.Clause)


def test_collections_are_sequences_with_keys_and_attributes():
    query = brix.Query()
    customers = query.tables.add("Customers", "Clienti")
    orders = query.tables.add("Orders")
    assert [t.DBName for t in query.tables] == ["Customers", "Orders"]
    assert query.tables[-1] is orders and query.tables["customers"] is customers
    assert query.tables.Orders is orders and "ORDERS" in query.tables and orders in query.tables
    assert query.Tables is query.tables and len(query.tables) == 2
    query.tables.remove("Customers")
    assert list(query.tables) == [orders]
    field = orders.fields.add("Order Day")
    assert field.DBName == "[Order Day]" and orders.fields["[Order Day]"] is field
    condition = query.add_condition("Orders", "[Order Day]", brix.Clause.EqualTo, "1-Mar-2024",
                                    condition_id=7, param_name="Zi")
    assert field.conditions["7"] is condition and condition.ParamName == "Zi"
    assert query.describe() == [(7, query.describe_condition(7))]
