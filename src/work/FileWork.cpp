#include "work/FileWork.h"

#include "actions/ActionList.h"
#include "base/Journal.h"
#include "base/Reflection.h"
#include "engine/Document.h"
#include "scripting/Occasion.h"
#include "scripting/ParkedDocuments.h"
#include "work/Surroundings.h"

#include <QScopeGuard>

namespace {

TOutcome Ended(TOutcomeState state, TReasonCode code, const string& text) {
    TOutcome outcome;
    outcome.State = state;
    outcome.Reasons.append({code, {}, text});
    return outcome;
}

/// "action 3, AddWatermark": counted from 1, by the class's name without its common beginning.
string StepName(int index, const TPDFAction& action) {
    const string name = Reflection::ClassName(*action.metaObject());
    return QStringLiteral("action %1, %2")
        .arg(index + 1)
        .arg(name.startsWith(u"TPDFAction") ? name.mid(10) : name);
}

/// False if a stop cut the actions short. What a stop does to an interruptible action can't be told from what
/// it would have done, so such a one counts as cut short, too.
bool RunActions(const TFileWork& work, TZQPDFDocument& document, TWorkReporter& reporter, string& step) {
    const TScriptOccasion occasion(work.Source, work.ActionName);
    for (int i = 0; i < work.Actions->Count(); ++i) {
        TPDFAction& action = *(*work.Actions)[i];
        if (reporter.Terminated())
            return false;
        step = StepName(i, action);
        action.Execute(document);
        if (reporter.Terminated() && action.IsInterruptible())
            return false;
    }
    step.clear();
    return true;
}

/// Also of a file that fails: the run log has no words for them.
void JournalWarnings(const TFileWork& work, const TZQPDFDocument& document) noexcept try {
    for (const TPDFWarning& warning : document.Warnings())
        JournalLine(QStringLiteral("\"%1\": %2: %3")
                        .arg(work.Source, QLatin1String(CodeOf(warning.Kind)), warning.Text));
} catch (const std::exception& e) {
    JournalLine(MessageOf(e));
}

void TakeWarnings(const TZQPDFDocument& document, TOutcome& outcome) {
    for (const TPDFWarning& warning : document.Warnings())
        outcome.Reasons.append({ReasonOf(warning.Kind), {}, warning.Text});
    if (!outcome.Reasons.isEmpty())
        outcome.State = TOutcomeState::DoneWithWarnings;
}

} // namespace

TWorked WorkOnFile(const TFileWork& work, TWorkReporter& reporter, string& step) {
    const bool isProtected =
        AmongSurroundings([&] { return TPDFDocument::IsPasswordProtected(work.Source, work.Descriptor); });
    if (isProtected) {
        const string text = QStringLiteral("\"%1\" is password protected, FAILURE.").arg(work.Source);
        reporter.Log(text);
        return {Ended(TOutcomeState::Waiting, TReasonCode::InputProtected, text), nullptr};
    }
    auto document = std::make_unique<TZQPDFDocument>(nullptr);
    const TParkOnException park(document);
    AmongSurroundings([&] { document->OpenFromFile(work.Source, /*password=*/{}, work.Descriptor); });
    const auto told = qScopeGuard([&] {
        if (document != nullptr)
            JournalWarnings(work, *document);
    });
    if (work.Actions == nullptr) {
        const string text =
            QStringLiteral("Excution failed. Invalid action specified \"%1\".").arg(work.ActionName);
        reporter.Log(text);
        return {Ended(TOutcomeState::DoneWithWarnings, TReasonCode::ListUnknown, text), nullptr};
    }
    // Written before the actions run and whatever they do: that is the line's fixed wording.
    reporter.Log(QStringLiteral("Executing \"%1\" on %2, SUCCESS.").arg(work.ActionName, work.Dest()));
    reporter.Hint(QStringLiteral("Executing \"%1\" on \"%2\".").arg(work.ActionName, work.Dest()));
    // Made first: where nothing can be written, nothing is worked on in vain.
    TWorked worked;
    worked.Result =
        AmongSurroundings([&] { return std::make_unique<TPartFile>(work.DestFolder, work.DestName); });
    if (!RunActions(work, *document, reporter, step)) {
        Park(std::move(document));
        return {Ended(TOutcomeState::Stopped, TReasonCode::Other, QStringLiteral("The agent stops.")),
                nullptr};
    }
    AmongSurroundings([&] {
        document->WriteTo(*worked.Result);
        worked.Result->Flush();
    });
    worked.Outcome.Pages = document->GetPageCount();
    TakeWarnings(*document, worked.Outcome);
    return worked;
}
