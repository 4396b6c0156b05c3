#pragma once
// The dialog in which a script is written: the editor control, OK and Cancel. What can be completed comes
// from a table that its caller makes.
#include "scripting/ScriptEditorHost.h"

#include <QDialog>

class QPushButton;
class TAdvJSMemoStyler;
class TAdvMemo;
class TMemoPane;
struct TCompletionEntry;

class TfrmJavaScriptEditor : public QDialog {
    Q_OBJECT
public:
    explicit TfrmJavaScriptEditor(QWidget* owner);
    ~TfrmJavaScriptEditor() override;

    /// Shows the script and waits; see TScriptEditorHost::ScriptEdit.
    static bool ScriptEdit(string& jsSource, TJSEngine* Engine, TJSCompletion* AutoCompletion);
    /// What completion puts in for an entry of the table, which is the whole of it, and what the parameter
    /// hint shows: the entry without the first "procedure " and the first "function ".
    static void GetMethodAndHint(const string& source, string& method, string& hint);

    /// The control of the script.
    [[nodiscard]] TAdvMemo& Script() const { return *jsScript; }

private:
    void FormCreate();
    void MakeButtons();
    void SetUpScript();
    void OfferCompletion();
    /// The list that belongs to the token just typed; without one in the table the control's default stays.
    void jsScriptGetAutoCompletionList(const string& AToken, std::vector<TCompletionEntry>& AList) const;
    void TeButton1Click();
    void ShowError();

    QPushButton* TeButton1 = nullptr;
    QPushButton* TeButton2 = nullptr;
    TMemoPane* FPane = nullptr;
    TAdvMemo* jsScript = nullptr; // the pane's
    const std::unique_ptr<TAdvJSMemoStyler> AdvJSMemoStyler1;
    TJSCompletion* FAutoCompletion = nullptr; // borrowed, as is the engine
    TJSEngine* FEngine = nullptr;
};

class TDesktopScriptEditorHost : public TScriptEditorHost {
public:
    bool ScriptEdit(string& jsSource, TJSEngine* Engine, TJSCompletion* AutoCompletion) override {
        return TfrmJavaScriptEditor::ScriptEdit(jsSource, Engine, AutoCompletion);
    }
};
