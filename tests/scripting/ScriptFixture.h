#pragma once
// The vocabulary of the script tests: scripts that say things in message boxes, on a document that other
// programs judge.
#include "actions/ActionDocument.h"
#include "actions/DocumentScriptEngine.h"
#include "engine/document/Document.h"
#include "platform/MessageBox.h"
#include "platform/StopSignal.h"
#include "testing/SamplePdf.h"
#include "testing/Workspace.h"

/// Notes what boxes say and answers them.
class TPlayedBoxes : public TMessageBoxHost {
public:
    TPlayedBoxes() { SetMessageBoxHost(this); }
    ~TPlayedBoxes() override { SetMessageBoxHost(nullptr); }
    int Show(const string& text, const string& caption, int flags) override {
        Said.append(text);
        Caption = caption;
        Flags = flags;
        return Answer;
    }
    QStringList Said;
    string Caption;
    int Flags = -1;
    int Answer = IDOK;
};

class TScriptTest : public testing::Test {
protected:
    /// Makes a file of so many pages, its page numbers in text, and gives it to the scripts.
    void Open(int pages, const TSampleOptions& options = {}) {
        MakePdf(FWorkspace.Path("in.pdf"), pages, options);
        FDocument = std::make_unique<TZQPDFDocument>(nullptr);
        FDocument->OpenFromFile(FWorkspace.Path("in.pdf"), Narrow(options.OwnerPassword));
        ActionDocument().SetDocument(FDocument.get());
    }
    /// Runs a script, in which DIR stands for the test's folder.
    bool Run(string script) {
        script.replace("DIR", FWorkspace.Path());
        return FEngine.Evaluate(script, "test");
    }
    /// What a script that is to succeed says in boxes, joined with "|".
    string Said(const string& script) {
        FBoxes.Said.clear();
        EXPECT_TRUE(Run(script)) << script.toStdString() << "\n" << Failure().toStdString();
        return FBoxes.Said.join(u'|');
    }
    /// The value of an expression as text.
    string Value(const string& expression) { return Said("ShowMessage(String(" + expression + "))"); }
    [[nodiscard]] string Failure() const {
        const TJSMessage& message = FEngine.LastMessage();
        return QStringLiteral("%1:%2:%3: %4")
            .arg(message.ScriptName)
            .arg(message.Line)
            .arg(message.Column)
            .arg(message.Text);
    }
    /// The text of a file's pages as another program reads it, "Page 1 Page 2".
    [[nodiscard]] string TextOf(const string& name) const {
        EXPECT_EQ(RunProgram("qpdf", {"--check", FWorkspace.Path(name)}).Exit, 0) << name.toStdString();
        return QString::fromUtf8(RunProgram("pdftotext", {FWorkspace.Path(name), "-"}).Out).simplified();
    }
    [[nodiscard]] QByteArray InfoOf(const string& name, const QStringList& options = {}) const {
        return RunProgram("pdfinfo", options + QStringList(FWorkspace.Path(name))).Out;
    }

    TWorkspace FWorkspace;
    TPlayedBoxes FBoxes;
    std::unique_ptr<TZQPDFDocument> FDocument;
    TJSDocumentScripting& FEngine = GetDocumentScripting();
};
