#include "desktop/ScriptEditorDialog.h"

#include "desktop/ScriptChecker.h"
#include "desktop/memo/MemoPane.h"
#include "editor/style/JSMemoStyler.h"
#include "editor/text/TextForm.h"
#include "scripting/host/Engine.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QMessageBox>
#include <QPushButton>
#include <QSessionManager>
#include <QShortcut>
#include <QVBoxLayout>

#include <algorithm>

namespace {

const string DefaultKey = QStringLiteral("{DEFAULT}");
const string Caption = QStringLiteral("Javascript editor");

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

TfrmJavaScriptEditor::TfrmJavaScriptEditor(QWidget* owner, TManners manners)
    : QDialog(owner), FManners(manners), FPane(new TMemoPane(this)), jsScript(&FPane->Editor().Memo()),
      AdvJSMemoStyler1(std::make_unique<TAdvJSMemoStyler>()) {
    setWindowTitle(Caption);
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
    if (FManners == TManners::Comfortable)
        SetUpComforts();
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

void TfrmJavaScriptEditor::SetUpComforts() {
    constexpr int Steps = 10'000;
    constexpr int RestTime = 700; // milliseconds
    AdvJSMemoStyler1->UseTodaysLanguage();
    jsScript->Rules().FCaseSensitive = true;
    jsScript->SetStyler(AdvJSMemoStyler1.get());
    jsScript->Settings.TurnOnComforts();
    jsScript->KeepExactHistory(Steps);
    FPane->Editor().YieldCompletion();
    auto* save = new QShortcut(QKeySequence::Save, this);
    connect(save, &QShortcut::activated, this, [this] { Save(); });
    connect(qApp, &QGuiApplication::commitDataRequest, this, &TfrmJavaScriptEditor::SessionEnds,
            Qt::DirectConnection);
    connect(&FPane->Editor(), &TMemoWidget::StateChanged, this, [this] { TakeState(); });
    FRest.setSingleShot(/*singleShot=*/true);
    FRest.setInterval(RestTime);
}

void TfrmJavaScriptEditor::FormCreate() {
    jsScript->SetText({});
}

void TfrmJavaScriptEditor::GetMethodAndHint(const string& source, string& method, string& hint) {
    method = source;
    hint = RemoveFirst(RemoveFirst(source, QStringLiteral("procedure ")), QStringLiteral("function "));
}

bool TfrmJavaScriptEditor::ScriptEdit(string& jsSource, TJSEngine* Engine, TJSCompletion* AutoCompletion,
                                      TManners manners) {
    TfrmJavaScriptEditor form(QApplication::activeWindow(), manners);
    bool saved = false;
    const auto take = [&jsSource, &saved, original = jsSource](const string& text) {
        jsSource = WithFormOf(original, text, TMemoSettings().FTabSize);
        return saved = true;
    };
    form.Begin({{}, jsSource, /*ReadOnly=*/false, take}, Engine, AutoCompletion);
    const bool accepted = form.exec() == QDialog::Accepted;
    if (manners == TManners::Rule && accepted)
        jsSource = form.jsScript->Text();
    return manners == TManners::Rule ? accepted : saved;
}

void TfrmJavaScriptEditor::EditFile(const TEditedScript& script, TJSEngine* Engine,
                                    TJSCompletion* AutoCompletion) {
    TfrmJavaScriptEditor form(QApplication::activeWindow(), TManners::Comfortable);
    form.Begin(script, Engine, AutoCompletion);
    form.exec();
}

void TfrmJavaScriptEditor::Begin(const TEditedScript& script, TJSEngine* engine, TJSCompletion* table) {
    FScript = script;
    FEngine = engine;
    FAutoCompletion = table;
    if (FManners == TManners::Rule)
        jsScript->SetText(script.Text);
    else
        jsScript->SetWholeText(script.Text);
    if (FAutoCompletion)
        OfferCompletion();
    if (FManners == TManners::Rule)
        return;
    jsScript->Settings.FReadOnly = script.ReadOnly;
    const string file = script.Name + (script.ReadOnly ? QStringLiteral(" (read-only)") : string());
    setWindowTitle(script.Name.isEmpty() ? windowTitle() + QStringLiteral("[*]")
                                         : file + QStringLiteral("[*] - ") + windowTitle());
    FRevision = jsScript->Lines().Revision();
    if (!FEngine)
        return;
    FChecker = std::make_unique<TScriptChecker>();
    connect(FChecker.get(), &TScriptChecker::Checked, this, &TfrmJavaScriptEditor::TakeCheck);
    connect(&FRest, &QTimer::timeout, this, [this] { FChecker->Check(jsScript->WholeText()); });
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
    if (!FAutoCompletion)
        return;
    const bool members =
        FManners == TManners::Comfortable && AToken.endsWith(u'.') && !AToken.startsWith(u'{');
    if (FAutoCompletion->contains(AToken)) {
        AList.clear();
        for (const string& source : FAutoCompletion->value(AToken))
            AList.push_back(EntryOf(source));
    } else if (members && FPane->Editor().Completion().Requested()) {
        // Whatever is before the dot may be a document: members come before what is global.
        TCompletionList all;
        for (auto entry = FAutoCompletion->cbegin(); entry != FAutoCompletion->cend(); ++entry) {
            for (const string& source : entry.key() == DefaultKey ? QStringList() : entry.value())
                all.push_back(EntryOf(source));
        }
        AList.insert(AList.begin(), all.begin(), all.end());
    }
}

bool TfrmJavaScriptEditor::IsRight() {
    const string text = FManners == TManners::Rule ? jsScript->Text() : jsScript->WholeText();
    return !FEngine || text.isEmpty() || FEngine->Global().Compile(text, ":inline:");
}

void TfrmJavaScriptEditor::TeButton1Click() {
    if (FManners == TManners::Rule && !IsRight())
        return ShowError();
    if (FManners == TManners::Rule || FScript.ReadOnly || Save())
        accept();
}

/// The engine's word on an error is shown where it is, if it is anywhere.
void TfrmJavaScriptEditor::MarkError(const TJSMessage& message) {
    jsScript->ErrorMarks().Clear();
    if (message.Line <= 0)
        return;
    const int row = message.Line - 1;
    const int column = std::max(0, message.Column - 1);
    int wordStart = 0;
    int wordEnd = 0;
    jsScript->Words().WordBounds(column, row, wordStart, wordEnd);
    jsScript->ErrorMarks().Set(row, column, wordEnd - column);
}

/// The dialog stays open.
void TfrmJavaScriptEditor::ShowError() {
    const TJSMessage message = FEngine->LastMessage();
    MarkError(message);
    if (message.Line <= 0) {
        FPane->ShowMessage(message.Text, TMessageKind::Error);
        return;
    }
    FPane->GoTo(message.Line, message.Column);
    FPane->ShowMessage(QStringLiteral("Line %1: %2").arg(message.Line).arg(message.Text),
                       TMessageKind::Error);
}

/// What is found while the user writes moves nothing.
void TfrmJavaScriptEditor::TakeCheck(const TJSMessage& message) {
    if (FRevision != jsScript->Lines().Revision())
        return;
    MarkError(message);
    if (message.Line > 0)
        FPane->ShowMessage(QStringLiteral("Line %1: %2").arg(message.Line).arg(message.Text),
                           TMessageKind::Error);
}

void TfrmJavaScriptEditor::TakeState() {
    setWindowModified(!FScript.ReadOnly && !jsScript->UndoList().IsAtSaved());
    if (FChecker && std::exchange(FRevision, jsScript->Lines().Revision()) != jsScript->Lines().Revision())
        FRest.start();
}

bool TfrmJavaScriptEditor::Save() {
    if (FScript.ReadOnly)
        return false;
    FPane->Editor().Completion().CloseCompletionList();
    jsScript->UndoList().Flush();
    if (!IsRight()) {
        ShowError();
        const auto answer = QMessageBox::question(
            this, Caption, QStringLiteral("The script has an error. Save it all the same?"),
            QMessageBox::Save | QMessageBox::Cancel, QMessageBox::Cancel);
        if (answer != QMessageBox::Save)
            return false;
    }
    if (!FScript.Save || !FScript.Save(jsScript->WholeText()))
        return false;
    jsScript->MarkSaved();
    TakeState();
    return true;
}

bool TfrmJavaScriptEditor::WouldLose() {
    jsScript->UndoList().Flush();
    return FManners == TManners::Comfortable && !FScript.ReadOnly && !jsScript->UndoList().IsAtSaved() &&
           FGivenUp != jsScript->Lines().Revision();
}

bool TfrmJavaScriptEditor::MayClose() {
    if (!WouldLose())
        return true;
    const auto answer = QMessageBox::question(
        this, Caption, QStringLiteral("The script has been changed. Save the changes?"),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    if (answer == QMessageBox::Discard)
        FGivenUp = jsScript->Lines().Revision();
    return answer == QMessageBox::Discard || (answer == QMessageBox::Save && Save());
}

/// Cancel, Escape and the window's own button.
void TfrmJavaScriptEditor::reject() {
    if (MayClose())
        QDialog::reject();
}

/// A session that goes on to its end closes the window later, which asks no second time.
void TfrmJavaScriptEditor::SessionEnds(QSessionManager& session) {
    if (!WouldLose() || !session.allowsInteraction())
        return;
    if (MayClose())
        session.release();
    else
        session.cancel(); // which a release would take back
}
