// What the run of the folders says to the ledger.
#include "PlayedRun.h"

#include "agent/AgentLedger.h"
#include "base/FaultPoint.h"
#include "ledger/History.h"
#include "ledger/LedgerConnection.h"
#include "testing/Application.h"

#include <gmock/gmock.h>

using testing::HasSubstr;

namespace {

class KeptLedger : public TPlayedRun {
protected:
    KeptLedger() {
        NeedApplication();
        ConfigureOne();
    }
    void Keep(const string& place) {
        TEditorSettings settings;
        settings.Ledger = place;
        FKept = std::make_unique<TAgentLedger>(settings);
        FLedger = FKept.get();
    }
    ~KeptLedger() override { FThread.reset(); }

    /// Each record in the order of the files' ends, as "name state code result settled".
    [[nodiscard]] QStringList Records(const string& place) {
        FThread.reset();
        FKept.reset(); // all is written
        TLedgerConnection ledger(ParseLedgerPlace(place));
        QStringList records;
        for (const THistoryRow& row : THistory(ledger).Find({})) {
            const TFileRecord& record = row.Record;
            EXPECT_EQ(record.Folder, FWorkspace.Path("in/"));
            EXPECT_EQ(record.List, "Rotate");
            EXPECT_LE(record.Began, record.Ended);
            QStringList words{QString::fromUtf8(record.Name), StateName(record.State)};
            words += record.Reasons.isEmpty() ? QStringLiteral("-") : record.Reasons.first().Code;
            for (const TResultFile& result : record.Results)
                words +=
                    QStringLiteral("%1:%2:%3")
                        .arg(QString::fromUtf8(result.Name))
                        .arg(record.Pages)
                        .arg(
                            result.Size ==
                            QFileInfo(FWorkspace.Path("in/output/" + QString::fromUtf8(result.Name))).size());
            records.prepend(words.join(u' ') + u' ' + QString::fromUtf8(record.Settled));
        }
        return records;
    }

    std::unique_ptr<TAgentLedger> FKept;
};

TEST_F(KeptLedger, HasOneRecordForEachOutcome) {
    const string place = FWorkspace.Path("state/ledger.sqlite");
    Keep(place);
    FReasonFiles = true;
    Drop(QString::fromUtf8("größe.pdf"), 3);
    FWorkspace.Write("in/output/a.pdf", "older");
    FWorkspace.Write("in/Error/bad.pdf", "older");
    Drop("a.pdf");
    FWorkspace.Write("in/bad.pdf", "no PDF");
    MakePdf(FWorkspace.Path("in/secret.pdf"), 1, {.UserPassword = "open", .OwnerPassword = "owner"});
    Play(3);
    EXPECT_THAT(FWorkspace.Read("in/Error/bad (1).pdf.reason.txt").toStdString(),
                HasSubstr("input.not-pdf: "));
    QStringList records = Records(place);
    records.sort();
    EXPECT_EQ(records,
              QStringList({"a.pdf Done - a (1).pdf:1:1 a.pdf", "bad.pdf Failed input.not-pdf bad (1).pdf",
                           QString::fromUtf8("größe.pdf Done - größe.pdf:3:1 größe.pdf"),
                           "secret.pdf Waiting input.protected "}));
}

TEST_F(KeptLedger, TellsAWaitOnceAndItsEnd) {
    const string place = FWorkspace.Path("state/ledger.sqlite");
    Keep(place);
    Drop("a.pdf");
    SetFaultHook([](const char* call) { return std::strcmp(call, "write") == 0 ? ENOSPC : 0; });
    Play(70);
    SetFaultHook(nullptr);
    Play(70);
    EXPECT_EQ(Records(place), QStringList({"a.pdf Waiting disk.full ", "a.pdf Done - a.pdf:1:1 a.pdf"}));
}

TEST_F(KeptLedger, HoldsUpNothingWhereItCannotBeWritten) {
    for (const string& place :
         {FWorkspace.Write("file", "x") + QStringLiteral("/ledger.sqlite"),
          FWorkspace.Write("corrupt.sqlite", QByteArray(8192, 'x')), QStringLiteral("no/place")}) {
        Keep(place);
        Drop("a.pdf");
        Play();
        EXPECT_EQ(Tree(), "output/a.pdf process/a.pdf");
        do // the ledger's own thread finds out
            Play();
        while (FStatus.Troubles().empty());
        EXPECT_EQ(FStatus.Troubles().back().Subject, "ledger");
        FThread.reset();
        QDir(FWorkspace.Path("in/output")).removeRecursively();
        QDir(FWorkspace.Path("in/process")).removeRecursively();
    }
}

} // namespace
