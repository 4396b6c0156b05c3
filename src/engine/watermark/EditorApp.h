#pragma once
// Where the program keeps what people have defined for all documents.
#include "base/Text.h"

class TPDFEditorApp {
public:
    /// The file of the defined stamps.
    [[nodiscard]] static string RepositoryFilename();
    /// The folder of the defined watermarks, with a delimiter at its end.
    [[nodiscard]] static string WatermarksFolder();
};
