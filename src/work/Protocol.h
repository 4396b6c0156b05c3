#pragma once
// What the agent and a worker say to each other (work/Channel.h carries it). Each message names its kind
// under "kind".
//
// To the worker:   Lists  {text}                the action lists from now on
//                  Work   {work..., order, memory, permit}  with descriptors: the source's, perhaps the
//                  result's, and
//                                               where it is handed over ahead of time, at that place, an
//                                               event counter: whoever reads it first has the work
//                  Result {} or {error, text}   with the result's, which was asked for, or why not
//                  Answer {answer} or {text}    what a user answered
//                  Numbers {first}, or {text, away}  the first of those that were asked for, or why not, and
//                                               whether that may pass
// To the agent:    Ready  {text}                the sandbox in force
//                  Log, Hint {text}
//                  Open   {}                    asks for a file for the result
//                  TakeNumbers {text, count}    asks for so many of the series
//                  Box    {text, caption, flags}, Password {text}: ask the user
//                  Done   {outcome..., order}   of the work with that number
#include "work/FileWork.h"

#include <QCborMap>

enum class TMessageKind {
    Unknown,
    Lists,
    Work,
    Result,
    Answer,
    Numbers,
    Ready,
    Log,
    Hint,
    Open,
    TakeNumbers,
    Box,
    Password,
    Done
};

[[nodiscard]] QCborMap NewMessage(TMessageKind kind);
[[nodiscard]] QCborMap TextMessage(TMessageKind kind, const string& text);
[[nodiscard]] TMessageKind KindOf(const QCborMap& message);

/// All but the descriptor.
void Put(QCborMap& message, const TFileWork& work);
[[nodiscard]] TFileWork WorkOf(const QCborMap& message);
void Put(QCborMap& message, const TOutcome& outcome);
/// What no worker of ours sends comes back as a failure.
[[nodiscard]] TOutcome OutcomeOf(const QCborMap& message);
