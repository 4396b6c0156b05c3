#pragma once
// The dialog in which a script is written: the editor control, OK and Cancel. What can be completed comes
// from a table that its caller makes.
#include "scripting/ScriptEditorHost.h"

#include <QDialog>
#include <QTimer>

#include <optional>

class QPushButton;
class QSessionManager;
class TAdvJSMemoStyler;
class TAdvMemo;
class TMemoPane;
class TScriptChecker;
struct TCompletionEntry;
struct TJSMessage;

/// How the dialog behaves. By the rule it saves nothing but on OK, and closes without a question; people are
/// used to more.
enum class TManners { Rule, Comfortable };

class TfrmJavaScriptEditor : public QDialog {
    Q_OBJECT
public:
    TfrmJavaScriptEditor(QWidget* owner, TManners manners);
    ~TfrmJavaScriptEditor() override;

    /// Shows the script and waits; see TScriptEditorHost::ScriptEdit.
    static bool ScriptEdit(string& jsSource, TJSEngine* Engine, TJSCompletion* AutoCompletion,
                           TManners manners = TManners::Rule);
    /// The same for a file, which the dialog saves itself.
    static void EditFile(const TEditedScript& script, TJSEngine* Engine, TJSCompletion* AutoCompletion);
    /// What completion puts in for an entry of the table, which is the whole of it, and what the parameter
    /// hint shows: the entry without the first "procedure " and the first "function ".
    static void GetMethodAndHint(const string& source, string& method, string& hint);

    /// The control of the script.
    [[nodiscard]] TAdvMemo& Script() const { return *jsScript; }

    void reject() override;

private:
    void FormCreate();
    void MakeButtons();
    void SetUpScript();
    void SetUpComforts();
    void Begin(const TEditedScript& script, TJSEngine* engine, TJSCompletion* table);
    void OfferCompletion();
    /// The list that belongs to the token just typed; without one in the table the control's default stays.
    void jsScriptGetAutoCompletionList(const string& AToken, std::vector<TCompletionEntry>& AList) const;
    void TeButton1Click();
    [[nodiscard]] bool IsRight();
    void MarkError(const TJSMessage& message);
    void ShowError();
    void TakeState();
    void TakeCheck(const TJSMessage& message);
    /// False: the text is nowhere yet, because the user thought again or it could not be saved.
    bool Save();
    [[nodiscard]] bool WouldLose();
    [[nodiscard]] bool MayClose();
    void SessionEnds(QSessionManager& session);

    const TManners FManners;
    QPushButton* TeButton1 = nullptr;
    QPushButton* TeButton2 = nullptr;
    TMemoPane* FPane = nullptr;
    TAdvMemo* jsScript = nullptr; // the pane's
    const std::unique_ptr<TAdvJSMemoStyler> AdvJSMemoStyler1;
    TJSCompletion* FAutoCompletion = nullptr; // borrowed, as is the engine
    TJSEngine* FEngine = nullptr;
    TEditedScript FScript;
    std::unique_ptr<TScriptChecker> FChecker;
    QTimer FRest;                     // of the user's hands, before the script is checked
    unsigned FRevision = 0;           // of the text that was checked or is to be
    std::optional<unsigned> FGivenUp; // the revision that the user said may be lost
};

class TDesktopScriptEditorHost : public TScriptEditorHost {
public:
    bool ScriptEdit(string& jsSource, TJSEngine* Engine, TJSCompletion* AutoCompletion) override {
        return TfrmJavaScriptEditor::ScriptEdit(jsSource, Engine, AutoCompletion, TManners::Comfortable);
    }
    void EditFile(const TEditedScript& script, TJSEngine* Engine, TJSCompletion* AutoCompletion) override {
        TfrmJavaScriptEditor::EditFile(script, Engine, AutoCompletion);
    }
};
