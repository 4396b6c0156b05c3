#pragma once
// Steps back and forth in the history, as the window takes them.
#include <functional>

class TMemoEditor;

enum class THistoryStep { Undo, Redo };

/// Runs `work`, which may undo or redo one step of the control's history. Entries are replayed by typing:
/// overwriting is off meanwhile, or it would overwrite what the edit stood before. A history that has lost
/// the half of a step is emptied, where the control raises.
void InHistory(TMemoEditor& memo, THistoryStep step, const std::function<void()>& work);
