#include "engine/core/Permissions.h"

void TPDFDocPermissions::Load(TPDFDocPermissions* Source) {
    if (!Source)
        return;
    FPrint = Source->FPrint;
    FPrintHighResolution = Source->FPrintHighResolution;
    FModify = Source->FModify;
    FCopy = Source->FCopy;
    FAccessibility = Source->FAccessibility;
    FAnnotate = Source->FAnnotate;
    FFillForms = Source->FFillForms;
    FAssemble = Source->FAssemble;
}
