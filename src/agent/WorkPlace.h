#pragma once
// Where files are worked on: in the agent's own process, one after the other, or by workers.
#include "agent/Job.h"

class TPDFActionManager;
class TWorkMarks;

class TWorkPlace {
public:
    virtual ~TWorkPlace() = default;
    /// Whether files of several folders are at work at a time.
    [[nodiscard]] virtual bool IsParallel() const = 0;
    /// The lists that jobs from now on name; nothing is at work. They outlive the jobs.
    virtual void SetLists(TPDFActionManager& lists) = 0;
    /// Whether one more file for that list, or for no list, can be begun now.
    [[nodiscard]] virtual bool HasRoom(const TPDFActionList* list) = 0;
    /// Has the job worked on; the end is its outcome. The job must live until then.
    virtual void Begin(TJob& job) = 0;
    /// Waits until a job has ended, or something else that is worth a look has happened, for a second at
    /// most. Ends all work early once the run is to end.
    virtual void WaitForNews() = 0;
    /// Between passes: lets go of what hasn't been needed for long.
    virtual void Rest() {}
};

/// Begin() is the work. The notes say which file is at work while it is.
class TWorkHere : public TWorkPlace {
public:
    explicit TWorkHere(TWorkMarks& marks) : FMarks(marks) {}
    [[nodiscard]] bool IsParallel() const override { return false; }
    void SetLists(TPDFActionManager& /*lists*/) override {}
    [[nodiscard]] bool HasRoom(const TPDFActionList* /*list*/) override { return true; }
    void Begin(TJob& job) override;
    void WaitForNews() override {}

private:
    TWorkMarks& FMarks;
};
