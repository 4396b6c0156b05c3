// Safety nets that scripts can't see: whatever one does, the next one runs and the agent can stop.
#include "actions/JavaScriptAction.h"
#include "scripting/ScriptFixture.h"
#include "testing/CpuTime.h"

#include <QFile>

#include <atomic>
#include <chrono>
#include <thread>

#ifdef __SANITIZE_ADDRESS__
extern "C" size_t __sanitizer_get_current_allocated_bytes(); // the compiler comes without its header
#endif

namespace {

/// Resident memory of this process in MiB, or the most it ever was.
double Memory(const char* figure = "VmRSS:") {
    QFile status("/proc/self/status");
    EXPECT_TRUE(status.open(QIODevice::ReadOnly));
    const QByteArray text = status.readAll();
    const qsizetype at = text.indexOf(figure) + qsizetype(strlen(figure));
    return text.mid(at, text.indexOf('k', at) - at).trimmed().toDouble() / 1024;
}

/// The most it ever was begins anew.
void ForgetPeak() {
    QFile file("/proc/self/clear_refs");
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write("5") == 1);
}

/// What the process holds in MiB. The address sanitizer keeps what was freed for a while, so it is asked
/// itself.
double Held() {
#ifdef __SANITIZE_ADDRESS__
    return double(__sanitizer_get_current_allocated_bytes()) / (1 << 20);
#else
    return Memory();
#endif
}

} // namespace

class ScriptSafety : public TScriptTest {};

TEST_F(ScriptSafety, HarmfulScriptsFailAndTheNextOneRuns) {
    Open(1);
    for (const char* script : {
             "throw 1",
             "throw null",
             "throw {get message() { throw 2 }, toString() { throw 3 }}",
             "(function deeper() { deeper() })()",
             "var o = {}; o.toString = () => String(o); String(o)",
             "JSON.parse('['.repeat(1e5))",
             "var all = []; for (;;) all.push({})",
             "var all = []; for (;;) all.push(new Array(1000).fill(1.5))",
             "var all = []; for (;;) all.push(new Float64Array(1e5))",
             "var all = []; for (;;) all.push('x'.repeat(1e6).split('').join(' '))",
             "var text = 'abc'; for (;;) text += text.toUpperCase()",
             "var all = []; for (;;) all.push(new TPDFDocument())",
             "var all = []; for (;;) all.push(Document.ExtractPages('1', '', true))",
             "var all = new Map(); for (let i = 0;; ++i) all.set(i, i)",
             "new Uint8Array(2 ** 33)",
             "var big = new Uint8Array(2e9); big.fill(1)",
             "new Array(2e8).fill(1)",
             "var s = 'x'; for (;;) { s += s; s.charCodeAt(0) }",
             "var s = 'x'; for (;;) s = s + s",
             "JSON.stringify(new Array(1e7).fill('0123456789'.repeat(9)))",
             "new TZQPDFBatesDictionary().Numbers = {*[Symbol.iterator]() { for (;;) yield 'x'.repeat(99) }}",
             "new TZQPDFBatesDictionary().Numbers = Array(1e6).fill('x'.repeat(1e6))",
             "throw new Error('x'.repeat(2 ** 27))",
             "try { new Array(2e8).fill(1) } catch (e) {}",
             "var all = []; for (;;) { try { for (;;) all.push(new Uint8Array(1e6)) } catch (e) {} }",
             "var all = []; async function grow() { for (;;) { await 0; all.push(new Uint8Array(1e5)) } } "
             "grow()",
             "var all = []; (function more() { Promise.resolve().then(more); all.push(new "
             "Array(1e4).fill(0)) })()",
         }) {
        const double before = Held();
        ForgetPeak();
        const double begin = CpuSeconds();
        EXPECT_FALSE(Run(script)) << script;
        EXPECT_TRUE(Failure().startsWith("test:")) << Failure().left(200).toStdString();
        EXPECT_LT(CpuSeconds() - begin, 20) << script;
#ifndef __SANITIZE_ADDRESS__ // it holds back what was freed
        EXPECT_LT(Memory("VmHWM:") - before, 256 + 64) << script;
#endif
        EXPECT_EQ(Value("Document.GetLastError()"), "0") << script;
        EXPECT_TRUE(Run("var some = []; for (let i = 0; i < 1e5; ++i) some.push({i}); some = null"))
            << script;
        EXPECT_LT(Held() - before, 32) << script;
    }
}

TEST_F(ScriptSafety, GarbageIsNoUse) {
    Open(1);
    for (const char* script : {
             "for (let i = 0; i < 300; ++i) new Uint8Array(1e6).fill(1)",
             "for (let i = 0; i < 1e6; ++i) ({i})",
             "for (let i = 0; i < 1500; ++i) new TPDFDocument()",
             "for (let i = 0; i < 500; ++i) Document.ExtractPages('1', '', true)",
             "for (let i = 0; i < 200; ++i) 'x'.repeat(1e6).split('')",
         })
        EXPECT_TRUE(Run(script)) << script << Failure().toStdString();
    EXPECT_LT(Memory("VmHWM:"), 1536); // with what sanitizers hold back
}

TEST_F(ScriptSafety, TheSettingsSayHowMuchMayBeHeld) {
    const QByteArray before = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", Narrow(FWorkspace.Path()));
    struct TCase {
        const char* Value;
        bool HasRoom; // for 100 MB
    };
    for (const TCase& row : {TCase{"64", false}, TCase{"512", true}, TCase{"0", true}, TCase{"much", true}}) {
        FWorkspace.Write("morvane/settings.ini", QByteArray("[General]\nScriptMemory=") + row.Value);
        std::thread([&row] {
            TJSDocumentScripting engine(nullptr, 1 << 26);
            EXPECT_EQ(engine.Evaluate("new Uint8Array(1e8)", "test"), row.HasRoom) << row.Value;
        }).join();
    }
    qputenv("XDG_CONFIG_HOME", before);
}

TEST_F(ScriptSafety, GlobalObjectStaysOpen) {
    for (const char* script :
         {"Object.freeze(globalThis)", "'use strict'; Object.preventExtensions(globalThis)",
          "Object.seal(this); var late", "globalThis.__proto__ = null"}) {
        [[maybe_unused]] const bool ran = Run(script);
        EXPECT_TRUE(Run("var i = 1; function f() { return i } ShowMessage(f() + typeof Document)")) << script;
        EXPECT_EQ(FBoxes.Said.takeLast(), "1object") << script;
    }
}

TEST_F(ScriptSafety, TenThousandScriptsOnTenThousandDocuments) {
    MakePdf(FWorkspace.Path("in.pdf"), 2);
    TPDFActionJavaScript action;
    action.FJavascript =
        "var count = (this.count || 0) + 1; leak = new Array(100).fill(count);"
        "Document.RotatePages('1', 90); new TPDFDocPermissions(); Document.ExtractPages('2', '', "
        "true); Promise.resolve(count).then(x => { seen = x })";
    EXPECT_TRUE(Run("count = 0"));
    double first = 0;
    for (int i = 0; i < 10'000; ++i) {
        TZQPDFDocument document(nullptr);
        document.OpenFromFile(FWorkspace.Path("in.pdf"), {});
        ASSERT_EQ(action.Execute(document), 0U);
        if (i == 2000)
            first = Held();
    }
    EXPECT_EQ(Value("count + seen"), "20000");
    EXPECT_LT(Held() - first, 8) << "grew from " << first << " MiB";
}

TEST_F(ScriptSafety, StopEndsScripts) {
    for (const char* script : {
             "for (;;);",
             "for (;;) { try { for (;;); } catch (e) {} finally { for (;;); } }",
             "/(a+)+b/.test('a'.repeat(40))",
             "(async () => { for (;;) await 0 })()",
             "for (let i = 0; i < 1000; ++i) Promise.resolve().then(() => { for (;;); })",
             "Promise.resolve().then(() => { for (;;); }); for (;;);",
             "[3, 1, 2].sort(() => { for (;;); })",
             "({toString() { for (;;); }}) + ''",
             "throw {toString() { for (;;); }}",
             "IncludeResource('endless.js'); for (;;);",
             "CreateProcess('sh -c \"exec sleep 90 >/dev/null 2>&1\"', 0, true)",
             "for (;;) FindFiles('/usr', '*', false)",
             "for (let i = 0; ; ++i) new Uint8Array(1e6)",
         }) {
        StopSignal().Lower();
        std::atomic<double> raised = 0;
        std::thread stopper([&raised] {
            std::this_thread::sleep_for(std::chrono::milliseconds(150));
            raised = CpuSeconds();
            StopSignal().Raise();
        });
        [[maybe_unused]] const bool ran = Run(script);
        EXPECT_GT(raised, 0) << "ended by itself: " << script;
        stopper.join();
        EXPECT_LT(CpuSeconds() - raised, 2) << script;
        EXPECT_FALSE(Run("1")) << script; // nothing runs while the agent stops
        StopSignal().Lower();
        EXPECT_EQ(Value("1 + 1"), "2") << script;
    }
}
