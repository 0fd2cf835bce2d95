// Stands in for an area of the library that has no sources yet.
