"""The exceptions the library raises: one class, with subclasses where Python has a natural one."""


class BrixError(Exception):
    """An error raised by the library: its number, source and description, as the library
    reports them, with the help file and help context it may carry."""

    def __init__(self, number: int, source: str, description: str,
                 help_file: str = "", help_context: int = 0) -> None:
        super().__init__(number, source, description)
        self.number = number
        self.source = source
        self.description = description
        self.help_file = help_file
        self.help_context = help_context

    def __str__(self) -> str:
        return f"{self.description} (error {self.number}, {self.source})"

    def __reduce__(self):
        return (type(self), (self.number, self.source, self.description,
                             self.help_file, self.help_context))


class TypeMismatchError(BrixError, ValueError):
    """Error 13, "Type mismatch": a value that does not read as the type asked for."""


class OutOfMemoryError(BrixError, MemoryError):
    """Error 7, "Out of memory"."""
