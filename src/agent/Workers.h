#pragma once
// The workers: processes that work on files for the agent, so that all processors work, and a file that
// crashes, hangs or eats memory harms itself alone.
//
// Files of lists without scripts go to any worker. What scripts keep between files is kept, so all files of
// lists with a script go to one worker of their own, in order.
//
// A worker whose files take but a moment has the next one before it is done with the last, so that it needn't
// wait for the agent. One that is at work for longer than expected gives back what it hasn't begun.
#include "agent/RunHost.h"
#include "agent/WorkPlace.h"
#include "platform/Descriptor.h"
#include "work/Channel.h"
#include "work/Sandbox.h"

#include <deque>

class TWorkerProcess;

struct TWorkerSettings {
    int Count = 0;         ///< of workers for lists without scripts; 0: the agent works itself
    int WorkSeconds = 600; ///< for one file, where its folder doesn't say
    int WorkMemory = 0;    ///< in MB, likewise; 0: half of the machine's, divided by the workers
    string Program = {};   ///< path
};

class TWorkers : public TWorkPlace {
public:
    /// Starts none yet. Raises Exception where the program can't be opened.
    TWorkers(const TWorkerSettings& settings, const TRunHost& host, const std::function<bool()>& terminated);
    ~TWorkers() override;

    [[nodiscard]] bool IsParallel() const override { return true; }
    void SetLists(TPDFActionManager& lists) override;
    [[nodiscard]] bool HasRoom(const TPDFActionList* list) override;
    void Begin(TJob& job) override;
    void WaitForNews() override;
    /// Lets go of workers that have had nothing to do for a minute, but for the one with what scripts keep.
    void Rest() override;

private:
    struct TWorker;
    enum class TEnding { Died, TimedOut, TookMemory, Stopped };

    [[nodiscard]] TReach ReachFor(const TPDFActionList* list);
    [[nodiscard]] qsizetype Busy(bool scripts) const;
    [[nodiscard]] bool MayHaveAnother(const TWorker& worker, TReach reach) const;
    [[nodiscard]] TWorker& Idle(TReach reach);
    [[nodiscard]] TWorker& Next(TReach reach);
    void HandOver(TWorker& worker, TJob& job);
    void BeginFirst(TWorker& worker, TJob& job, qint64 order);
    static void PrepareResult(TJob& job);
    [[nodiscard]] int SecondsFor(const TJob& job) const;
    [[nodiscard]] int MemoryFor(const TJob& job) const;
    [[nodiscard]] bool TakesTooMuch(TWorker& worker) const;
    [[nodiscard]] int MillisecondsToWait() const;
    void TellStop();
    void EndOverdue();
    void TakeBack(TWorker& worker);
    void BeginBack();
    void Hear(TWorker& worker);
    void Handle(TWorker& worker, const TChannelMessage& message);
    void SendResultFile(TWorker& worker);
    static void GiveNumbers(TWorker& worker, const QCborMap& question);
    void AskUser(TWorker& worker, const QCborMap& question);
    void TakeOutcome(TWorker& worker, TOutcome outcome);
    void Release(TWorker& worker);
    void End(TWorker& worker, TEnding ending);
    bool NoteDeath(TJob& job, int status, bool began);
    void RetryLost();
    void ForgetEnded();
    void TellWorkers();
    [[nodiscard]] qint64 Now() const;

    TWorkerSettings FSettings;
    TRunHost FHost;
    const std::function<bool()>& FTerminated;
    TDescriptor FProgram; // of this start's version, whatever lies under its name later
    TPDFActionManager* FLists = nullptr;
    string FXml;      // of the lists
    int FVersion = 0; // of the lists
    QHash<const TPDFActionList*, TReach> FReaches;
    std::vector<std::unique_ptr<TWorker>> FWorkers;
    std::deque<TJob*> FBack; // that a worker had, and hasn't begun
    std::deque<TJob*> FLost; // whose worker somebody else killed: once more, alone
    TJob* FAlone = nullptr;  // the one of them that is at work
    qint64 FOrders = 0;      // numbers of what was handed over
    bool FStopTold = false;
    qint64 FStopLimit = 0;
};
