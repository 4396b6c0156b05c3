// What the engine costs: the test for a password, opening, rotating all pages and saving, as the run does
// with each file. Prints processor time a file, since wall-clock time is the disk's.
//
//   bench_engine FILE OUTPUT COUNT [nosync]
#include "base/Exceptions.h"
#include "base/PartFile.h"
#include "engine/document/Document.h"

#include <cstdio>
#include <cstring>
#include <ctime>
#include <sys/resource.h>

namespace {

double ProcessorSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& t) { return double(t.tv_sec) + double(t.tv_usec) / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

double WallSeconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

void Work(const string& input, const string& output) {
    TTestedFile tested;
    if (TPDFDocument::IsPasswordProtected(input, TPDFDocument::NotOpen, &tested))
        throw Exception(input + QStringLiteral(" is protected"));
    TZQPDFDocument document(nullptr);
    document.OpenFromFile(input, {}, TPDFDocument::NotOpen, std::move(tested));
    document.RotatePages({}, 90);
    document.SaveToPath(output, /*keepSource*/ true, /*takeName*/ false);
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 4)
        return 2;
    if (argc > 4 && std::strcmp(argv[4], "nosync") == 0)
        SetFileSync(FileSync::Off);
    const int count = std::atoi(argv[3]);
    try {
        Work(QString::fromUtf8(argv[1]), QString::fromUtf8(argv[2])); // not counted: loading of libraries
        const double processor = ProcessorSeconds();
        const double wall = WallSeconds();
        for (int i = 0; i < count; ++i)
            Work(QString::fromUtf8(argv[1]), QString::fromUtf8(argv[2]));
        std::printf("%.1f us processor, %.1f us wall a file\n",
                    (ProcessorSeconds() - processor) / count * 1e6, (WallSeconds() - wall) / count * 1e6);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
    return 0;
}
