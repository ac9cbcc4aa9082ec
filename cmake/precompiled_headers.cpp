// The one source of the targets that hold precompiled headers; it has none of its own.
