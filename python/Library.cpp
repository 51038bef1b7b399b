// Anchor of libqmSSTRc: a library needs a source of its own; all it holds comes from the analysis.
