#pragma once
// A page as a picture file.
#include "base/Text.h"

struct TDocumentCore;

/// Writes the zero-based page, changes that aren't saved included, on white, as large as it is displayed at
/// `dpi` dots per inch, which the file records. The extension names the format: .png, .jpg, .jpeg, .tif,
/// .tiff or .bmp. Published in one step, replacing what is there. Raises EPDFError for any other extension,
/// a resolution that isn't positive, a picture beyond reason and a page that can't be painted; EFileError
/// where it can't be written.
void SavePageBitmap(TDocumentCore& core, int page, const string& fileName, int dpi);
