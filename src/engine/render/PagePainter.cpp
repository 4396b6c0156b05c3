#include "engine/render/PagePainter.h"

#include "engine/Errors.h"

#include <QFile>
#include <QFileInfo>

#include <dlfcn.h>

namespace {

/// Beside the program, in the same place in the build's folder and where it is installed.
string LibraryPath() {
    const QFileInfo program(QFile::symLinkTarget(QStringLiteral("/proc/self/exe")));
    return program.path() + QStringLiteral("/../lib/morvane/morvane-painter.so");
}

TPagePainter* Load() {
    // Never closed: what it has loaded itself doesn't survive that.
    void* library = ::dlopen(QFile::encodeName(LibraryPath()).constData(), RTLD_NOW | RTLD_LOCAL);
    void* make = library ? ::dlsym(library, "NewPagePainter") : nullptr;
    if (!make)
        throw EPDFError(QStringLiteral("Pages can't be painted: %1").arg(QString::fromUtf8(::dlerror())));
    return reinterpret_cast<TPagePainter* (*)()>(make)();
}

} // namespace

TPagePainter& PagePainter() {
    static TPagePainter* const painter = Load();
    return *painter;
}
