/* The shared library is the internal archive, whole; it needs one source of its own. */
