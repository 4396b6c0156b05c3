#pragma once
// A file of script text: read as text, and saved in the form that it had.
#include "base/Text.h"

#include <QFile>
#include <QStringConverter>

enum class Replace { No, Yes };

class TScriptFile {
public:
    /// The largest file that is taken for a script, in bytes.
    static constexpr qint64 Limit = 16 << 20;

    /// Reads the file; one that doesn't exist is empty. Raises Exception for what is no file of UTF-8 or
    /// UTF-16 text, UTF-16 with its byte order mark, or is beyond the limit.
    explicit TScriptFile(const string& path);

    [[nodiscard]] const string& Path() const { return FPath; }
    [[nodiscard]] bool Exists() const { return FContents.has_value(); }
    /// As it stands in the file, without a byte order mark.
    [[nodiscard]] const string& Text() const { return FText; }

    /// Raises EFileError where the file could not be saved now.
    void RequireSavable() const;
    /// Whether saving the text would leave another text in the file. The kind of line ends
    /// doesn't count, nor do blanks in the place of tabs.
    [[nodiscard]] bool WouldChange(const string& text) const;
    /// Saves the text, which has a line feed between lines, whole or not at all: with the permissions and the
    /// encoding that the file had, and the tabs and line ends of every line that wasn't edited. False, and
    /// nothing is written, if the file holds something else by now than what was read, unless that is to be
    /// replaced. Raises EFileError.
    [[nodiscard]] bool Save(const string& text, Replace changed);

private:
    /// What the path leads to, links followed; nothing where there is no such file.
    [[nodiscard]] std::optional<QByteArray> Read() const;
    [[nodiscard]] bool HoldsOther() const;
    void Decode();
    [[nodiscard]] QByteArray Encode(const string& text) const;

    string FPath;   ///< as given
    string FTarget; ///< where links lead
    QFile FFile;
    std::optional<QByteArray> FContents; ///< nothing for a file that is to be made
    string FText;
    QStringConverter::Encoding FEncoding = QStringConverter::Utf8;
    bool FMarked = false; ///< begins with a byte order mark
};
