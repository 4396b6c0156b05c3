#include "agent/RunLog.h"
#include "testing/Workspace.h"

TEST(RunLog, AppendsAsciiLinesAndNeverRaises) {
    const TWorkspace workspace;
    workspace.Write("log", "before\r\n");
    TRunLog(workspace.Path("log")).Line("Größe \"a\"\tb~");
    EXPECT_EQ(workspace.Read("log"), "before\r\nGr??e \"a\"\tb~\r\n");
    TRunLog nowhere(workspace.Path("no/such/folder/log"));
    nowhere.Line("dropped");
    EXPECT_EQ(workspace.Names(), QStringList("log"));
}

TEST(RunLog, Names) {
    EXPECT_EQ(LogFileName(QDate(2026, 3, 5)), "2026.03.05.txt");
    EXPECT_EQ(LogTime(QDateTime(QDate(2026, 3, 5), QTime(4, 7, 9))), "05-Mar-2026 04:07:09");
}
