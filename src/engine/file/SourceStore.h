#pragma once
// Where the files of many imports are kept until the save needs them: one temporary file without a name, so
// that thousands don't each hold a descriptor, and so that they may be deleted meanwhile.
#include "base/Text.h"

class TSourceStore {
public:
    /// In the folder for temporary files. Raises EFileError.
    TSourceStore();
    ~TSourceStore();
    Q_DISABLE_COPY(TSourceStore)

    /// Copies the first `size` bytes of an open file, which is named in errors; gives where they begin here.
    /// Raises EFileError, also where the file is shorter.
    [[nodiscard]] qint64 Take(int descriptor, qint64 size, const string& path);
    [[nodiscard]] int Descriptor() const { return FDescriptor; }

private:
    int FDescriptor = -1;
    qint64 FSize = 0;
};
