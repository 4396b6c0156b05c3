#pragma once
// The editor control without a window: a current page of its own on a document, and the changes to its
// pages that keep the two in step.
#include "base/Component.h"

#include <QPointer>

class TZQPDFDocument;

class TZQPDFEditor : public TComponent {
    Q_OBJECT
public:
    explicit TZQPDFEditor(TComponent* owner);
    /// Takes itself off its document.
    ~TZQPDFEditor() override;

    /// Attaches to `document`, null for none, and stands on its current page. A document that has a control
    /// keeps it: the second works on it without being its Editor. Either may go first.
    void setDocument(TZQPDFDocument* document);
    /// Raises EPDFError where there is none, as everything below does.
    [[nodiscard]] TZQPDFDocument& Document() const;

    /// Counts from 1.
    [[nodiscard]] int CurrentPage() const;
    /// Moves the document's current page, too. Raises EPDFError if there is no such page.
    void SetCurrentPage(int page);
    /// Tells the document that its zero-based page is looked at; there is nothing to paint on.
    void renderPage(int page);

    /// As on the document. Afterwards the control stands on the page on which it stood.
    void InsertPages(int index, int count, Single width, Single height, bool before);
    /// As on the document. Afterwards the control stands on the page to go to.
    void DeletePagesEx(const string& range);
    /// To be called when pages have changed behind its back.
    void RefreshView();

    /// Writes the current page, changes that aren't saved included, as a picture
    /// (engine/render/PageBitmap.h).
    void SaveGraphicPageToBitmap(const NarrowString& fileName, int dpi);

private:
    void Detach();

    QPointer<TZQPDFDocument> FDocument;
    int FCurrentPage = 1;
};
