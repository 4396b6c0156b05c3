#include "agent/Workers.h"

#include "actions/ActionManager.h"
#include "actions/JavaScriptAction.h"
#include "agent/AgentStatus.h"
#include "agent/WorkerProcess.h"
#include "base/Exceptions.h"
#include "base/GivenNumbers.h"
#include "base/Paths.h"
#include "platform/MessageBox.h"
#include "platform/ProcessLimits.h"
#include "platform/StopSignal.h"
#include "scripting/AskForPassword.h"
#include "work/Protocol.h"
#include "xml/Xmlserial.h"

#include <QBuffer>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <future>
#include <limits>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/wait.h>

namespace {

constexpr qint64 Never = std::numeric_limits<qint64>::max();
constexpr qint64 RestsAfter = 60'000; // ms
constexpr qint64 StopTakes = 4'000;   // ms
constexpr qint64 LongestWait = 1'000; // ms
constexpr qint64 Moment = 50;         // ms
constexpr qint64 LooksEvery = 1'000;  // ms, at the memory of long work
constexpr qint64 Itself = 128;      // MB that a worker may hold beside its data: programs, libraries, stacks
constexpr qint64 LeastMemory = 512; // MB
constexpr int MostLines = 8;        // that one file has in the run log; no work of ours writes more

string XmlOf(const TPDFActionManager& lists) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    XMLSerialize(lists, buffer, QString());
    return QString::fromUtf8(buffer.data());
}

int DefaultMemory(int workers) {
    const qint64 megabytes = qint64(::sysconf(_SC_PHYS_PAGES)) * ::sysconf(_SC_PAGESIZE) >> 20;
    return int(std::max(LeastMemory, megabytes / 2 / std::max(workers, 1)));
}

TOutcome OutcomeWith(TOutcomeState state, TReasonCode code, const string& text) {
    TOutcome outcome;
    outcome.State = state;
    outcome.Reasons.append({code, {}, text});
    return outcome;
}

TOutcome Stopped() {
    return OutcomeWith(TOutcomeState::Stopped, TReasonCode::Other, QStringLiteral("The agent stops."));
}

/// A worker that can't even begin isn't the file's fault.
TOutcome NoWorker(const string& text, int error) {
    TOutcome outcome = OutcomeWith(TOutcomeState::Waiting, TReasonCode::Other, text);
    outcome.Error = error;
    return outcome;
}

} // namespace

struct TWorkers::TWorker {
    std::unique_ptr<TWorkerProcess> Process;
    TReach Reach = TReach::Nothing;
    bool Ready = false;      // has said a word
    string Sandbox = {};     // as it says itself
    int Version = 0;         // of the lists that it knows
    TJob* Job = nullptr;     // at work
    qint64 Order = 0;        // its number
    qint64 Begun = 0;        // that work
    qint64 Looked = 0;       // at its memory, last
    bool Quick = false;      // the work before took but a moment
    TJob* Ahead = nullptr;   // handed over already, to be begun when that work ends
    qint64 AheadOrder = 0;   // its number
    TDescriptor Permit = {}; // to begin it: whoever reads this first has the job
    qint64 Limit = Never;    // of the work, by the steady clock
    qint64 Left = 0;         // of the time for the work, while a user is asked
    int Lines = 0;           // of the run log, for the job
    qint64 IdleSince = 0;
    std::shared_ptr<std::atomic<bool>> Answered = {}; // set while a user is asked: he has answered
    std::future<void> Question = {};

    [[nodiscard]] bool Ended() const { return Process == nullptr; }
};

TWorkers::TWorkers(const TWorkerSettings& settings, const TRunHost& host,
                   const std::function<bool()>& terminated)
    : FSettings(settings), FHost(host), FTerminated(terminated),
      FProgram(::open(PathBytes(settings.Program).constData(), O_RDONLY | O_CLOEXEC)) {
    if (!FProgram)
        throw EFileError(QStringLiteral("open"), settings.Program, errno);
    if (FSettings.WorkSeconds <= 0)
        FSettings.WorkSeconds = TWorkerSettings().WorkSeconds;
    if (FSettings.WorkMemory <= 0)
        FSettings.WorkMemory = DefaultMemory(FSettings.Count);
}

TWorkers::~TWorkers() = default;

qint64 TWorkers::Now() const {
    return FHost.Clock.Steady();
}

void TWorkers::SetLists(TPDFActionManager& lists) {
    if (FLists == &lists)
        return;
    FLists = &lists;
    FXml = XmlOf(lists);
    FReaches.clear();
    ++FVersion;
}

TReach TWorkers::ReachFor(const TPDFActionList* list) {
    const auto known = FReaches.constFind(list);
    return known != FReaches.constEnd() ? *known : *FReaches.insert(list, ReachOf(list));
}

qsizetype TWorkers::Busy(bool scripts) const {
    return std::count_if(FWorkers.begin(), FWorkers.end(), [&](const auto& worker) {
        return worker->Job != nullptr && (worker->Reach == TReach::Programs) == scripts;
    });
}

bool TWorkers::MayHaveAnother(const TWorker& worker, TReach reach) const {
    return !worker.Ended() && worker.Reach == reach && worker.Job != nullptr && worker.Ahead == nullptr &&
           worker.Quick && Now() - worker.Begun < Moment;
}

bool TWorkers::HasRoom(const TPDFActionList* list) {
    if (!FBack.empty() || !FLost.empty() || FAlone != nullptr)
        return false;
    const TReach reach = ReachFor(list);
    if (reach == TReach::Programs)
        return Busy(true) == 0;
    return Busy(false) < FSettings.Count ||
           std::any_of(FWorkers.begin(), FWorkers.end(),
                       [&](const auto& worker) { return MayHaveAnother(*worker, reach); });
}

TWorkers::TWorker& TWorkers::Idle(TReach reach) {
    const auto found = std::find_if(FWorkers.begin(), FWorkers.end(), [&](const auto& worker) {
        return !worker->Ended() && worker->Job == nullptr && worker->Reach == reach;
    });
    if (found != FWorkers.end())
        return **found;
    auto worker = std::make_unique<TWorker>();
    worker->Process = std::make_unique<TWorkerProcess>(FProgram, reach);
    worker->Reach = reach;
    return *FWorkers.emplace_back(std::move(worker));
}

/// Where all are at work, the one that began last.
TWorkers::TWorker& TWorkers::Next(TReach reach) {
    TWorker* next = nullptr;
    if (reach != TReach::Programs && Busy(false) >= FSettings.Count)
        for (const auto& worker : FWorkers)
            if (MayHaveAnother(*worker, reach) && (next == nullptr || worker->Begun > next->Begun))
                next = worker.get();
    return next != nullptr ? *next : Idle(reach);
}

int TWorkers::SecondsFor(const TJob& job) const {
    return job.Work.Policy.WorkSeconds > 0 ? job.Work.Policy.WorkSeconds : FSettings.WorkSeconds;
}

int TWorkers::MemoryFor(const TJob& job) const {
    return job.Work.Policy.WorkMemory > 0 ? job.Work.Policy.WorkMemory : FSettings.WorkMemory;
}

void TWorkers::Begin(TJob& job) {
    try {
        HandOver(Next(ReachFor(job.List)), job);
    } catch (const EFileError& e) {
        job.Outcome = NoWorker(e.Message(), e.Error());
    }
}

void TWorkers::HandOver(TWorker& worker, TJob& job) {
    TChannel& channel = *worker.Process->Channel();
    bool sent = true;
    if (worker.Version != FVersion)
        sent = channel.Send(TextMessage(TMessageKind::Lists, FXml));
    worker.Version = FVersion;
    QCborMap order = NewMessage(TMessageKind::Work);
    Put(order, job.Work);
    order[QLatin1String("order")] = ++FOrders;
    order[QLatin1String("memory")] = MemoryFor(job);
    PrepareResult(job);
    QList<int> files{job.Work.Descriptor};
    if (job.Result != nullptr)
        files.append(job.Result->Descriptor());
    if (worker.Job == nullptr) {
        BeginFirst(worker, job, FOrders);
    } else {
        TDescriptor permit(::eventfd(1, EFD_CLOEXEC | EFD_NONBLOCK));
        if (!permit)
            throw EFileError(QStringLiteral("make"), QStringLiteral("permit"), errno);
        order[QLatin1String("permit")] = files.size();
        files.append(permit.Number());
        worker.Ahead = &job;
        worker.AheadOrder = FOrders;
        worker.Permit = std::move(permit);
    }
    if (!sent || !channel.Send(order, files))
        End(worker, TEnding::Died);
}

void TWorkers::BeginFirst(TWorker& worker, TJob& job, qint64 order) {
    worker.Job = &job;
    worker.Order = order;
    worker.Begun = worker.Looked = Now();
    worker.Limit = worker.Begun + qint64(SecondsFor(job)) * 1000;
    worker.Lines = 0;
}

/// Handed over with the work where one will be wanted: that saves asking for it. Where it can't be made, the
/// worker, which asks, hears why.
void TWorkers::PrepareResult(TJob& job) {
    if (job.List == nullptr || job.WasProtected)
        return;
    try {
        (void)job.OpenResult();
    } catch (const EFileError&) {
        job.Result.reset();
    }
}

void TWorkers::WaitForNews() {
    RetryLost();
    BeginBack();
    TellWorkers();
    std::vector<pollfd> waited;
    std::vector<TWorker*> waiting;
    for (const auto& worker : FWorkers)
        if (!worker->Ended()) {
            waited.push_back({worker->Process->Channel()->Descriptor(), POLLIN, 0});
            waiting.push_back(worker.get());
        }
    if (!FStopTold)
        waited.push_back({StopSignal().Descriptor(), POLLIN, 0});
    const auto isOver = [](const auto& worker) { return worker->Job != nullptr && worker->Job->Outcome; };
    if (std::none_of(FWorkers.begin(), FWorkers.end(), isOver))
        (void)::poll(waited.data(), waited.size(), MillisecondsToWait());
    if (FTerminated())
        TellStop();
    for (size_t i = 0; i < waiting.size(); ++i)
        if (waited[i].revents != 0)
            Hear(*waiting[i]);
    EndOverdue();
    ForgetEnded();
}

int TWorkers::MillisecondsToWait() const {
    qint64 until = Now() + LongestWait;
    for (const auto& worker : FWorkers)
        if (worker->Job != nullptr)
            until = std::min(until, worker->Permit ? worker->Begun + Moment : worker->Limit);
    if (FStopTold)
        until = std::min(until, FStopLimit);
    return int(std::max<qint64>(until - Now(), 0));
}

void TWorkers::TellStop() {
    if (std::exchange(FStopTold, true))
        return;
    FStopLimit = Now() + StopTakes;
    for (const auto& worker : FWorkers)
        if (worker->Job != nullptr)
            worker->Process->Stop();
    for (std::deque<TJob*>* jobs : {&FLost, &FBack})
        for (TJob* const job : std::exchange(*jobs, {}))
            job->Outcome = Stopped();
}

void TWorkers::EndOverdue() {
    const qint64 now = Now();
    for (const auto& worker : FWorkers) {
        if (worker->Answered && worker->Answered->load()) {
            worker->Answered.reset();
            worker->Limit = now + worker->Left;
        }
        if (worker->Job == nullptr)
            continue;
        if (worker->Permit && now - worker->Begun >= Moment)
            TakeBack(*worker);
        if (FStopTold && now >= FStopLimit)
            End(*worker, TEnding::Stopped);
        else if (now >= worker->Limit)
            End(*worker, TEnding::TimedOut);
        else if (now - worker->Looked >= LooksEvery && TakesTooMuch(*worker))
            End(*worker, TEnding::TookMemory);
    }
}

/// Its limit of data doesn't count memory that can be shared with others.
bool TWorkers::TakesTooMuch(TWorker& worker) const {
    worker.Looked = Now();
    return MemoryHeldBy(worker.Process->Process()) >> 20 > quint64(MemoryFor(*worker.Job) + Itself);
}

/// What the worker hasn't begun goes to another, so that nothing waits behind long work. What has begun
/// meanwhile is heard of soon.
void TWorkers::TakeBack(TWorker& worker) {
    quint64 permit = 0;
    const bool ours = worker.Ended() || ::read(worker.Permit.Number(), &permit, sizeof permit) > 0;
    worker.Permit = {};
    if (!ours || worker.Ahead == nullptr)
        return;
    TJob& job = *std::exchange(worker.Ahead, nullptr);
    job.BeginAnew();
    if (FStopTold)
        job.Outcome = Stopped();
    else
        FBack.push_back(&job);
}

void TWorkers::BeginBack() {
    while (!FBack.empty() && FLost.empty() && FAlone == nullptr && Busy(false) < FSettings.Count) {
        TJob& job = *FBack.front();
        FBack.pop_front();
        Begin(job);
    }
}

void TWorkers::Hear(TWorker& worker) {
    const std::shared_ptr<TChannel> channel = worker.Process->Channel();
    const bool more = channel->Fill();
    while (std::optional<TChannelMessage> message = channel->Next())
        Handle(worker, *message);
    if (!more && !worker.Ended())
        End(worker, TEnding::Died);
}

void TWorkers::Handle(TWorker& worker, const TChannelMessage& message) {
    const string text = message.Body.value(QLatin1String("text")).toString();
    const TMessageKind kind = KindOf(message.Body);
    if (kind == TMessageKind::Ready) {
        worker.Ready = true;
        worker.Sandbox = text;
    }
    if (worker.Job == nullptr)
        return;
    switch (kind) {
    case TMessageKind::Log:
        if (++worker.Lines <= MostLines)
            worker.Job->Log(text);
        break;
    case TMessageKind::Hint:
        worker.Job->Hint(text);
        break;
    case TMessageKind::Open:
        SendResultFile(worker);
        break;
    case TMessageKind::TakeNumbers:
        GiveNumbers(worker, message.Body);
        break;
    case TMessageKind::Box:
    case TMessageKind::Password:
        if (worker.Reach == TReach::Programs) // only scripts ask; another was taken over
            AskUser(worker, message.Body);
        break;
    case TMessageKind::Done:
        if (message.Body.value(QLatin1String("order")).toInteger() == worker.Order)
            TakeOutcome(worker, OutcomeOf(message.Body));
        else
            End(worker, TEnding::Died); // it speaks of other work than this
        break;
    default:
        break;
    }
}

void TWorkers::TakeOutcome(TWorker& worker, TOutcome outcome) {
    TJob& job = *worker.Job;
    if (outcome.Written && job.Result == nullptr)
        outcome = OutcomeWith(TOutcomeState::Failed, TReasonCode::Other,
                              QStringLiteral("The worker wrote nowhere"));
    if (outcome.Written)
        job.Result->SetFlushed();
    // What met its limit may have left anything behind.
    const bool spent = outcome.State == TOutcomeState::Failed && !outcome.Reasons.isEmpty() &&
                       outcome.Reasons.first().Code == TReasonCode::WorkerMemory;
    job.Outcome = std::move(outcome);
    worker.Quick = Now() - worker.Begun < Moment;
    if (spent)
        worker.Process.reset();
    Release(worker);
}

void TWorkers::Release(TWorker& worker) {
    if (FAlone == worker.Job)
        FAlone = nullptr;
    worker.Job = nullptr;
    worker.Limit = Never;
    worker.IdleSince = Now();
    if (worker.Ended())
        TakeBack(worker);
    worker.Permit = {};
    if (worker.Ahead != nullptr)
        BeginFirst(worker, *std::exchange(worker.Ahead, nullptr), worker.AheadOrder);
}

void TWorkers::SendResultFile(TWorker& worker) {
    TChannel& channel = *worker.Process->Channel();
    if (worker.Job->Result != nullptr)
        return; // one is all that there is
    try {
        (void)channel.Send(NewMessage(TMessageKind::Result), {worker.Job->OpenResult().Descriptor()});
    } catch (const EFileError& e) {
        QCborMap refusal = TextMessage(TMessageKind::Result, e.Message());
        refusal[QLatin1String("error")] = e.Error();
        (void)channel.Send(refusal);
    }
}

/// What a worker asks for isn't believed: the series and how many are looked at as a list's own.
void TWorkers::GiveNumbers(TWorker& worker, const QCborMap& question) {
    QCborMap reply = NewMessage(TMessageKind::Numbers);
    TJob& job = *worker.Job;
    const TGivenNumbers numbers(
        [&job](const string& series, qint64 count) { return job.TakeNumbers(series, count); });
    try {
        reply[QLatin1String("first")] =
            TGivenNumbers::Take(question.value(QLatin1String("text")).toString(),
                                question.value(QLatin1String("count")).toInteger());
    } catch (const std::exception& e) {
        reply[QLatin1String("text")] = MessageOf(e);
        reply[QLatin1String("away")] = dynamic_cast<const ENumbersAway*>(&e) != nullptr;
    }
    (void)worker.Process->Channel()->Send(reply);
}

/// On a thread of its own, which waits for as long as the user does, while other files are worked on.
void TWorkers::AskUser(TWorker& worker, const QCborMap& question) {
    if (worker.Answered)
        return; // one at a time
    worker.Left = worker.Limit - Now();
    worker.Limit = Never;
    worker.Answered = std::make_shared<std::atomic<bool>>(false);
    worker.Question = std::async(
        std::launch::async, [question, channel = worker.Process->Channel(), answered = worker.Answered] {
            QCborMap answer = NewMessage(TMessageKind::Answer);
            const string text = question.value(QLatin1String("text")).toString();
            if (KindOf(question) == TMessageKind::Password) {
                if (const std::optional<string> typed = PasswordPrompt().Ask(text))
                    answer[QLatin1String("text")] = *typed;
            } else {
                answer[QLatin1String("answer")] =
                    MessageBoxHost().Show(text, question.value(QLatin1String("caption")).toString(),
                                          int(question.value(QLatin1String("flags")).toInteger()));
            }
            (void)channel->Send(answer);
            answered->store(true);
        });
}

void TWorkers::End(TWorker& worker, TEnding ending) {
    const int status = worker.Process->End();
    const bool began = worker.Ready;
    worker.Process.reset();
    if (worker.Job == nullptr)
        return;
    TJob& job = *worker.Job;
    Release(worker);
    switch (ending) {
    case TEnding::Stopped:
        job.Outcome = Stopped();
        break;
    case TEnding::TimedOut:
        job.Outcome = OutcomeWith(TOutcomeState::Failed, TReasonCode::WorkerTimedOut,
                                  QStringLiteral("The work on \"%1\" took longer than %2 s")
                                      .arg(job.Work.Source)
                                      .arg(SecondsFor(job)));
        break;
    case TEnding::TookMemory:
        job.Outcome = OutcomeWith(TOutcomeState::Failed, TReasonCode::WorkerMemory, MemoryText());
        break;
    case TEnding::Died:
        if (NoteDeath(job, status, began) && worker.Lines == 0 && job.List != nullptr)
            job.Log(ExecutingLine(job.Work)); // kept for a moment, and lost with the worker
        break;
    }
}

/// True where that was the file's fault.
bool TWorkers::NoteDeath(TJob& job, int status, bool began) {
    if (FTerminated()) {
        job.Outcome = Stopped();
        return false;
    }
    const bool killed = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
    if (killed && !job.Lost) { // by somebody else, or for want of memory: once more, alone
        job.Lost = true;
        job.BeginAnew();
        FLost.push_back(&job);
        return false;
    }
    const string how = WIFSIGNALED(status) ? QStringLiteral("signal %1 (%2)")
                                                 .arg(WTERMSIG(status))
                                                 .arg(QString::fromLocal8Bit(::strsignal(WTERMSIG(status))))
                                           : QStringLiteral("exit code %1").arg(WEXITSTATUS(status));
    if (!began) {
        job.Outcome = NoWorker(QStringLiteral("A worker ended before it began, by %1").arg(how), ECHILD);
        return false;
    }
    job.Outcome = OutcomeWith(
        TOutcomeState::Failed, TReasonCode::WorkerCrashed,
        QStringLiteral("The worker ended by %1 while it worked on \"%2\"").arg(how, job.Work.Source));
    return true;
}

void TWorkers::RetryLost() {
    const bool busy = std::any_of(FWorkers.begin(), FWorkers.end(),
                                  [](const auto& worker) { return worker->Job != nullptr; });
    if (FLost.empty() || busy)
        return;
    FAlone = FLost.front();
    FLost.pop_front();
    Begin(*FAlone);
    if (FAlone != nullptr && FAlone->Outcome)
        FAlone = nullptr;
}

void TWorkers::Rest() {
    for (const auto& worker : FWorkers)
        if (!worker->Ended() && worker->Job == nullptr && worker->Reach != TReach::Programs &&
            Now() - worker->IdleSince >= RestsAfter)
            worker->Process.reset();
    ForgetEnded();
    TellWorkers();
}

/// But for those whose question is still before a user.
void TWorkers::ForgetEnded() {
    std::erase_if(FWorkers, [](const auto& worker) {
        return worker->Ended() && (!worker->Answered || worker->Answered->load());
    });
}

void TWorkers::TellWorkers() {
    std::vector<TWorkerState> states;
    for (const auto& worker : FWorkers)
        if (!worker->Ended())
            states.push_back({worker->Process->Process(), worker->Reach == TReach::Programs, worker->Sandbox,
                              worker->Job != nullptr ? worker->Job->Work.Source : string()});
    FHost.Status.SetWorkers(std::move(states));
}
