"""The flat modules that the package stands on: the host's and the analysis's."""
try:
    import libqcc as qc
    import libqmSSTRc as ss
except ImportError as problem:
    raise ImportError(
        f"staticstrength needs the modules libqcc and libqmSSTRc, built for this interpreter: {problem}. Both lie "
        "beside the package where it was installed or built; put that folder on PYTHONPATH.") from problem

__all__ = ["NULL", "qc", "ss"]

#: The pointer string of no object.
NULL = "NULL"
