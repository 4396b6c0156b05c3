#pragma once
// Actions that add something to the current page's content, or to the document as a whole; the latter hold
// public fields.
#include "actions/Action.h"
#include "actions/DocumentInitialView.h"
#include "bates/BatesSetting.h"
#include "scripting/DocumentDescription.h"

class TPDFActionAddText : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionAddText() = default;
    PUBLISHED(Single, x, Fx) = 0;
    PUBLISHED(Single, y, Fy) = 0;
    PUBLISHED(string, Text, FText);
    PUBLISHED(TFontName, FontName, FFontName) = "Arial";
    PUBLISHED(Single, FontSize, FFontSize) = 12;
    PUBLISHED(TColor, FillColor, FFillColor) = 0xFF000000;
};

class TPDFActionAddImage : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionAddImage() = default;
    PUBLISHED(Single, x, Fx) = 0;
    PUBLISHED(Single, y, Fy) = 0;
    PUBLISHED(TFileName, Filename, FFilename);
};

class TPDFActionAddFileAttachment : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionAddFileAttachment() = default;
    FIELD(TFileName, fileName);
    /// Asks for a file, and forgets it, on purpose: whoever shows the dialog keeps what was chosen.
    bool Config() override;
};

/// Does nothing, on purpose: no document method has its name, and lists that hold it count with that. A
/// script reaches SetPageMode and SetPageLayout.
class TPDFActionDocumentInitialView : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionDocumentInitialView() = default;
    FIELD(TPDFDocumentInitialView, InitialView);
};

class TPDFActionAddDocumentDescription : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionAddDocumentDescription() = default;
    FIELD(TPDFDocumentDescription, Description);
};

/// Stamps the pages of a range with the scheme that it carries.
class TPDFActionAddBatesNumbering : public TPDFAction {
    Q_OBJECT
public:
    Q_INVOKABLE TPDFActionAddBatesNumbering() = default;
    PUBLISHED(TZQPDFBatesSetting, bates, Fbates);
    PUBLISHED(string, pageRange, FpageRange);
};
