// How long clients of the control pipe wait for their answer: many "check" calls from parallel clients, each
// call a connection of its own, as a script would make it.
//   bench_pipe [CALLS [CLIENTS [agent]]]    with "agent" the agent that runs is asked, whatever it is doing
#include "agent/AgentStatus.h"
#include "agent/ControlPipe.h"
#include "agent/NamedPipeThread.h"
#include "platform/NamedPipe.h"

#include <QTemporaryDir>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <thread>
#include <vector>

namespace {

using TSteady = std::chrono::steady_clock;

/// Milliseconds of one call, or a negative number if it got no answer.
double CheckOnce() {
    const auto start = TSteady::now();
    try {
        TNamedPipeClient client(QLatin1String(ControlPipe::Name));
        client.OpenPipe();
        client.WritePipe(QLatin1String(ControlPipe::Check));
        if (client.Read(5000) != QLatin1String(ControlPipe::CheckReply))
            return -1;
    } catch (const Exception&) {
        return -1;
    }
    return std::chrono::duration<double, std::milli>(TSteady::now() - start).count();
}

std::vector<double> Measure(int calls, int clients) {
    std::vector<double> times(size_t(calls), -1);
    std::atomic<int> next = 0;
    std::vector<std::thread> threads;
    for (int c = 0; c < clients; ++c)
        threads.emplace_back([&] {
            for (int i = next++; i < calls; i = next++)
                times[size_t(i)] = CheckOnce();
        });
    for (auto& thread : threads)
        thread.join();
    std::sort(times.begin(), times.end());
    return times;
}

bool WaitForServer() {
    for (int attempt = 0; attempt < 500; ++attempt) {
        if (CheckOnce() >= 0)
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

} // namespace

int main(int argc, char** argv) {
    const int calls = argc > 1 ? std::max(1, std::atoi(argv[1])) : 10'000;
    const int clients = argc > 2 ? std::max(1, std::atoi(argv[2])) : 20;
    const bool askAgent = argc > 3 && QLatin1String(argv[3]) == QLatin1String("agent");
    const QTemporaryDir folder;
    const TAgentStatus status;
    std::optional<TNamedPipeThread> server;
    if (!askAgent) {
        qputenv("XDG_RUNTIME_DIR", folder.path().toUtf8());
        server.emplace(nullptr, status);
    }
    if (!WaitForServer())
        return EXIT_FAILURE;

    const auto start = TSteady::now();
    const std::vector<double> times = Measure(calls, clients);
    const double seconds = std::chrono::duration<double>(TSteady::now() - start).count();
    const auto unanswered = std::count_if(times.begin(), times.end(), [](double ms) { return ms < 0; });
    const auto percentile = [&](int p) { return times[size_t(calls - 1) * size_t(p) / 100]; };
    std::printf("%d calls from %d clients in %.2f s (%.0f a second), %ld unanswered\n", calls, clients,
                seconds, calls / seconds, long(unanswered));
    std::printf("median %.3f ms, 99th percentile %.3f ms, longest %.3f ms\n", percentile(50), percentile(99),
                times.back());
    const bool good = unanswered == 0 && percentile(99) < 50 && times.back() <= 500;
    return good ? EXIT_SUCCESS : EXIT_FAILURE;
}
