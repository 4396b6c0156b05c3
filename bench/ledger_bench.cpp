// What the ledger takes: outcomes a second, by way of the queue and in transactions of some sizes; numbers
// and claims a second, each with its wait for the disk.
//   bench_ledger [COUNT [LEDGER]]    LEDGER as in the setting; without it a file in a temporary folder
// Over a server of its own:
//   tests/ledger/on_postgresql.sh sh -c 'build/release/bin/bench_ledger 20000 "$MORVANE_TEST_LEDGER"'
#include "ledger/Claims.h"
#include "ledger/LedgerConnection.h"
#include "ledger/LedgerQueue.h"
#include "ledger/Numbers.h"
#include "ledger/Records.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace {

double Seconds(const std::function<void()>& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

TFileRecord Record(int i) {
    TFileRecord record;
    record.Folder = QStringLiteral("/srv/folders/of some length/in");
    record.Name = "document number " + QByteArray::number(i) + ".pdf";
    record.List = QStringLiteral("Received");
    record.State = TRecordState::DoneWithWarnings;
    record.Results = {{record.Name, 123'456}};
    record.Reasons = {
        {QStringLiteral("damage.repaired"), {}, QStringLiteral("The file was damaged and repaired.")}};
    record.Pages = 10;
    record.Size = 100'000;
    record.Began = 1'700'000'000'000 + i;
    record.Ended = record.Began + 30;
    return record;
}

void MeasureQueue(const TLedgerPlace& place, int count) {
    TLedgerQueueSettings settings;
    settings.Place = place;
    settings.Agent = QStringLiteral("bench");
    settings.KeepDays = 0;
    settings.Bound = size_t(count) + 1;
    QList<TFileRecord> records;
    for (int i = 0; i < count; ++i)
        records.append(Record(i));
    TLedgerQueue queue(settings);
    queue.Add(Record(count));
    queue.Flush(std::chrono::minutes(1)); // it is open
    double adding = 0;
    const double all = Seconds([&] {
        adding = Seconds([&] {
            for (TFileRecord& record : records)
                queue.Add(std::move(record));
        });
        queue.Flush(std::chrono::minutes(10));
    });
    std::printf("queue: %.2f us an outcome for who adds it, %.0f outcomes a second written\n",
                adding / count * 1e6, count / all);
}

void MeasureGroups(TLedgerConnection& ledger, int count) {
    TRecords records(ledger);
    for (const int size : {1, 16, 256}) {
        QList<TFileRecord> group;
        for (int i = 0; i < size; ++i)
            group.append(Record(i));
        const string writer = QStringLiteral("bench-%1").arg(size);
        const int groups = std::max(1, std::min(count, 1000 * size) / size);
        const double seconds = Seconds([&] {
            for (int i = 0; i < groups; ++i)
                records.Write(writer, 1 + qint64(i) * size, group);
        });
        std::printf("groups of %d: %.0f outcomes a second\n", size, groups * size / seconds);
    }
}

void MeasureNumbers(TLedgerConnection& ledger, TLedgerRun& run, int count) {
    TNumbers numbers(ledger, run);
    const string series = QStringLiteral("bench");
    double reserving = 0;
    const double all = Seconds([&] {
        for (int i = 0; i < count; ++i) {
            const QByteArray name = "f" + QByteArray::number(i);
            TLedgerWork work(run, {QStringLiteral("/in"), name, name.leftJustified(32, '.')});
            TReservation made;
            reserving += Seconds([&] { made = numbers.Reserve(work, series, 10); });
            numbers.Finish(work, name, {{series, made.First, made.Count, 1}});
        }
    });
    std::printf("numbers: %.0f reservations a second, %.0f files reserved and finished a second\n",
                count / reserving, count / all);
}

void MeasureClaims(TLedgerConnection& ledger, TLedgerRun& run, int count) {
    TClaims claims(ledger, run);
    int refused = 0;
    const double seconds = Seconds([&] {
        for (int i = 0; i < count; ++i) {
            const QByteArray name = "f" + QByteArray::number(i);
            const TLedgerWork work(run, {QStringLiteral("/in"), name, {}});
            const TClaim claim = claims.Take(work, {QStringLiteral("uuid"), name, i, 0, 0});
            refused += claims.BeginPublishing(work, claim, {name, ".part", 1, 1, 1, {}}) ? 0 : 1;
            claims.End(work, claim);
        }
    });
    std::printf("claims: %.0f files a second claimed, published and ended%s\n", count / seconds,
                refused > 0 ? ", some in vain" : "");
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const int count = argc > 1 ? std::max(1, std::atoi(argv[1])) : 20'000;
    const QTemporaryDir folder;
    try {
        const TLedgerPlace place =
            ParseLedgerPlace(argc > 2 ? QString::fromLocal8Bit(argv[2]) : folder.filePath("ledger.sqlite"));
        TLedgerConnection ledger(place);
        TLedgerRun run(place, QStringLiteral("bench"));
        MeasureQueue(place, count);
        MeasureGroups(ledger, count);
        MeasureNumbers(ledger, run, std::max(1, count / 20));
        MeasureClaims(ledger, run, std::max(1, count / 20));
    } catch (const Exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
