// Exists only so that the shared precompiled headers have a translation unit to belong to.
