"""brixobjects4: query-by-example definitions to SQL, WHERE text, full-text requests and
descriptions; saved-query and user records, the call envelope, Base64 and the error logger.

Properties keep the library's published names (``DBName``, ``WhereClauseLogic``, ``Latime``);
methods have Python names. Every error the library raises is a ``BrixError``."""

import datetime
import decimal
import os
from typing import Any, Callable, Iterable, Iterator, Literal, Mapping, Optional, Sequence, Union, overload

from ._enums import (AggregateFunction as AggregateFunction, Clause as Clause,
                     ControlType as ControlType, DataType as DataType, DebugMode as DebugMode,
                     GridLines as GridLines, GridLineStyle as GridLineStyle,
                     LinksType as LinksType, Logic as Logic, SortType as SortType,
                     StatementType as StatementType)
from . import _enums
from ._errors import (BrixError as BrixError, OutOfMemoryError as OutOfMemoryError,
                      TypeMismatchError as TypeMismatchError)

__version__: str
library_version: str

class NullType:
    """The type of ``Null``, the platform's null value (``None`` stands for Empty)."""
    def __bool__(self) -> bool: ...

Null: NullType

class ErrorValue:
    """An error code held as a value."""
    code: int
    def __init__(self, code: int) -> None: ...

Value = Union[None, NullType, bool, int, float, str, bytes, datetime.date, datetime.datetime,
              datetime.time, decimal.Decimal, ErrorValue, "User", "SavedQuery", Sequence[Any]]
"""A value the library holds: None is Empty, an int beyond 32 bits becomes a float, a date,
datetime or time a day-number date, a Decimal currency, a list or tuple an array. Dates read back
as ``datetime.date`` on a whole day, ``datetime.time`` on day 0, else ``datetime.datetime``."""

BoundValue = Union[str, int, float, bool, datetime.date, datetime.datetime, datetime.time]
"""A parameter value as sqlite3 and psycopg2 take it."""

DateLike = Union[datetime.date, datetime.datetime, int]
"""A day: a date (a datetime's time is dropped) or a day number (days since 30 December 1899)."""

class fixed_clock:
    """Fixes the library's clock (its system date and time of day) inside a ``with`` block and
    restores the clock before it at the end. The clock is the process's: it applies to every
    thread while the block runs.

    >>> with fixed_clock(datetime.datetime(2024, 3, 15, 9, 30)):
    ...     sql = Query.load("orders.xml").sql()
    """
    def __init__(self, moment: Union[datetime.date, datetime.datetime, datetime.time]) -> None: ...
    def __enter__(self) -> "fixed_clock": ...
    def __exit__(self, *exc_info: Any) -> bool: ...

class Condition:
    """One filter on a field: a clause, one or two operands, how it joins the previous one.
    Construct with properties as keywords: ``Condition(Clause=Clause.EqualTo, Value="Cluj")``."""
    ConditionID: int
    Clause: Union[_enums.Clause, int]
    Value: Any
    SecondaryValue: Any
    WhereClauseLogic: Union[_enums.Logic, int]
    ParamName: str
    IsEditable: bool
    Tag: str
    def __init__(self, **properties: Any) -> None: ...

class Conditions:
    """A field's conditions in order; ``conditions[0]`` by position, ``conditions["4711"]`` by
    ConditionID text."""
    def __init__(self) -> None: ...
    def __len__(self) -> int: ...
    def __iter__(self) -> Iterator[Condition]: ...
    @overload
    def __getitem__(self, index: int) -> Condition: ...
    @overload
    def __getitem__(self, key: str) -> Condition: ...
    def __contains__(self, key_or_item: Union[str, Condition]) -> bool: ...
    def add(self, clause: Union[_enums.Clause, int], value: Value = "",
            secondary_value: Value = "") -> Condition:
        """Adds a condition with a random ConditionID in 0..10000; a duplicate raises
        BrixError 0x80040BB8."""
    def append(self, condition: Condition) -> None:
        """Adds the condition itself under its ConditionID, after the duplicate test."""
    def exists(self, clause: Union[_enums.Clause, int], value: Value = ...) -> bool:
        """The duplicate test on clause and value."""
    def remove(self, index_or_key: Union[int, str]) -> None: ...
    def clear(self) -> None: ...

class Field:
    """A column of a table. Construct with properties as keywords:
    ``Field(DBName="City", Caption="Oras")``."""
    DBName: str
    """Stored normalised: a name with a blank is kept bracketed."""
    DBType: Union[_enums.DataType, int]
    ShowAsType: Union[_enums.DataType, int]
    """Assigning it rebuilds the available clauses from the type's defaults."""
    Alias: str
    Caption: str
    UseInStatement: bool
    CalculatedFormula: str
    LinksWithField: str
    AppearanceOrder: int
    OrderByLevel: int
    OrderByOrder: Union[_enums.SortType, int]
    GroupByLevel: int
    AggregateFunction: Union[_enums.AggregateFunction, int]
    IsDTIndex: bool
    Conditions: _Conditions
    AvailableClauses: str
    ControlType: Union[_enums.ControlType, int]
    ValueListSource: str
    UIOrder: int
    Latime: int
    IsVisible: bool
    IsReturned: bool
    IsAvailable: bool
    IsEditable: bool
    IsRequired: bool
    IsGroupField: bool
    GroupLevel: int
    GroupOrder: Union[_enums.SortType, int]
    IsSortField: bool
    SortLevel: int
    SortOrder: Union[_enums.SortType, int]
    HasScriptAsSource: bool
    Script: str
    ScriptLanguage: str
    RunAt: str
    DefaultScriptProc: str
    ExecScriptAfterRetrieve: bool
    Tag: str
    @property
    def conditions(self) -> _Conditions: ...
    def __init__(self, **properties: Any) -> None: ...
    def available_clauses(self) -> list[Union[_enums.Clause, int]]:
        """The clauses the field offers, in the fixed order of its ShowAsType."""
    def add_condition(self, clause: Union[_enums.Clause, int], value: Value = "",
                      secondary_value: Value = "", *, logic: Optional[Union[_enums.Logic, int]] = None,
                      param_name: Optional[str] = None,
                      condition_id: Optional[int] = None) -> Condition:
        """Adds a condition (a random ConditionID unless one is given) and returns it."""

class Fields:
    """A table's fields in order; by position, or by DBName (letter case ignored) as a key or an
    attribute: ``fields["City"]``, ``fields.City``."""
    def __init__(self) -> None: ...
    def __len__(self) -> int: ...
    def __iter__(self) -> Iterator[Field]: ...
    @overload
    def __getitem__(self, index: int) -> Field: ...
    @overload
    def __getitem__(self, key: str) -> Field: ...
    def __getattr__(self, key: str) -> Field: ...
    def __contains__(self, key_or_item: Union[str, Field]) -> bool: ...
    def add(self, db_name: str) -> Field:
        """Creates and adds a field; a used name raises BrixError 2000."""
    def append(self, field: Field) -> None: ...
    def exists(self, db_name: str) -> bool:
        """Whether a field's DBName is exactly db_name (letter case counts)."""
    def remove(self, index_or_key: Union[int, str]) -> None: ...
    def clear(self) -> None: ...

class Table:
    """A table of a query. Construct with properties as keywords: ``Table(DBName="Orders")``."""
    DBName: str
    Description: str
    Fields: _Fields
    Tag: str
    @property
    def fields(self) -> _Fields: ...
    def __init__(self, **properties: Any) -> None: ...

class Tables:
    """A query's tables in order; by position, or by DBName (letter case ignored) as a key or an
    attribute: ``tables["Orders"]``, ``tables.Orders``."""
    def __init__(self) -> None: ...
    def __len__(self) -> int: ...
    def __iter__(self) -> Iterator[Table]: ...
    @overload
    def __getitem__(self, index: int) -> Table: ...
    @overload
    def __getitem__(self, key: str) -> Table: ...
    def __getattr__(self, key: str) -> Table: ...
    def __contains__(self, key_or_item: Union[str, Table]) -> bool: ...
    def add(self, db_name: str, description: str = "") -> Table:
        """Creates and adds a table; a used name raises BrixError 1000."""
    def append(self, table: Table) -> None: ...
    def exists(self, db_name: str) -> bool: ...
    def remove(self, index_or_key: Union[int, str]) -> None: ...
    def clear(self) -> None: ...

Dialect = Literal["sqlite", "postgresql"]

class Query:
    """A query definition: tables, their fields, the fields' conditions, and the texts made from
    them. Loads and renders release the GIL, so threads render different queries in parallel; a
    query must not be changed by one thread while another renders it."""
    QueryName: str
    QueryDescription: str
    QueryType: Union[_enums.LinksType, int]
    StatementType: Union[_enums.StatementType, int]
    DistinctRows: bool
    Today: int
    """The reference day (a day number) of the conditions that count days from today."""
    Tables: _Tables
    AccessRights: str
    GridLineStyle: Union[_enums.GridLineStyle, int]
    GridLines: Union[_enums.GridLines, int]
    ShadeGroupHeadings: bool
    GroupsCollapsed: bool
    Tag: str
    bSYN: bool
    bUsePhonicSearching: bool
    bUseStemming: bool
    bUseNaturalLanguage: bool
    bUseWordNetSynonyms: bool

    def __init__(self, *, today: Optional[DateLike] = None, **properties: Any) -> None:
        """A new, empty query; ``today`` sets Today (default: the clock's date)."""
    @staticmethod
    def load(source: Union[str, bytes, os.PathLike[str]], *,
             today: Optional[DateLike] = None) -> "Query":
        """Loads a saved definition: bytes as they are (any encoding the document declares), a
        str that starts with "<" as XML text in UTF-8, otherwise a file's path, read as bytes. A
        definition that does not load raises BrixError 0x80042775; ``today`` sets Today after
        loading."""
    def save(self) -> str:
        """The definition as XML text, byte for byte what a host stores (ending in CR LF)."""
    @property
    def tables(self) -> _Tables: ...
    today: datetime.date
    """Today as a date; accepts a date, a datetime or a day number."""
    def sql(self, top: int = 0) -> str:
        """The whole SELECT statement ("" without tables), with LIMIT top when top is not 0."""
    def where(self, simple_fields: bool = True, table: Optional[Table] = None,
              with_joins: bool = False) -> str:
        """The filter text alone: of every table or of ``table``, with the join equalities
        first when ``with_joins``."""
    def full_text(self, near: int = 33) -> str:
        """The dtSearch request of the first table's indexed fields."""
    def describe(self) -> list[tuple[int, str]]:
        """(ConditionID, Romanian description) of every condition, in tree order."""
    def describe_condition(self, condition_id: int) -> str: ...
    def clauses(self) -> list[tuple[str, str, list[int]]]:
        """(table DBName, field DBName, available clause numbers) of every field."""
    def condition_rows(self) -> list[list[Any]]:
        """One row per condition: table, field, ConditionID, Clause, clause text, Value,
        SecondaryValue, WhereClauseLogic, ParamName."""
    def add_param_values(self, name: str, values: Iterable[Value]) -> None:
        """Adds a condition per run-time value beside the conditions bound to parameter
        ``name``; raises BrixError 0x80042774 when they cannot be added."""
    def parameterized(self, dialect: Dialect = "sqlite", top: int = 0, *,
                      refuse_host_sql: bool = False,
                      paramstyle: Literal["native", "format"] = "native"
                      ) -> tuple[str, list[BoundValue]]:
        """The statement of ``sql()`` with every operand bound: the text (placeholders ?1.. for
        sqlite, $1.. for postgresql) and the typed values, which ``sqlite3`` and ``psycopg2``
        take as they are. ``paramstyle="format"`` (postgresql) writes ``%s`` placeholders and
        doubles every other ``%``, as psycopg2 and psycopg expect::

            sql, values = query.parameterized("postgresql", paramstyle="format")
            cursor.execute(sql, values)
        """
    def parameterized_where(self, dialect: Dialect = "sqlite", *, simple_fields: bool = True,
                            table: Optional[Table] = None, with_joins: bool = False,
                            refuse_host_sql: bool = False,
                            paramstyle: Literal["native", "format"] = "native"
                            ) -> tuple[str, list[BoundValue]]:
        """The filter of ``where()`` the same way."""
    def add_condition(self, table: Union[str, Table], field: Union[str, Field],
                      clause: Union[_enums.Clause, int], value: Value = "", secondary_value: Value = "",
                      *, logic: Optional[Union[_enums.Logic, int]] = None,
                      param_name: Optional[str] = None,
                      condition_id: Optional[int] = None) -> Condition:
        """Adds a condition to a field named by its table and its own key (or given as
        objects)."""
    def delete_all_conditions(self) -> None: ...
    def fields_in_ui_order(self) -> list[Field]:
        """Every field, placed by UIOrder first, then the others in tree order."""

class User:
    """The user record (clsUser). ``User(UserName="ana")``, ``User.from_dict(d)``,
    ``user.to_dict()``; the dict's keys are the property names, in persistence order."""
    ID: str
    UserName: str
    Parola: str
    FullName: str
    JobTitle: str
    EMail: str
    Department: str
    Phone: str
    MobilePhone: str
    GroupName: str
    GroupPriority: str
    UserApplication: str
    UserHDDSerial: str
    UserIP: str
    UserSession: str
    UserLanguage: str
    UserLayout: int
    UserDefSTR1: str
    UserDefSTR2: str
    UserDefSTR3: str
    UserDefSTR4: str
    UserDefSTR5: str
    strASISTENT0: str
    strASISTENT1: str
    strASISTENT2: str
    strASISTENT3: str
    strASISTENT4: str
    strASISTENT5: str
    CanAccessReports: bool
    CanModifyLookup: bool
    CanModifyUsers: bool
    CanSwitchUsers: bool
    CanAccessFinancialData: bool
    DMAccessRights: str
    def __init__(self, **properties: Any) -> None: ...
    def to_dict(self) -> dict[str, Any]: ...
    @staticmethod
    def from_dict(values: Mapping[str, Any]) -> "User":
        """A record from a dict of property names; an unknown name raises TypeError."""

class SavedQuery:
    """The saved query record (clsQSOM_DM), with dict conversion as ``User`` has."""
    ID: str
    Name: str
    Category: str
    Description: str
    UsedFor: str
    QueryDef: str
    IsEditable: bool
    AccessRights: str
    CreatDe: str
    CreatData: int
    CreatOra: str
    ModificatDe: str
    ModificatData: int
    ModificatOra: str
    G6: str
    G1: str
    G1D: str
    G2: str
    G2D: str
    G3: str
    G3D: str
    G4: str
    G4D: str
    G5: str
    G5D: str
    UseGrupari: bool
    UseIerarhic: bool
    UseTematica: bool
    UseTipAct: bool
    UseTipPub: bool
    CodSectiune: int
    Cod_DocStart: int
    Cod_DocCrt: int
    Cod_DocEnd: int
    CssFile: str
    RpxDesign: str
    def __init__(self, **properties: Any) -> None: ...
    def to_dict(self) -> dict[str, Any]: ...
    @staticmethod
    def from_dict(values: Mapping[str, Any]) -> "SavedQuery": ...

class Envelope:
    """A remote call and its answer carried as bytes (cMarshall), compressed when bMakeCompress
    is set::

        data = bytes(Envelope(ClassName="Catalog", Session="s1", params={"Id": 7}))
        Envelope.from_bytes(data).params  # {'Id': 7}
    """
    ClassName: str
    ProcedureName: str
    Session: str
    """Raises BrixError 327 when it was never set."""
    ErrorNo: int
    ErrorDescription: str
    ErrorSource: str
    Retval: Any
    bMakeCompress: bool
    def __init__(self, *, params: Optional[Mapping[str, Value]] = None,
                 **properties: Any) -> None: ...
    @staticmethod
    def from_bytes(data: Union[bytes, bytearray, memoryview], *,
                   compressed: bool = False) -> "Envelope":
        """Reads an envelope's bytes; damaged bytes raise BrixError 5, bytes compressed (or not)
        against ``compressed`` raise 0x80040207."""
    def to_bytes(self) -> bytes: ...
    def __bytes__(self) -> bytes: ...
    @property
    def params(self) -> dict[str, Any]:
        """The parameters in the order they were added, read by their stored types."""
    def add_param(self, name: str, value: Value) -> None: ...
    def read_param(self, name: str) -> Any: ...
    def clear(self) -> None:
        """Starts again with no contents; bMakeCompress is kept."""

class Base64:
    """Base64 with the standard alphabet on bytes."""
    @staticmethod
    def encode(data: Union[bytes, bytearray, memoryview], span: int = 0) -> bytes:
        """The Base64 text of data; with span, in lines of that many characters ending in CR LF."""
    @staticmethod
    def decode(data: Union[bytes, bytearray, memoryview]) -> bytes:
        """The bytes of Base64 text, its CR LF line breaks removed first."""
    @staticmethod
    def span(data: Union[bytes, bytearray, memoryview], chars_per_line: int) -> bytes: ...
    @staticmethod
    def unspan(data: Union[bytes, bytearray, memoryview]) -> bytes: ...
    @staticmethod
    def text_to_bytes(text: str) -> bytes:
        """Text in Windows-1250; characters it cannot hold become "?"."""

class Logger:
    """Reports errors as a host application does: to a log file, the system log and/or a
    handler, as the DebugMode flags say. ``exe_name``, ``path``, ``title`` and ``version`` name
    the host (default: the running program); ``log_path`` defaults to path/exe_name.DBG."""
    DebugMode: Union[_enums.DebugMode, int]
    @property
    def TXTDescription(self) -> str:
        """The text report of the last ``report``."""
    @property
    def XMLDescription(self) -> str:
        """The XML error trace of the last ``report``."""
    def __init__(self, debug_mode: Union[_enums.DebugMode, int] = _enums.DebugMode.ToLogFile, *,
                 title: str = "", default_message: str = "", log_path: str = "",
                 exe_name: Optional[str] = None, path: Optional[str] = None,
                 version: Optional[tuple[int, int, int]] = None) -> None:
        """Flags outside 0..63 raise BrixError 6."""
    def report(self, error: BrixError, line: int = 0, module: str = "Unspecified",
               routine: str = "Unspecified", severity: int = 1, nice_text: str = "",
               help_text: str = "") -> bool:
        """Adds this routine to the error's trace and reports it; returns whether the message
        handler asked to retry."""
    def pass_on(self, error: BrixError, line: int = 0, module: str = "Unspecified",
                routine: str = "Unspecified", severity: int = 1, nice_text: str = "",
                help_text: str = "") -> None:
        """Adds this routine to the error's trace and raises the error again, the trace in its
        source."""
    def on_message(self, handler: Optional[Callable[[str, str, str, str, str, str, str],
                                                    Optional[bool]]]) -> None:
        """Registers the handler that ``report`` calls with MessageBox set: warning level,
        message, details, help, title, log file path, root error; it returns whether to
        retry."""

# The collection types under names that the properties of the same names do not hide.
_Tables = Tables
_Fields = Fields
_Conditions = Conditions
