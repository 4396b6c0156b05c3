#include "work/Worker.h"

#include "actions/ActionManager.h"
#include "base/Exceptions.h"
#include "base/Interrupt.h"
#include "base/Journal.h"
#include "platform/MessageBox.h"
#include "platform/ProcessLimits.h"
#include "platform/StopSignal.h"
#include "platform/WorkerThread.h"
#include "scripting/AskForPassword.h"
#include "work/Channel.h"
#include "work/Protocol.h"
#include "work/Sandbox.h"
#include "xml/Xmlserial.h"

#include <QBuffer>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <poll.h>
#include <sys/timerfd.h>
#include <thread>

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool Sanitized = true; // takes more memory than any limit grants
#else
constexpr bool Sanitized = false;
#endif

constexpr itimerspec Moment{{}, {0, 50'000'000}}; // 50 ms

class TWorker : public TWorkHost, public TMessageBoxHost, public TPasswordPrompt {
public:
    TWorker(TDescriptor socket, string sandbox)
        : FSandbox(std::move(sandbox)), FChannel(std::move(socket), TChannel::MostToWorker),
          FMoment(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC)) {
        SetInterruptTest([] { return StopSignal().IsOverdue(); });
        SetMessageBoxHost(this);
        SetPasswordPrompt(this);
    }

    [[noreturn]] void Run() {
        Tell(TextMessage(TMessageKind::Ready, FSandbox));
        for (;;) {
            TChannelMessage order = NextOrder();
            switch (KindOf(order.Body)) {
            case TMessageKind::Lists:
                TakeLists(order.Body.value(QLatin1String("text")).toString());
                break;
            case TMessageKind::Work:
                WorkOn(order);
                break;
            default:
                break; // an answer to a question that nobody asks any more
            }
        }
    }

    /// Waits on a thread of its own, so that a stop reaches work that goes on, the agent's death ends it, and
    /// what it has said isn't kept for long.
    [[noreturn]] void HoldLeash(const TDescriptor& leash) {
        DescribeThisThread("leash", TThreadPriority::Normal);
        for (;;) {
            pollfd waited[] = {{leash.Number(), POLLIN, 0}, {FMoment.Number(), POLLIN, 0}};
            if (::poll(waited, std::size(waited), -1) < 0)
                continue;
            quint64 read = 0;
            if (waited[1].revents != 0 && ::read(FMoment.Number(), &read, sizeof read) > 0) {
                FKept = false;
                (void)FChannel.Flush(); // who sends next sees whether anybody is there
            }
            if (waited[0].revents == 0)
                continue;
            const ssize_t got = ::read(leash.Number(), &read, 1);
            if (got > 0)
                StopSignal().Raise();
            else if (got == 0 || errno != EINTR)
                std::_Exit(EXIT_SUCCESS); // what is half done is nobody's
        }
    }

    /// Go with the outcome of work that takes but a moment, so that the agent wakes once for it.
    void Log(const string& line) override { Say(TextMessage(TMessageKind::Log, line)); }
    void Hint(const string& text) override { Say(TextMessage(TMessageKind::Hint, text)); }
    [[nodiscard]] bool Terminated() override { return StopSignal().Raised(); }

    [[nodiscard]] TOutputFile& OpenResult() override {
        if (!FResultFile)
            AskForResultFile();
        FResult = std::make_unique<TOutputFile>(FResultFile.Number(), FWork.Dest);
        return *FResult;
    }

    void AskForResultFile() {
        Tell(NewMessage(TMessageKind::Open));
        TChannelMessage reply = Await(TMessageKind::Result);
        if (reply.Files.empty())
            throw EFileError(reply.Body.value(QLatin1String("text")).toString(),
                             int(reply.Body.value(QLatin1String("error")).toInteger()));
        FResultFile = std::move(reply.Files[0]);
    }

    [[nodiscard]] qint64 TakeNumbers(const string& series, qint64 count) override {
        QCborMap question = TextMessage(TMessageKind::TakeNumbers, series);
        question[QLatin1String("count")] = count;
        Tell(question);
        const QCborMap reply = Await(TMessageKind::Numbers).Body;
        if (const QCborValue first = reply.value(QLatin1String("first")); first.isInteger())
            return first.toInteger();
        const string text = reply.value(QLatin1String("text")).toString();
        if (reply.value(QLatin1String("away")).toBool())
            throw ENumbersAway(text);
        throw Exception(text);
    }

    int Show(const string& text, const string& caption, int flags) override {
        QCborMap question = TextMessage(TMessageKind::Box, text);
        question[QLatin1String("caption")] = caption;
        question[QLatin1String("flags")] = flags;
        Tell(question);
        return int(Await(TMessageKind::Answer)
                       .Body.value(QLatin1String("answer"))
                       .toInteger(AnswerAsIfClosed(flags)));
    }

    [[nodiscard]] std::optional<string> Ask(const string& message) override {
        Tell(TextMessage(TMessageKind::Password, message));
        const QCborValue typed = Await(TMessageKind::Answer).Body.value(QLatin1String("text"));
        return typed.isString() ? std::optional(typed.toString()) : std::nullopt;
    }

private:
    [[nodiscard]] TChannelMessage NextOrder() {
        if (FOrders.empty())
            return Take();
        TChannelMessage order = std::move(FOrders.front());
        FOrders.pop_front();
        return order;
    }

    [[nodiscard]] TChannelMessage Take() {
        for (;;) {
            if (std::optional<TChannelMessage> message = FChannel.Next())
                return std::move(*message);
            FChannel.WaitForMore();
            if (!FChannel.Fill())
                std::_Exit(EXIT_SUCCESS);
        }
    }

    void Say(const QCborMap& message) {
        FChannel.SendLater(message);
        if (!FKept.exchange(true))
            (void)::timerfd_settime(FMoment.Number(), 0, &Moment, nullptr);
    }

    void Tell(const QCborMap& message) {
        FKept = false;
        if (!FChannel.Send(message))
            std::_Exit(EXIT_FAILURE); // nobody is there to tell
    }

    /// What is handed over meanwhile is for later.
    [[nodiscard]] TChannelMessage Await(TMessageKind kind) {
        for (;;) {
            TChannelMessage order = Take();
            if (KindOf(order.Body) == kind)
                return order;
            FOrders.push_back(std::move(order));
        }
    }

    void TakeLists(const string& xml) {
        QByteArray bytes = Narrow(xml);
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::ReadOnly);
        FLists.Clear();
        XMLDeserialize(FLists, buffer, QString());
    }

    /// What was handed over ahead of time may have been taken back.
    [[nodiscard]] static bool IsPermitted(TChannelMessage& order) {
        const QCborValue at = order.Body.value(QLatin1String("permit"));
        if (!at.isInteger() || at.toInteger() < 0 || size_t(at.toInteger()) >= order.Files.size())
            return true;
        const TDescriptor permit = std::move(order.Files[size_t(at.toInteger())]);
        order.Files.resize(size_t(at.toInteger()));
        quint64 read = 0;
        return ::read(permit.Number(), &read, sizeof read) > 0;
    }

    void WorkOn(TChannelMessage& order) {
        if (!IsPermitted(order))
            return;
        FWork = WorkOf(order.Body);
        FWork.Descriptor = order.Files.empty() ? -1 : order.Files[0].Number();
        if (order.Files.size() > 1)
            FResultFile = std::move(order.Files[1]);
        const qint64 megabytes = order.Body.value(QLatin1String("memory")).toInteger();
        if (megabytes > 0 && !Sanitized)
            LimitMemory(quint64(megabytes) << 20);
        const Integer index = FLists.IndexOf(FWork.ActionName);
        const TOutcome outcome = WorkOnFile(FWork, index < 0 ? nullptr : FLists[index].FActions, *this);
        FResult.reset();
        FResultFile = {};
        QCborMap done = NewMessage(TMessageKind::Done);
        done[QLatin1String("order")] = order.Body.value(QLatin1String("order"));
        Put(done, outcome);
        Tell(done);
    }

    string FSandbox;
    TChannel FChannel;
    TDescriptor FMoment; // runs out where something said was kept
    std::atomic<bool> FKept = false;
    std::deque<TChannelMessage> FOrders; // that came while something else was awaited
    TPDFActionManager FLists;
    TFileWork FWork;
    TDescriptor FResultFile;
    std::unique_ptr<TOutputFile> FResult;
};

} // namespace

int RunWorker(TDescriptor socket, TDescriptor leash, const char* reach) {
    std::optional<TWorker> worker; // for as long as its thread
    try {
        const string sandbox = EnterSandbox(TReach(QByteArray(reach).toInt()));
        worker.emplace(std::move(socket), sandbox);
        std::thread([&worker, held = std::move(leash)] { worker->HoldLeash(held); }).detach();
        worker->Run();
    } catch (const std::exception& e) {
        JournalLine(QStringLiteral("A worker ends: %1").arg(MessageOf(e)));
        std::_Exit(EXIT_FAILURE);
    }
}
