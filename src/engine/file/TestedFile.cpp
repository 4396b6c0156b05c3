#include "engine/file/TestedFile.h"

#include "base/FileState.h"
#include "base/Paths.h"
#include "engine/file/Source.h"

#include <sys/stat.h>

TPDFSourcePtr TTestedFile::Take(const string& path, const NarrowString& password, int descriptor) {
    const TPDFSourcePtr source = std::move(FSource);
    FSource.reset();
    if (!source || source->Path != path || source->Password != password)
        return nullptr;
    struct stat now {};
    const int looked = descriptor == TFileInput::NotOpen ? ::stat(PathBytes(path).constData(), &now)
                                                         : ::fstat(descriptor, &now);
    return looked == 0 && StateOf(now) == StateOf(source->Input->Info()) ? source : nullptr;
}
