#include "desktop/ScriptEditorDialog.h"

#include "desktop/memo/MemoPane.h"
#include "editor/style/JSMemoStyler.h"
#include "scripting/host/Engine.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

const string DefaultKey = QStringLiteral("{DEFAULT}");

TCompletionEntry EntryOf(const string& source) {
    string method;
    string hint;
    TfrmJavaScriptEditor::GetMethodAndHint(source, method, hint);
    return {method};
}

string RemoveFirst(string text, const string& part) {
    const qsizetype at = text.indexOf(part);
    return at < 0 ? text : text.remove(at, part.size());
}

} // namespace

TfrmJavaScriptEditor::TfrmJavaScriptEditor(QWidget* owner)
    : QDialog(owner), FPane(new TMemoPane(this)), jsScript(&FPane->Editor().Memo()),
      AdvJSMemoStyler1(std::make_unique<TAdvJSMemoStyler>()) {
    setWindowTitle(QStringLiteral("Javascript editor"));
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    setSizeGripEnabled(/*enabled=*/true);
    auto* rows = new QVBoxLayout(this);
    rows->addWidget(FPane, /*stretch=*/1);
    MakeButtons();
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(TeButton1);
    buttons->addWidget(TeButton2);
    rows->addLayout(buttons);
    SetUpScript();
    constexpr QSize InitialSize(760, 560);
    resize(InitialSize);
    FPane->Editor().setFocus();
    FormCreate();
}

TfrmJavaScriptEditor::~TfrmJavaScriptEditor() {
    delete FPane; // its control uses the styler
}

void TfrmJavaScriptEditor::MakeButtons() {
    TeButton1 = new QPushButton(QStringLiteral("OK"));
    // Return in the dialog cancels, on purpose: only a click on OK confirms a script.
    TeButton1->setAutoDefault(/*on=*/false);
    connect(TeButton1, &QPushButton::clicked, this, [this] { TeButton1Click(); });
    TeButton2 = new QPushButton(QStringLiteral("Cancel"));
    TeButton2->setDefault(/*on=*/true);
    connect(TeButton2, &QPushButton::clicked, this, &QDialog::reject);
}

void TfrmJavaScriptEditor::SetUpScript() {
    constexpr int FontSize = 10;
    constexpr int GutterWidth = 40;
    TMemoWidget& editor = FPane->Editor();
    editor.setAccessibleName(QStringLiteral("Script"));
    editor.SetFont({QStringLiteral("COURIER NEW"), FontSize, 0, clBlack});
    editor.Geometry().GutterMinimum = GutterWidth;
    editor.ShowModified = true;
    editor.ShowRightMargin = true;
    jsScript->SetStyler(AdvJSMemoStyler1.get());
    jsScript->Folding().SetEnabled(/*enabled=*/true);
    editor.Completion().FAutoCompletion.StartToken = QStringLiteral("(.");
    editor.Completion().Events.OnGetAutoCompletionList = [this](const string& token, TCompletionList& list) {
        jsScriptGetAutoCompletionList(token, list);
    };
}

void TfrmJavaScriptEditor::FormCreate() {
    jsScript->SetText({});
}

void TfrmJavaScriptEditor::GetMethodAndHint(const string& source, string& method, string& hint) {
    method = source;
    hint = RemoveFirst(RemoveFirst(source, QStringLiteral("procedure ")), QStringLiteral("function "));
}

bool TfrmJavaScriptEditor::ScriptEdit(string& jsSource, TJSEngine* Engine, TJSCompletion* AutoCompletion) {
    TfrmJavaScriptEditor form(QApplication::activeWindow());
    form.FEngine = Engine;
    form.FAutoCompletion = AutoCompletion;
    form.jsScript->SetText(jsSource);
    if (AutoCompletion)
        form.OfferCompletion();
    if (form.exec() != QDialog::Accepted)
        return false;
    jsSource = form.jsScript->Text();
    return true;
}

void TfrmJavaScriptEditor::OfferCompletion() {
    TCompletionList& list = AdvJSMemoStyler1->FlistAuto;
    QStringList& hints = AdvJSMemoStyler1->FHintParameter.Parameters;
    list.clear();
    hints.clear();
    for (const string& source : FAutoCompletion->value(DefaultKey))
        list.push_back(EntryOf(source));
    for (auto entry = FAutoCompletion->cbegin(); entry != FAutoCompletion->cend(); ++entry) {
        for (const string& source : entry.value()) {
            string method;
            string hint;
            GetMethodAndHint(source, method, hint);
            if (!hint.isEmpty() && hint != entry.key())
                hints.append(hint);
        }
    }
}

void TfrmJavaScriptEditor::jsScriptGetAutoCompletionList(const string& AToken, TCompletionList& AList) const {
    if (!FAutoCompletion || !FAutoCompletion->contains(AToken))
        return;
    AList.clear();
    for (const string& source : FAutoCompletion->value(AToken))
        AList.push_back(EntryOf(source));
}

void TfrmJavaScriptEditor::TeButton1Click() {
    const string text = jsScript->Text();
    if (FEngine == nullptr || text.isEmpty() || FEngine->Global().Compile(text, ":inline:"))
        accept();
    else
        ShowError();
}

/// The dialog stays open; the engine's word on the error shows where it is, if it is anywhere.
void TfrmJavaScriptEditor::ShowError() {
    const TJSMessage message = FEngine->LastMessage();
    jsScript->ErrorMarks().Clear();
    if (message.Line <= 0) {
        FPane->ShowMessage(message.Text, TMessageKind::Error);
        return;
    }
    const int row = message.Line - 1;
    const int column = std::max(0, message.Column - 1);
    int wordStart = 0;
    int wordEnd = 0;
    jsScript->Words().WordBounds(column, row, wordStart, wordEnd);
    jsScript->ErrorMarks().Set(row, column, wordEnd - column);
    FPane->GoTo(message.Line, message.Column);
    FPane->ShowMessage(QStringLiteral("Line %1: %2").arg(message.Line).arg(message.Text),
                       TMessageKind::Error);
}
