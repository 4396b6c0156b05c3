#include "agent/AgentStatus.h"
#include "testing/Workspace.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

const QDateTime Noon(QDate(2026, 11, 15), QTime(12, 0), Qt::UTC);

QJsonObject Read(const TAgentStatus& status) {
    const QByteArray line = status.ToJson();
    EXPECT_FALSE(line.contains('\n'));
    return QJsonDocument::fromJson(line).object();
}

TEST(AgentStatus, FoldersKeepTheirCountsAsLongAsTheyAreInForce) {
    TAgentStatus status(Noon);
    status.SetFolders({"/a", "/b\n", "/a"});
    status.CountDone("/a");
    status.CountWarned("/a");
    status.CountFailed("/b\n");
    status.SetWorking("/a", "x.pdf");
    EXPECT_TRUE(status.SetState("/b\n", TFolderState::Broken, "gone"));
    EXPECT_FALSE(status.SetState("/b\n", TFolderState::Broken, "gone"));
    EXPECT_TRUE(status.SetState("/b\n", TFolderState::Broken, "full"));
    QJsonArray folders = Read(status)["folders"].toArray();
    ASSERT_EQ(folders.size(), 2);
    EXPECT_EQ(QJsonDocument(folders[0].toObject()).toJson(QJsonDocument::Compact),
              R"({"done":1,"failed":0,"file":"x.pdf","name":"/a","reason":"","state":"working",)"
              R"("waiting":0,"warned":1})");
    status.SetFolders({"/c", "/b\n"});
    folders = Read(status)["folders"].toArray();
    ASSERT_EQ(folders.size(), 2);
    EXPECT_EQ(folders[0].toObject()["state"], "watching");
    EXPECT_EQ(folders[1].toObject()["failed"], 1);
    EXPECT_EQ(folders[1].toObject()["reason"], "full");
}

TEST(AgentStatus, TroublesAndTheSummaryFollowTheFaults) {
    TAgentStatus status(Noon);
    EXPECT_EQ(Read(status)["since"], "2026-11-15T12:00:00Z");
    EXPECT_TRUE(status.ConfigurationFault(TListKind::Folders, "line 3"));
    EXPECT_FALSE(status.ConfigurationFault(TListKind::Folders, "line 3"));
    status.SetAgent(TAgentState::Waiting, "Waits.");
    EXPECT_EQ(status.Summary(), "Waits.");
    using TTroubles = std::vector<TAgentStatus::TTrouble>;
    EXPECT_EQ(status.Troubles(), TTroubles({{"folders", "line 3"}}));
    status.SetAgent(TAgentState::Serving);
    status.ListsLoaded(TListKind::Folders, Noon);
    EXPECT_TRUE(status.ToJson().contains(
        R"("lists":{"actions":{"fault":"","loaded":null},"folders":{"fault":"","loaded":"2026-11-15T12:00:00Z"}})"));
    EXPECT_EQ(status.Troubles(), TTroubles());
    EXPECT_EQ(status.Summary(), "0 folders, 0 files done, 0 failed.");
    status.SetState("/a", TFolderState::Broken, "gone");
    status.CountWarned("/b");
    status.SetWaiting("/b", 2);
    EXPECT_EQ(status.Troubles(), TTroubles({{"folder /a", "\"/a\" is not served: gone"}}));
    EXPECT_EQ(status.Summary(), "2 folders, 1 not served, 1 file done, 0 failed, 2 waiting.");
}

} // namespace
