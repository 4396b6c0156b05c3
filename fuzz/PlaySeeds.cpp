// Feeds files through a fuzz target: those named, and all in the folders named. This keeps the seeds and the
// inputs of former crashes good without a fuzzer.
#include "fuzz/Target.h"

#include <QDirIterator>
#include <QFile>

namespace {

int Play(const QString& path) {
    QFile file(path);
    Require(file.open(QIODevice::ReadOnly), "a seed can't be read");
    const QByteArray bytes = file.readAll();
    std::printf("%s\n", qPrintable(path));
    std::fflush(stdout); // says which it was, if it ends here
    LLVMFuzzerTestOneInput(reinterpret_cast<const unsigned char*>(bytes.constData()), size_t(bytes.size()));
    return 1;
}

} // namespace

int main(int count, char** paths) {
    int played = 0;
    for (int i = 1; i < count; ++i) {
        const QString path = QString::fromLocal8Bit(paths[i]);
        if (!QFileInfo(path).isDir()) {
            played += Play(path);
            continue;
        }
        for (QDirIterator files(path, QDir::Files); files.hasNext();)
            played += Play(files.next());
    }
    Require(played > 0, "no seeds");
    return 0;
}
