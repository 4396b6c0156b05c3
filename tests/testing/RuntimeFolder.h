#pragma once
// A runtime folder of the test's own, so that its sockets and locks meet nobody else's.
#include <QTemporaryDir>

#include <gtest/gtest.h>

class TRuntimeFolderTest : public testing::Test {
protected:
    TRuntimeFolderTest() { qputenv("XDG_RUNTIME_DIR", FFolder.path().toUtf8()); }
    ~TRuntimeFolderTest() override { qunsetenv("XDG_RUNTIME_DIR"); }

    [[nodiscard]] QString Path(const QString& name) const { return FFolder.filePath(name); }

    QTemporaryDir FFolder;
};
