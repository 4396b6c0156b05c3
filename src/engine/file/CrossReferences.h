#pragma once
// A look at a file's cross-reference streams before the library makes a table of them: a few bytes there can
// stand for any number of objects, each of which takes a hundred bytes of memory.
#include "engine/file/FileInput.h"

/// Raises EPDFError if the cross-reference streams name more objects than a file of this size can hold. What
/// isn't understood here is left to the library's repair.
void RequireModestTable(TFileInput& input, const string& path);
