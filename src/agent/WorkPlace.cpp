#include "agent/WorkPlace.h"

#include "actions/ActionList.h"
#include "agent/WorkMarks.h"

#include <QScopeGuard>

void TWorkHere::Begin(TJob& job) {
    FMarks.Begin(job.Work.Source, job.Source->Opened());
    const auto ended = qScopeGuard([this] { FMarks.End(); });
    job.Outcome = WorkOnFile(job.Work, job.List != nullptr ? job.List->FActions : nullptr, job);
}
