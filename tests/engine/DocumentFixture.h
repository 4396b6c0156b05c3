#pragma once
// One document that a test opens, works on and saves.
#include "engine/PdfJudges.h"
#include "engine/document/Document.h"

struct TDocumentTest : testing::Test {
    const TWorkspace Files;
    const string In = Files.Path("in.pdf");
    const string Out = Files.Path("out.pdf");
    TZQPDFDocument Document{nullptr};

    void Open(const QByteArray& contents) {
        Files.Write("in.pdf", contents);
        Document.OpenFromFile(In, {});
    }
    /// As the run does.
    void Save() { Document.SaveToPath(Out, /*keepSource*/ true, /*takeName*/ false); }
};
