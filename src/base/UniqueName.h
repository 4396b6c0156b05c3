#pragma once
// The next free number in the pattern `name (n).pdf`, for results that must not replace a file.
#include "base/Exceptions.h"

class TFolder;

/// The path itself makes it impossible to form a free name.
class ENameError : public Exception {
public:
    using Exception::Exception;
};

/// `fn` itself where nothing has that name, else a path in the same folder whose number is one above the
/// highest in use; gaps are not filled, and the extension becomes ".pdf".
///
/// The path goes into a regular expression as it stands, on purpose: existing folders of numbered results
/// were named by this rule, and it must go on naming them alike. So brackets, "+" and the like in a path
/// keep their special meaning: with a pair of brackets no sibling is recognised and the answer is
/// `name (1).pdf` even where that exists; with an unbalanced one the engine's refusal is raised as
/// ENameError. Who must not overwrite asks again with the answer until the name is free (PublishFree in
/// base/PartFile.h). A numbered name of more than 255 bytes loses characters of its stem.
[[nodiscard]] string UniqueFileName(const string& fn);
/// The same for a folder that is held open: `fn` is a path in it, and what it holds decides, whatever the
/// path leads to by now.
[[nodiscard]] string UniqueFileName(const string& fn, const TFolder& folder);
