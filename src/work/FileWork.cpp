#include "work/FileWork.h"

#include "actions/ActionList.h"
#include "actions/DocumentScriptEngine.h"
#include "actions/JavaScriptAction.h"
#include "base/Interrupt.h"
#include "base/Journal.h"
#include "base/Reflection.h"
#include "engine/document/Document.h"
#include "engine/pdf/Errors.h"
#include "scripting/Occasion.h"
#include "scripting/ParkedDocuments.h"
#include "work/Surroundings.h"

#include <QScopeGuard>

namespace {

/// A folder's policy fails a file whose work ended as such.
class EPolicy : public Exception {
public:
    explicit EPolicy(TReason reason) : Exception(reason.Text), FReason(std::move(reason)) {}
    [[nodiscard]] const TReason& Reason() const { return FReason; }

private:
    TReason FReason;
};

/// How far the work has come, for the reason of a failure.
struct TProgress {
    TReasonCode Blame = TReasonCode::InputUnreadable; ///< of what raises now
    string Step;                                      ///< the action at work
    QList<TReason> Reasons;                           ///< what was lived with
};

TOutcome Ended(TOutcomeState state, const TReason& reason) {
    TOutcome outcome;
    outcome.State = state;
    outcome.Reasons.append(reason);
    return outcome;
}

/// "action 3, AddWatermark": counted from 1, by the class's name without its common beginning.
string StepName(int index, const TPDFAction& action) {
    const string name = Reflection::ClassName(*action.metaObject());
    return QStringLiteral("action %1, %2")
        .arg(index + 1)
        .arg(name.startsWith(u"TPDFAction") ? name.mid(10) : name);
}

string WithoutFullStop(const string& text) {
    return text.endsWith(u'.') ? text.chopped(1) : text;
}

string ScriptFailure() {
    const TJSMessage& message = GetDocumentScripting().LastMessage();
    return QStringLiteral("%1:%2:%3: %4")
        .arg(message.ScriptName)
        .arg(message.Line)
        .arg(message.Column)
        .arg(WithoutFullStop(message.Text));
}

bool Fails(TPDFFolderPolicy::TOnTrouble answer) {
    return answer == TPDFFolderPolicy::TOnTrouble::Fail;
}

/// Whether a folder's policy has something to say of it, and says no. A repaired table loses nothing.
bool IsRefused(const TPDFFolderPolicy& policy, TReasonCode code) {
    switch (code) {
    case TReasonCode::DamagePagesLost:
    case TReasonCode::DamageContent:
        return Fails(policy.OnDamage);
    case TReasonCode::SignatureInvalidated:
        return Fails(policy.OnSignature);
    case TReasonCode::PermissionRefused:
        return Fails(policy.OnRefused);
    case TReasonCode::ScriptError:
        return Fails(policy.OnScriptError);
    default:
        return false;
    }
}

void Note(const TFileWork& work, TProgress& progress, const TReason& reason) {
    if (IsRefused(work.Policy, reason.Code))
        throw EPolicy(reason);
    progress.Reasons.append(reason);
}

/// False if a stop cut the actions short. What a stop does to an interruptible action can't be told from what
/// it would have done, so such a one counts as cut short, too.
bool RunActions(const TFileWork& work, TPDFActions& actions, TZQPDFDocument& document, TWorkHost& host,
                const TGivenNumbers& numbers, TProgress& progress) {
    const TScriptOccasion occasion(work.Source, work.ActionName);
    for (int i = 0; i < actions.Count(); ++i) {
        TPDFAction& action = *actions[i];
        if (host.Terminated())
            return false;
        progress.Step = StepName(i, action);
        const Cardinal result = action.Execute(document);
        numbers.Check();
        if (host.Terminated() && action.IsInterruptible())
            return false;
        if (result != 0 && qobject_cast<TPDFActionJavaScript*>(&action) != nullptr)
            Note(work, progress, {TReasonCode::ScriptError, progress.Step, ScriptFailure()});
    }
    progress.Step.clear();
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

void NoteWarnings(const TFileWork& work, const TZQPDFDocument& document, TProgress& progress) {
    for (const TPDFWarning& warning : document.Warnings())
        Note(work, progress, {ReasonOf(warning.Kind), {}, WithoutFullStop(warning.Text)});
}

/// Raises EPolicy before anything is written in vain.
void RequireAccepted(const TFileWork& work, const TZQPDFDocument& document) {
    TProgress unused;
    NoteWarnings(work, document, unused);
}

QList<TNumberRun> NumbersOn(TZQPDFPages& pages, const TGivenNumbers& numbers) {
    QHash<quint64, qint64> places;
    for (int i = 0; i < pages.Count(); ++i)
        places.insert(pages.getItem(i).Id(), i + 1);
    return numbers.Runs([&](quint64 page) { return places.value(page); });
}

TReasonCode BlameOf(const std::exception& e, const TProgress& progress) {
    const auto* error = dynamic_cast<const EPDFError*>(&e);
    const bool opening = progress.Blame == TReasonCode::InputUnreadable;
    return opening && error != nullptr && error->Kind() == TPDFErrorKind::NotPdf ? TReasonCode::InputNotPdf
                                                                                 : progress.Blame;
}

TOutcome Work(const TFileWork& work, TPDFActions* actions, TWorkHost& host, TProgress& progress) {
    TTestedFile tested;
    const bool isProtected = AmongSurroundings(
        [&] { return TPDFDocument::IsPasswordProtected(work.Source, work.Descriptor, &tested); });
    if (isProtected) {
        const string text = QStringLiteral("\"%1\" is password protected, FAILURE.").arg(work.Source);
        host.Log(text);
        return Ended(TOutcomeState::Waiting, {TReasonCode::InputProtected, {}, text});
    }
    auto document = std::make_unique<TZQPDFDocument>(nullptr);
    const TParkOnException park(document);
    AmongSurroundings(
        [&] { document->OpenFromFile(work.Source, /*password=*/{}, work.Descriptor, std::move(tested)); });
    const auto told = qScopeGuard([&] {
        if (document != nullptr)
            JournalWarnings(work, *document);
    });
    if (actions == nullptr) {
        const string text =
            QStringLiteral("Excution failed. Invalid action specified \"%1\".").arg(work.ActionName);
        host.Log(text);
        return Ended(TOutcomeState::DoneWithWarnings, {TReasonCode::ListUnknown, {}, text});
    }
    // Written before the actions run and whatever they do: that is the line's fixed wording.
    host.Log(ExecutingLine(work));
    host.Hint(QStringLiteral("Executing \"%1\" on \"%2\".").arg(work.ActionName, work.Dest));
    // Made first: where nothing can be written, nothing is worked on in vain.
    TOutputFile& result = AmongSurroundings([&]() -> TOutputFile& { return host.OpenResult(); });
    progress.Blame = TReasonCode::ActionRaised;
    const TGivenNumbers numbers(
        [&host](const string& series, qint64 count) { return host.TakeNumbers(series, count); });
    if (!RunActions(work, *actions, *document, host, numbers, progress)) {
        Park(std::move(document));
        return Ended(TOutcomeState::Stopped,
                     {TReasonCode::Other, progress.Step, QStringLiteral("The agent stops.")});
    }
    progress.Blame = TReasonCode::Other;
    RequireAccepted(work, *document);
    AmongSurroundings([&] {
        document->WriteTo(result);
        result.Flush();
    });
    NoteWarnings(work, *document, progress);
    TOutcome outcome;
    outcome.Written = true;
    outcome.Pages = document->GetPageCount();
    if (!numbers.IsEmpty())
        outcome.Numbers = NumbersOn(document->Pages(), numbers);
    outcome.Reasons = progress.Reasons;
    outcome.State = outcome.Reasons.isEmpty() ? TOutcomeState::Done : TOutcomeState::DoneWithWarnings;
    return outcome;
}

TOutcome WaitsForNumbers(const ENumbersAway& e, const TProgress& progress) {
    TOutcome outcome =
        Ended(TOutcomeState::Waiting, {TReasonCode::LedgerUnusable, progress.Step, e.Message()});
    outcome.Error = LedgerTrouble;
    return outcome;
}

/// What fails while the agent stops may fail for that; the next start sees.
TOutcome Failed(TWorkHost& host, const TReason& reason) {
    return Ended(host.Terminated() ? TOutcomeState::Stopped : TOutcomeState::Failed, reason);
}

} // namespace

string ExecutingLine(const TFileWork& work) {
    return QStringLiteral("Executing \"%1\" on %2, SUCCESS.").arg(work.ActionName, work.Dest);
}

qint64 TWorkHost::TakeNumbers(const string& series, qint64 /*count*/) {
    throw Exception(QStringLiteral("Nobody is there to give numbers of the series \"%1\"").arg(series));
}

string MemoryText() {
    return QStringLiteral("The work takes more memory than it may have");
}

TOutcome WorkOnFile(const TFileWork& work, TPDFActions* actions, TWorkHost& host) {
    TProgress progress;
    try {
        return Work(work, actions, host, progress);
    } catch (const ESurroundings& e) {
        TOutcome outcome =
            Ended(TOutcomeState::Waiting, {ReasonOfTrouble(e.Error(), e.OfReading()), {}, e.Message()});
        outcome.Error = e.Error();
        outcome.OfSource = e.OfReading();
        return outcome;
    } catch (const ENumbersAway& e) {
        return WaitsForNumbers(e, progress);
    } catch (const EPolicy& e) {
        return Failed(host, e.Reason());
    } catch (const std::bad_alloc&) {
        return Failed(host, {TReasonCode::WorkerMemory, progress.Step, MemoryText()});
    } catch (const std::exception& e) {
        return Failed(host, {BlameOf(e, progress), progress.Step, MessageOf(e)});
    }
}
