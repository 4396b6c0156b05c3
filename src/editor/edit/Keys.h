#pragma once
// What keys do.
#include "editor/place/MemoView.h"

class TMemoEditor;

/// Keys by the numbers that Qt gives them; letters are their upper case. Control characters (1 to 31) are
/// keys of their own.
enum TMemoKey : int {
    keyCtrlA = 1,
    keyCtrlC = 3,
    keyBackspaceChar = 8,
    keyTabChar = 9,
    keyEnterChar = 13,
    keyCtrlV = 22,
    keyCtrlX = 24,
    keyEscapeChar = 27,
    keySpace = 0x20,
    keyF = 'F',
    keyH = 'H',
    keyY = 'Y',
    keyZ = 'Z',
    keyEscape = 0x01000000,
    keyTab = 0x01000001,
    keyBacktab = 0x01000002,
    keyBackspace = 0x01000003,
    keyReturn = 0x01000004,
    keyEnter = 0x01000005,
    keyInsert = 0x01000006,
    keyDelete = 0x01000007,
    keyHome = 0x01000010,
    keyEnd = 0x01000011,
    keyLeft = 0x01000012,
    keyUp = 0x01000013,
    keyRight = 0x01000014,
    keyDown = 0x01000015,
    keyPageUp = 0x01000016,
    keyPageDown = 0x01000017,
    keyShift = 0x01000020,
    keyControl = 0x01000021,
    keyMeta = 0x01000022,
    keyAlt = 0x01000023
};

class TMemoKeys {
public:
    explicit TMemoKeys(TMemoEditor& memo) : FMemo(memo) {}

    /// A key went down. Enter and the Ctrl letters act when their character comes (TMemoTyping::KeyPress),
    /// Backspace and Tab act here.
    void KeyDown(int key, TShiftState shift);
    /// Takes keys and control characters.
    void ExecuteKey(int key, TShiftState shift);

private:
    [[nodiscard]] bool Shortcut(int key, TShiftState shift);
    void Dispatch(int key, TShiftState shift);
    void Tab(TShiftState shift);
    [[nodiscard]] bool ReadOnlyKey(int key, TShiftState shift);
    void EditKey(int key, TShiftState shift);
    void Erase(TShiftState shift);
    void Enter();
    void Remove(TShiftState shift);
    [[nodiscard]] bool OpensFold(int direction);
    void ToggleOverwrite();
    void MarkModified();

    TMemoEditor& FMemo;
};
