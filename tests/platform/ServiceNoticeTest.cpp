#include "platform/ServiceNotice.h"
#include "platform/LocalSocket.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

TEST(ServiceNotice, SendsEachStatusOnceToThePathOrTheName) {
    const QTemporaryDir folder;
    const TDescriptor manager = OpenLocalSocket(SOCK_DGRAM);
    const TLocalAddress address(folder.path(), "notify");
    ASSERT_EQ(::bind(manager.Number(), address.Get(), address.Size()), 0);
    TServiceNotice notice((folder.path() + "/notify").toUtf8(), /*watchdogMs=*/3'600'000);
    EXPECT_TRUE(notice.Listening());
    notice.Ready("begins");
    notice.SetStatus("begins");
    notice.SetStatus("a\nb");
    notice.Alive();
    notice.Alive(); // not so soon again
    notice.Stopping();
    QByteArray all;
    char bytes[256];
    for (ssize_t size = 0; (size = ::recv(manager.Number(), bytes, sizeof bytes, 0)) > 0;)
        all += QByteArray(bytes, size) + "|";
    EXPECT_EQ(all, "READY=1\nSTATUS=begins|STATUS=a?b|WATCHDOG=1|STOPPING=1|");
}

TEST(ServiceNotice, WithoutAManagerNothingIsSent) {
    for (const char* address : {"", "relative", "@", "/no/such/socket"}) {
        TServiceNotice notice{address};
        EXPECT_EQ(notice.Listening(), address[0] == '/') << address;
        notice.Ready("begins");
    }
    EXPECT_FALSE(TServiceNotice('/' + QByteArray(200, 'x')).Listening());
}

} // namespace
