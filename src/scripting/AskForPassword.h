#pragma once
// The password of a protected file, asked of the user until it fits or the user gives up.
#include "base/Text.h"
#include "engine/pdf/Types.h"

#include <optional>

class TTestedFile;

/// The modal dialog that asks. Whoever has a desktop registers one; without it every prompt is answered as
/// Cancel, with one line in the journal.
class TPasswordPrompt {
public:
    virtual ~TPasswordPrompt() = default;
    /// Shows `message` above an empty, masked line. What was typed, or nothing for Cancel. Any thread may
    /// call it, and it is held until then.
    [[nodiscard]] virtual std::optional<string> Ask(const string& message) = 0;
    /// Answers the prompts that are open, and from now on every one at once, as Cancel: the program is
    /// stopping. On the main thread.
    virtual void CancelAll() {}
};

/// The registered prompt, or the one that cancels.
[[nodiscard]] TPasswordPrompt& PasswordPrompt();
/// Not owned; null takes the registered one away. Prompts that are open keep theirs.
void SetPasswordPrompt(TPasswordPrompt* prompt);

/// Whether it is a password of that kind for the file; true for a file without protection. Raises what
/// TPDFDocument::IsPasswordOk raises.
[[nodiscard]] bool PasswordFits(const string& fileName, const string& password, TIsPasswordOkOption option,
                                TTestedFile* tested = nullptr);

/// Whether `Password`, or one that the user types, is one of the kind `Option` for the file; `Password`
/// becomes the one that fits, and stays as it was on Cancel. A file without protection needs no answer. There
/// is no limit on attempts. Raises what the test of a password raises (TPDFDocument::IsPasswordOk), which
/// leaves the file in `tested`.
[[nodiscard]] bool AskForPassword(const string& FileName, TIsPasswordOkOption Option, string& Password,
                                  TTestedFile* tested = nullptr);
