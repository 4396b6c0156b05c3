// What a script costs: a script action of one line against the action that does the same without a script, on
// the same document, taking turns. Prints medians and the median of the differences.
//
//   bench_script [COUNT]
#include "actions/ActionDocument.h"
#include "actions/DocumentScriptEngine.h"
#include "actions/JavaScriptAction.h"
#include "actions/PageActions.h"
#include "engine/document/Document.h"
#include "testing/SamplePdf.h"

#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

namespace {

double MicrosecondsOf(TPDFAction& action, TZQPDFDocument& document) {
    const auto begin = std::chrono::steady_clock::now();
    if (action.Execute(document) != 0)
        std::fprintf(stderr, "the script failed\n");
    return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - begin).count();
}

double At(std::vector<double> values, double share) {
    std::sort(values.begin(), values.end());
    return values.at(size_t(share * double(values.size() - 1)));
}

} // namespace

int main(int argc, char** argv) {
    const int count = argc > 1 ? std::max(2, std::atoi(argv[1])) : 2000;
    const QTemporaryDir folder;
    const string path = folder.filePath("in.pdf");
    MakePdf(path, 3);
    TPDFActionRotatePages plain;
    plain.FAngle = 90;
    TPDFActionJavaScript script;
    script.FJavascript = "Document.RotatePages('', 90)";

    TZQPDFDocument document(nullptr);
    document.OpenFromFile(path, {});
    std::printf("first script %.1f ms, with the loading of the library\n",
                MicrosecondsOf(script, document) / 1000);
    std::vector<double> with;
    std::vector<double> without;
    std::vector<double> extra;
    for (int i = 0; i < count; ++i) {
        without.push_back(MicrosecondsOf(plain, document));
        with.push_back(MicrosecondsOf(script, document));
        extra.push_back(with.back() - without.back());
    }
    std::printf("%d turns: without %.1f us, with %.1f us, extra median %.1f us, 99 of 100 under %.1f us\n",
                count, At(without, 0.5), At(with, 0.5), At(extra, 0.5), At(extra, 0.99));
    return 0;
}
