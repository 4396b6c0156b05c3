#pragma once
// The hint that shows the parameters of the call that the caret stands in.
#include "editor/assist/AssistWindow.h"
#include "editor/style/CompletionSettings.h"

#include <functional>

class TMemoState;

enum TAutoHintParameters { hpAuto, hpManual, hpNone };
enum TAutoHintParameterPos { hpBelowCode, hpAboveCode };

/// The hint window: three parts in a row from (2, 2) on, the Active one in bold, each 2 further.
struct TAdvHintForm {
    string part1, part2, part3;
    quint8 Active = 0; ///< 1 to 3
    TMemoRect Place;
    TColor TextColor, BkColor;
};

/// Finds the open call that `column` of `line` stands in. Returns the column left of its bracket, 0 when
/// there is none, and -1 for no call: behind a closing bracket, or 5 blanks or class delimiters in a row.
int FindHintCall(QStringView line, int column, const THintParameter& chars, string& word, int& paramCount);

class TParameterHint {
public:
    TParameterHint(TMemoState& memo) : FMemo(memo) {}
    virtual ~TParameterHint() = default;

    TAssistWindow* Window = nullptr;
    TAutoHintParameterPos FAutoHintParameterPos = hpBelowCode;
    int FAutoHintParameterDelay = 2000; ///< milliseconds of rest before the hint comes by itself

    /// May answer for a word with its hint text; sets `handled` then.
    std::function<void(const string& word, string& hint, bool& handled)> OnGetParameterHint;
    std::function<void(const string& word, const string& parameter)> OnRetrievedParameterHint;

    [[nodiscard]] TAutoHintParameters AutoHintParameters() const { return FAutoHintParameters; }
    /// Hides the hint, too.
    void SetAutoHintParameters(TAutoHintParameters mode);
    void AllowAutoHint(bool allow) { FAllowAutoHint = allow; }
    /// The control has rested for the delay.
    void RestTimerFired();

    void ShowParameterHint();
    void HideHint();
    [[nodiscard]] bool Visible() const { return FVisible; }
    [[nodiscard]] bool Showing() const { return FHintShowing; }

protected:
    /// For languages that find the call themselves: `found` with `shown` false hides the hint.
    virtual void FindCall(string& word, int& paramCount, bool& found, bool& shown);

private:
    [[nodiscard]] string HintFor(string word) const;
    [[nodiscard]] string Comparable(const string& text) const;
    void Split(string text, int paramCount);
    void Place();

    TMemoState& FMemo;
    TAutoHintParameters FAutoHintParameters = hpAuto;
    TAdvHintForm FHintForm;
    bool FAllowAutoHint = true;
    bool FVisible = false;
    bool FHintShowing = false; // the hint is being shown: losing the focus closes nothing
};
