#pragma once
// What the benchmarks of the editor and of its window share: the text, and the watch.
#include <QByteArray>

#include <ctime>

/// Lines of 40 characters, line feed included, with a bit of everything that is coloured.
inline QByteArray Script(int lines) {
    QByteArray text;
    for (int i = 0; i < lines; ++i) {
        static const char* const Kinds[] = {"function f(a) {", "  var b = \"text\" + 12.5; // why",
                                            "  if (a > b) return /* no */ a;",
                                            "  Document.SaveAs('x', a, b);", "}"};
        text += QByteArray(Kinds[i % 5]).leftJustified(39, 'x') + '\n';
    }
    return text;
}

/// Processor time of this thread, in nanoseconds: what other programs take doesn't count.
inline qint64 Now() {
    timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return qint64(time.tv_sec) * 1000000000 + time.tv_nsec;
}
