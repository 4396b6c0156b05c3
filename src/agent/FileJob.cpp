#include "agent/FileJob.h"

#include "actions/ActionList.h"
#include "base/FileCopy.h"
#include "base/Interrupt.h"
#include "base/Journal.h"
#include "engine/Document.h"
#include "scripting/ParkedDocuments.h"

namespace {

void RunActions(const TFileJob& job, TZQPDFDocument& document, TJobReporter& reporter) {
    // Written before the actions run and whatever they do: that is the line's fixed wording.
    reporter.Log(QStringLiteral("Executing \"%1\" on %2, SUCCESS.").arg(job.ActionName, job.Dest));
    reporter.Hint(QStringLiteral("Executing \"%1\" on \"%2\".").arg(job.ActionName, job.Dest));
    for (int i = 0; i < job.Actions->Count(); ++i) {
        (*job.Actions)[i]->Execute(document);
        if (reporter.Terminated())
            break;
    }
    // A stop saves too: the work that was done is kept, and the source is served again.
    document.SaveToPath(job.Dest, /*keepSource=*/true, /*takeName=*/false);
    reporter.Log(QStringLiteral("Saving \"%1\", SUCCESS.").arg(job.Dest));
}

/// The run log has no words for them.
void TellWarnings(const TFileJob& job, const TZQPDFDocument& document) {
    for (const TPDFWarning& warning : document.Warnings())
        JournalLine(QStringLiteral("\"%1\": %2: %3")
                        .arg(job.Source, QLatin1String(CodeOf(warning.Kind)), warning.Text));
}

} // namespace

TJobOutcome WorkOnFile(const TFileJob& job, const TSourceFile& source, TJobReporter& reporter) try {
    if (TPDFDocument::IsPasswordProtected(job.Source)) {
        reporter.Log(QStringLiteral("\"%1\" is password protected, FAILURE.").arg(job.Source));
        return TJobOutcome::Protected;
    }
    auto document = std::make_unique<TZQPDFDocument>(nullptr);
    const TParkOnException park(document);
    document->OpenFromFile(job.Source, /*password=*/{});
    if (!source.IsUnchanged())
        return TJobOutcome::Replaced;
    if (job.Actions == nullptr)
        reporter.Log(QStringLiteral("Excution failed. Invalid action specified \"%1\".").arg(job.ActionName));
    else
        RunActions(job, *document, reporter);
    TellWarnings(job, *document);
    if (!reporter.Terminated())
        return TJobOutcome::Worked;
    Park(std::move(document));
    return TJobOutcome::Stopped;
} catch (const EInterrupted&) { // which says nothing of the file
    return TJobOutcome::Stopped;
}
