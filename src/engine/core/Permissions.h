#pragma once
// What a protected document lets its readers do (ISO 32000-1, table 22). Visible to scripts and files.
#include "base/Reflection.h"

class TPDFDocPermissions : public QObject {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFDocPermissions() = default;

    PUBLISHED(Boolean, Print, FPrint) = true;
    PUBLISHED(Boolean, PrintHighResolution, FPrintHighResolution) = true;
    PUBLISHED(Boolean, Modify, FModify) = true;
    PUBLISHED(Boolean, Copy, FCopy) = true;
    PUBLISHED(Boolean, Accessibility, FAccessibility) = true;
    PUBLISHED(Boolean, Annotate, FAnnotate) = true;
    PUBLISHED(Boolean, FillForms, FFillForms) = true;
    PUBLISHED(Boolean, Assemble, FAssemble) = true;

    /// Copies the values of `Source`; null changes nothing.
    Q_INVOKABLE void Load(TPDFDocPermissions* Source);
};
