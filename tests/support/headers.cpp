// Headers that are compiled ahead need one source.
