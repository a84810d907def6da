"""What a call of the library can fail with."""

from __future__ import annotations

__all__ = [
    "LibraryError", "QuoError", "NoMemoryError", "NotDoneError", "BadGridError", "BadRecordError", "BadTemplateError",
    "TemplateMisfitError", "LowCoverageError", "NoFingerError", "NoCandidateError",
]


class LibraryError(ImportError):
    """The shared library was not found, could not be loaded, or is of another version."""


class QuoError(Exception):
    """A function of the library did not do its work.

    ``code`` is what the function returned, ``function`` its name. Arguments that cannot be right (shape, type, range)
    raise TypeError or ValueError before the library is called.
    """

    meaning = "failed"

    def __init__(self, function: str, code: int) -> None:
        super().__init__(f"{function}: {self.meaning} (result {code})")
        self.function = function
        self.code = code


class NoMemoryError(QuoError, MemoryError):
    """A buffer could not be allocated."""

    meaning = "a buffer could not be allocated"


class NotDoneError(QuoError):
    """An operator answered 0: there is nothing in the image that it could work with, or it found no memory."""

    meaning = "nothing was done"


class BadGridError(QuoError, ValueError):
    """No block fits into the image."""

    meaning = "no block fits into the image"


class BadRecordError(QuoError, ValueError):
    """The bytes are not a profile record, or a buffer could not be allocated."""

    meaning = "not a profile record, or a buffer could not be allocated"


class BadTemplateError(QuoError, ValueError):
    """The template is damaged or too long."""

    meaning = "the template is damaged or too long"


class TemplateMisfitError(QuoError, ValueError):
    """A template cannot be decoded, or two templates are of different frame sizes."""

    meaning = "a template cannot be decoded, or the two do not fit together"


class LowCoverageError(QuoError):
    """The finger covers less of the sensor than required; ``coverage`` is the percentage found."""

    meaning = "the finger covers less of the sensor than required"
    coverage: int = 0


class NoFingerError(QuoError):
    """The mean gray is above 220, so there is no finger."""

    meaning = "the mean gray is above 220, so there is no finger"


class NoCandidateError(QuoError):
    """No frame qualifies."""

    meaning = "no frame qualifies"
