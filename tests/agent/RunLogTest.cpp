#include "agent/RunLog.h"
#include "testing/Workspace.h"

#include <QLocale>

TEST(RunLog, AppendsAsciiLinesAndNeverRaises) {
    const TWorkspace workspace;
    workspace.Write("log", "before\r\n");
    TRunLog(workspace.Path("log")).Line("Größe \"a\x1b[2J\"\tb~");
    EXPECT_EQ(workspace.Read("log"), "before\r\nGr??e \"a?[2J\"?b~\r\n");
    testing::internal::CaptureStderr();
    for (int tick = 0; tick < 3; ++tick) {
        TRunLog nowhere(workspace.Path("no/such\n\x1b/log"));
        nowhere.Line("dropped");
    }
    EXPECT_EQ(Widen(testing::internal::GetCapturedStderr().c_str()), "Cannot write the log in \"" +
                                                                         workspace.Path("no/such ?/") +
                                                                         "\": No such file or directory\n");
    EXPECT_EQ(workspace.Names(), QStringList("log"));
}

TEST(RunLog, Names) {
    EXPECT_EQ(LogFileName(QDate(2026, 3, 5)), "2026.03.05.txt");
    const QDateTime time(QDate(2026, 3, 5), QTime(4, 7, 9));
    EXPECT_EQ(LogTime(time, QLocale::c()), "05-Mar-2026 04:07:09");
    for (const char* name : {"ar_EG", "fa_IR", "bn_BD", "my_MM", "ckb_IQ"}) {
        const QLocale locale{QLatin1String(name)};
        EXPECT_EQ(LogTime(time, locale), "05-" + locale.toString(time, "MMM") + "-2026 04:07:09");
        EXPECT_NE(locale.toString(5), "5") << name << " has digits of its own";
    }
}
