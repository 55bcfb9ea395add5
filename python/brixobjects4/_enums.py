"""The library's enumerations; the values are those stored in saved definitions."""

import enum


class Clause(enum.IntEnum):
    """The comparison of a condition (qbe_ClauseOperator)."""
    Between = 1
    Contains = 2
    EqualTo = 3
    GreaterOrEqual = 4
    GreaterThan = 5
    IsEmpty = 6
    IsNull = 7
    LessOrEqual = 8
    LessThan = 9
    NotContains = 10
    NotEqual = 11
    NotStartingWith = 12
    StartingWith = 13
    Today = 14
    ThisWeek = 15
    ThisMonth = 16
    InList = 17
    LastXDays = 18
    NotInList = 19
    NotIsEmpty = 20
    LastXMonths = 21
    ThisYear = 22
    Year = 23
    LastXYears = 24
    ContainsWordsNear = 25
    ContainsWords = 26
    ContainsExpression = 27
    NextXDays = 28
    OverXDays = 29
    TimeNow = 30
    TimeGreaterThanNow = 31
    TimeLessThanNow = 32


class Logic(enum.IntEnum):
    """How a condition joins the one before it (qbe_WhereClauseLogic)."""
    And = 1
    Or = 2
    Nothing = 3


class DataType(enum.IntEnum):
    """A field's type in the database and the type it is shown as (qbe_DataType)."""
    BLOB = 1
    Boolean = 2
    Date = 3
    Memo = 4
    Numeric = 5
    String = 6
    UTCDate = 7
    UserDefined1 = 8
    UserDefined2 = 9
    UserDefined3 = 10
    Time = 11
    Decimal = 12


class StatementType(enum.IntEnum):
    """The SQL dialect a query produces (qbe_StatementType)."""
    Access = 1
    DTSearch = 2
    SQLServer = 3


class LinksType(enum.IntEnum):
    """How a query's tables are linked (qbe_LinksType)."""
    Nothing = 1
    SimpleJoin = 2
    FullJoin = 3
    LeftJoin = 4
    RightJoin = 5
    Union = 6


class SortType(enum.IntEnum):
    """Sort direction (qbe_SortType)."""
    Nothing = 0
    Ascending = 1
    Descending = -1


class AggregateFunction(enum.IntEnum):
    """Aggregate applied to a returned field (qbe_AggregateFunctionType)."""
    Nothing = 0
    Count = 1
    Sum = 2
    Avg = 3
    Min = 4
    Max = 5
    StdDev = 6
    ValueCount = 7


class GridLineStyle(enum.IntEnum):
    Solid = 0
    Dashes = 1
    SmallDots = 2


class GridLines(enum.IntEnum):
    Both = -1
    Nothing = 0
    Vertical = 1
    Horizontal = 2


class ControlType(enum.IntEnum):
    """The input control offered for a field's condition values (qbe_ControlType)."""
    Text = 0
    Combo = 1
    Date = 2
    Time = 3


class DebugMode(enum.IntFlag):
    """Where Logger.report sends a report (eDebugModes); flags that combine."""
    ToLogFile = 1
    MessageBox = 2
    ImmediateWindow = 4
    EventLog = 8
    DisplayOriginalError = 16
    WriteXMLOut = 32
