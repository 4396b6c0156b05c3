// Nothing: the target of the precompiled headers needs a source.
