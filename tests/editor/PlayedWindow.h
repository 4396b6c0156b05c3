#pragma once
// A test in the place of the windows and the timer of completion and hints.
#include "editor/assist/Completion.h"

/// Characters are 10 wide, bold ones 12. The control's corner is at (100, 200) of a screen of 2000 by 600.
struct TPlayedWindow : TAssistWindow {
    int Delay = -1; // of the running timer
    bool ListShown = false, HintShown = false;
    TMemoRect List;
    TAdvHintForm Hint;

    int Width(const TMemoFont&, bool bold, QStringView text) const override {
        return int(text.size()) * (bold ? 12 : 10);
    }
    int Height(const TMemoFont&, QStringView) const override { return 14; }
    int ScrollBarWidth() const override { return 16; }
    TMemoPoint ToScreen(TMemoPoint p) const override { return {p.X + 100, p.Y + 200}; }
    int ScreenWidth() const override { return 2000; }
    int ScreenHeight() const override { return 600; }
    int GutterWidth() const override { return 40; }
    void ShowList(const TAutoCompletionListBox&, const TMemoRect& place) override {
        ListShown = true;
        List = place;
    }
    void UpdateList(const TAutoCompletionListBox&, int width) override { List.Width = width; }
    TMemoRect ListPlace() const override { return List; }
    void HideList() override { ListShown = false; }
    void ShowHint(const TAdvHintForm& hint) override {
        HintShown = true;
        Hint = hint;
    }
    void HideHint() override { HintShown = false; }
    void StartTimer(int delay) override { Delay = delay; }
    void StopTimer() override { Delay = -1; }
};
