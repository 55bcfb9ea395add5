"""brixobjects4: query-by-example definitions to SQL, WHERE text, full-text requests and
descriptions; saved-query and user records, the call envelope, Base64 and the error logger."""

from ._errors import BrixError, OutOfMemoryError, TypeMismatchError
from ._enums import (AggregateFunction, Clause, ControlType, DataType, DebugMode, GridLines,
                     GridLineStyle, LinksType, Logic, SortType, StatementType)
from ._core import (Base64, Condition, Conditions, Envelope, ErrorValue, Field, Fields,
                    Logger, Null, NullType, Query, SavedQuery, Table, Tables, User, fixed_clock,
                    library_version)

__version__ = library_version

__all__ = [
    "AggregateFunction", "Base64", "BrixError", "Clause", "Condition", "Conditions",
    "ControlType", "DataType", "DebugMode", "Envelope", "ErrorValue", "Field", "Fields",
    "GridLineStyle", "GridLines", "LinksType", "Logger", "Logic", "Null", "NullType",
    "OutOfMemoryError", "Query", "SavedQuery", "SortType", "StatementType", "Table", "Tables",
    "TypeMismatchError", "User", "fixed_clock",
]
