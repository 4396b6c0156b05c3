#include "engine/render/PagePainter.h"

#include "base/Module.h"
#include "engine/pdf/Errors.h"

namespace {

TPagePainter* Load() {
    try {
        return reinterpret_cast<TPagePainter* (*)()>(LoadModule(PainterModule, "NewPagePainter"))();
    } catch (const Exception& e) {
        throw EPDFError(QStringLiteral("Pages can't be painted: %1").arg(e.Message()));
    }
}

} // namespace

TPagePainter& PagePainter() {
    static TPagePainter* const painter = Load();
    return *painter;
}
