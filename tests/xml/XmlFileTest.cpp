// Files: whole or not at all, never replaced by what could not be read, never waited for.
#include "Samples.h"
#include "base/Exceptions.h"
#include "testing/Raised.h"
#include "xml/Xmlserial.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace {

class XmlFile : public testing::Test {
protected:
    void SetUp() override { RegisterSamples(); }

    [[nodiscard]] string Path(const char* name) const { return FFolder.filePath(QString::fromLatin1(name)); }
    [[nodiscard]] QByteArray Content(const string& path) const {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }
    void Put(const string& path, const QByteArray& content) const {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(content), content.size());
    }
    [[nodiscard]] string Load(const string& path) const {
        TSample sample;
        return RaisedBy([&] { XMLDeserialize(sample, path, string()); });
    }
    [[nodiscard]] QStringList Entries() const {
        return QDir(FFolder.path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

    QTemporaryDir FFolder;
};

} // namespace

TEST_F(XmlFile, SavesAndLoads) {
    TSample sample;
    Randomize(sample, 1);
    const string path = Path("s.xml");
    XMLSerialize(sample, path, /*compact=*/false, string());
    EXPECT_EQ(Content(path), Written(sample));
    TSample copy;
    EXPECT_EQ(&XMLDeserialize(copy, path, string()), &copy);
    EXPECT_EQ(copy.Dump(), sample.Dump());

    XMLSerialize(sample, path, /*compact=*/true, QStringLiteral("Other"));
    EXPECT_TRUE(Content(path).startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?><Other><Name>"));
    TSample other;
    XMLDeserialize(other, path, QStringLiteral("Other"));
    EXPECT_EQ(other.Dump(), sample.Dump());
    EXPECT_EQ(Entries(), QStringList("s.xml"));
}

TEST_F(XmlFile, AFailureLeavesTheOldFile) {
    const string path = Path("s.xml");
    Put(path, "old");
    TSample sample;
    sample.FNarrow = "\xFF";
    EXPECT_THROW(XMLSerialize(sample, path, /*compact=*/false, string()), Exception);
    sample.FNarrow.clear();
    sample.FText = QString(14 << 20, u'&'); // 70 MiB as &amp;
    EXPECT_THROW(XMLSerialize(sample, path, /*compact=*/false, string()), EXmlError);
    EXPECT_EQ(Content(path), "old");
    EXPECT_EQ(Entries(), QStringList("s.xml"));
    EXPECT_THROW(XMLSerialize(sample, Path("none/s.xml"), /*compact=*/false, string()), Exception);
}

TEST_F(XmlFile, KeepsModeAndSymbolicLinks) {
    const string path = Path("s.xml");
    const string link = Path("link.xml");
    Put(path, "old");
    ::chmod(path.toUtf8().constData(), 0600);
    ASSERT_EQ(::symlink("s.xml", link.toUtf8().constData()), 0);
    XMLSerialize(TSample(), link, /*compact=*/false, string());
    EXPECT_EQ(Content(path), Written(TSample()));
    struct stat status {};
    ASSERT_EQ(::lstat(path.toUtf8().constData(), &status), 0);
    EXPECT_EQ(status.st_mode, mode_t(S_IFREG | 0600));
    ASSERT_EQ(::lstat(link.toUtf8().constData(), &status), 0);
    EXPECT_TRUE(S_ISLNK(status.st_mode));
}

TEST_F(XmlFile, WhatIsNoReadableFileIsRefused) {
    const string fifo = Path("fifo");
    ASSERT_EQ(::mkfifo(fifo.toUtf8().constData(), 0600), 0);
    const string large = Path("large");
    Put(large, {});
    ASSERT_EQ(::truncate(large.toUtf8().constData(), 100 << 20), 0);
    const string bad = Path("bad%2.xml");
    Put(bad, "<Sample>\n  <Text>");

    // Reading a pipe that nobody writes, or zeros without end, would never come back.
    EXPECT_EQ(Load(FFolder.path()), "Cannot open \"" + FFolder.path() + "\": it is not a file");
    EXPECT_EQ(Load(fifo), "Cannot open \"" + fifo + "\": it is not a file");
    EXPECT_EQ(Load(QStringLiteral("/dev/zero")), "Cannot open \"/dev/zero\": it is not a file");
    EXPECT_EQ(Load(Path("none")), "Cannot open \"" + Path("none") + "\": No such file or directory");
    EXPECT_EQ(Load(large), "\"" + large + "\" is too large: the limit is 64 MiB");
    EXPECT_THAT(Load(bad).toStdString(),
                testing::StartsWith("\"" + bad.toStdString() + "\", line 2, column "));
}

TEST_F(XmlFile, LargeTextsComeBackAndLargerStreamsAreRefused) {
    TSample sample;
    sample.FText = QStringLiteral("line & <tag>\n").repeated(1 << 20); // 13 MiB, escaped 23
    const string path = Path("s.xml");
    XMLSerialize(sample, path, /*compact=*/false, string());
    TSample copy;
    XMLDeserialize(copy, path, string());
    EXPECT_EQ(copy.FText, sample.FText);

    TSample read;
    EXPECT_EQ(ReadFrom(read, QByteArray(100 << 20, ' ')), "stream is too large: the limit is 64 MiB");
}
