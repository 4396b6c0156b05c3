#include "scripting/mozjs/Core.h"

#include "base/Module.h"

#include <js/ArrayBuffer.h>
#include <js/CompilationAndEvaluation.h>
#include <js/CompileOptions.h>
#include <js/ContextOptions.h>
#include <js/Exception.h>
#include <js/Initialization.h>
#include <js/Interrupt.h>
#include <js/MemoryCallbacks.h>
#include <js/Object.h>
#include <js/PropertyAndElement.h>
#include <js/RealmOptions.h>
#include <js/SourceText.h>
#include <js/Stack.h>
#include <js/String.h>

#include <QPointer>

#include <algorithm>
#include <cstdlib>
#include <pthread.h>

namespace {

constexpr JSClass GlobalClass = {.name = "global",
                                 .flags = JSCLASS_GLOBAL_FLAGS,
                                 .cOps = &JS::DefaultGlobalClassOps,
                                 .spec = nullptr,
                                 .ext = nullptr,
                                 .oOps = nullptr};
constexpr size_t MiB = 1024 * 1024;

std::atomic<int> LiveCores = 0;
thread_local JSContext* TheContext = nullptr; ///< of the thread's core
/// A script that leaves this much more behind than there was before makes a full collection worth while.
constexpr size_t Growth = 8 * MiB;
constexpr size_t LongestMessage = 64 * 1024; // bytes

/// A request for a large piece of memory has failed; it is made once more behind this.
void OnLargeFailure() {
    if (TheContext != nullptr)
        JS_GC(TheContext);
}

/// The library itself, once a process. It can't be shut down under an engine that is still there, as on a
/// thread that the end of the process has overtaken.
void UseLibrary() {
    static const bool ready = [] {
        Allocations::Watch();
        if (!JS_Init())
            throw Exception(QStringLiteral("The script library cannot be initialised."));
        JS::SetProcessLargeAllocationFailureCallback(OnLargeFailure);
        std::atexit([] {
            if (LiveCores.load() == 0)
                JS_ShutDown();
        });
        return true;
    }();
    Q_UNUSED(ready)
}

/// Scripts get half of what their thread has, so that what they call finds room too.
size_t StackQuota() {
    constexpr size_t Most = size_t(2) << 20;
    pthread_attr_t attributes;
    void* lowest = nullptr;
    size_t size = 2 * Most;
    if (::pthread_getattr_np(::pthread_self(), &attributes) == 0) {
        ::pthread_attr_getstack(&attributes, &lowest, &size);
        ::pthread_attr_destroy(&attributes);
    }
    return std::min(size / 2, Most);
}

class TMozScript : public TJSCompiledScript {
public:
    TMozScript(JSContext* cx, JSScript* script) : FScript(cx, script) {}

private:
    JS::PersistentRootedScript FScript;
};

/// A text to compile, which must outlive it.
struct TSource {
    TSource(JSContext* cx, const string& text, const string& name) : Name(Narrow(name)), Options(cx) {
        Options.setFileAndLine(Name.constData(), 1).setNoScriptRval(/*nsr=*/true);
        Must(Text.init(cx, reinterpret_cast<const char16_t*>(text.utf16()), size_t(text.size()),
                       JS::SourceOwnership::Borrowed));
    }
    QByteArray Name;
    JS::CompileOptions Options;
    JS::SourceText<char16_t> Text;
};

JSContext* NewContext(size_t maxMemory) {
    UseLibrary();
    if (TheContext != nullptr) // a second one would crash
        throw Exception(QStringLiteral("This thread has a script engine already."));
    JSContext* cx = JS_NewContext(uint32_t(maxMemory));
    if (cx == nullptr)
        throw Exception(QStringLiteral("There is no memory for a script engine."));
    return cx;
}

} // namespace

TMozCore::TMozCore(const TScriptCoreHost& host)
    : FHost(host), FLimit(host.ScriptMemory), FAllocations([this] {
          FLookAtMemory.store(true, std::memory_order_relaxed);
          JS_RequestInterruptCallbackCanWait(FContext.get());
      }),
      FContext(NewContext(host.MaxMemory)), FGlobal(FContext.get()), FRejected(FContext.get()) {
    JSContext* cx = FContext.get();
    FClasses = std::make_unique<TClassTable>(cx);
    JS_SetContextPrivate(cx, this);
    SetLimits();
    // Promises need the queue before anything else of the library runs.
    if (!js::UseInternalJobQueues(cx) || !JS::InitSelfHostedCode(cx))
        throw Exception(QStringLiteral("The script library cannot be initialised."));
    if (!Guarded(cx, [this] { OpenGlobal(); }))
        throw Exception(QStringLiteral("There is no memory for a script engine."));
    LookAtMemory();
    TheContext = cx;
    ++LiveCores;
}

/// The members' order does the rest: roots go first, then the context, whose last collection frees the
/// objects that scripts own, then the table that it asks.
TMozCore::~TMozCore() {
    FClasses->Forget();
    TheContext = nullptr;
    --LiveCores;
}

void TMozCore::SetLimits() {
    JSContext* cx = FContext.get();
    JS_SetNativeStackQuota(cx, StackQuota());
    // Collections run as a whole and move nothing: wrappers are then found by address alone.
    JS_SetGCParameter(cx, JSGC_INCREMENTAL_GC_ENABLED, 0);
    JS_SetGCParameter(cx, JSGC_COMPACTING_ENABLED, 0);
    // Without it, a heap near its limit is collected for minutes before the limit holds.
    JS_SetGCParameter(cx, JSGC_LARGE_HEAP_INCREMENTAL_LIMIT, 100);
    JS_SetGCParameter(cx, JSGC_MAX_NURSERY_BYTES, 4 * 1024 * 1024);
    // The library's limit counts its own cells only; a quarter of the other one in new memory behind them
    // makes a collection.
    JS_SetGCParameter(cx, JSGC_MALLOC_THRESHOLD_BASE, uint32_t(FLimit / MiB / 4));
    JS::SetLargeArrayBuffersEnabled(/*enable=*/false);
    JS_SetGCCallback(cx, OnCollection, this);
    JS_AddInterruptCallback(cx, OnInterrupt);
    JS::SetOutOfMemoryCallback(cx, OnOutOfMemory, this);
    JS::SetPromiseRejectionTrackerCallback(cx, OnRejection, this);
    JS::ContextOptionsRef(cx).setWasm(/*flag=*/false).setAsmJS(/*flag=*/false);
}

void TMozCore::OpenGlobal() {
    JSContext* cx = FContext.get();
    JS::RealmOptions options;
    // Memory shared with other threads, of which scripts have none, could be waited on for ever.
    options.creationOptions().setSharedMemoryAndAtomicsEnabled(/*flag=*/false);
    FGlobal =
        Must(JS_NewGlobalObject(cx, &GlobalClass, /*principals=*/nullptr, JS::FireOnNewGlobalHook, options));
    const JSAutoRealm realm(cx, FGlobal);
    Must(JS::InitRealmStandardClasses(cx));
}

bool TMozCore::RenewGlobal() {
    JSContext* cx = FContext.get();
    FClasses->Forget();
    FRejected.clear();
    FGlobal = nullptr;
    JS_GC(cx);
    const bool renewed = Guarded(cx, [this, cx] {
        OpenGlobal();
        const JSAutoRealm realm(cx, FGlobal);
        for (const auto& step : FRegistered)
            step();
    });
    if (!renewed) {
        JS_ClearPendingException(cx);
        FGlobal = nullptr; // tried again for the next script
    }
    return renewed;
}

/// Raises what `step` meets as an Exception.
void TMozCore::Do(const std::function<void()>& step) {
    JSContext* cx = FContext.get();
    if (Guarded(cx, step))
        return;
    JS_ClearPendingException(cx);
    throw Exception(QStringLiteral("The script engine cannot be set up: there is no memory left."));
}

void TMozCore::Register(std::function<void()> step) {
    const JSAutoRealm realm(FContext.get(), FGlobal);
    Do(step);
    FRegistered.push_back(std::move(step));
}

void TMozCore::RegisterClass(const QMetaObject& type) {
    Register([this, &type] { FClasses->DefineClass(type); });
}

void TMozCore::RegisterFunctions(const QMetaObject& type) {
    Register([this, &type] { FClasses->DefineFunctions(type); });
}

void TMozCore::BindObject(QObject& instance, const string& name) {
    Register([this, object = QPointer<QObject>(&instance), name] {
        if (object)
            FClasses->DefineObject(*object, name);
    });
}

void TMozCore::Declare(qint32 value, const string& name) {
    Register([this, value, name] {
        JSContext* cx = FContext.get();
        Must(JS_DefineProperty(cx, FGlobal, Narrow(name).constData(), int32_t(value),
                               JSPROP_ENUMERATE | JSPROP_READONLY | JSPROP_PERMANENT));
    });
}

bool TMozCore::Evaluate(const string& script, const string& scriptName) {
    if (FHost.Stopping() || (FGlobal == nullptr && !RenewGlobal())) {
        FHost.Report({.ScriptName = scriptName, .Text = QStringLiteral("The script was stopped.")});
        return false;
    }
    bool succeeded = false;
    const string outerName = std::exchange(FScriptName, scriptName);
    {
        const JSAutoRealm realm(FContext.get(), FGlobal);
        if (FDepth++ == 0)
            LookAtMemory();
        succeeded = RunScript(script, scriptName);
        if (FDepth == 1)
            succeeded = (succeeded || !Ended()) && RunJobs() && succeeded;
        --FDepth;
    }
    if (FDepth == 0) // outside the global object, which goes perhaps
        CleanUp(succeeded);
    FScriptName = outerName;
    return succeeded;
}

bool TMozCore::Ended() const {
    return FExhausted || FHost.Stopping();
}

bool TMozCore::RunScript(const string& script, const string& scriptName) {
    JSContext* cx = FContext.get();
    const JS::RootedScript compiled(cx, CompileText(script, scriptName, TUse::Once));
    const bool ran = compiled.get() != nullptr && Guarded(cx, [&] {
                         JS::RootedValue result(cx);
                         Must(JS_ExecuteScript(cx, compiled, &result));
                     });
    if (compiled && !ran)
        ReportPending(TColumns::FromOne);
    return ran;
}

/// Null on a syntax error, which has been reported.
JSScript* TMozCore::CompileText(const string& text, const string& scriptName, TUse use) {
    JSContext* cx = FContext.get();
    JS::RootedScript script(cx);
    const bool compiled = Guarded(cx, [&] {
        TSource source(cx, text, scriptName);
        source.Options.setIsRunOnce(use == TUse::Once);
        script = Must(JS::Compile(cx, source.Options, source.Text));
    });
    if (!compiled)
        ReportPending(TColumns::FromZero);
    return script;
}

/// What promises have queued, until nothing is left. A promise that was rejected and that nobody handles is a
/// failure like an exception that nobody catches.
bool TMozCore::RunJobs() {
    JSContext* cx = FContext.get();
    js::RunJobs(cx);
    const bool succeeded = !Ended();
    if (!succeeded)
        ReportEnded();
    const bool handled = FRejected.empty();
    for (size_t i = 0; i < FRejected.length(); ++i) {
        JS::RootedObject promise(cx, FRejected[i]);
        JS::RootedValue reason(cx, JS::GetPromiseResult(promise));
        ReportException(JS::ExceptionStack(cx, reason, nullptr), TColumns::FromOne);
    }
    FRejected.clear();
    return succeeded && handled;
}

void TMozCore::CleanUp(bool succeeded) {
    const bool spoilt = FExhausted || GlobalIsClosed() || (!succeeded && IsCrowded());
    if (spoilt || Ended())
        DropJobs();
    FExhausted = false;
    const bool grown = UsedBytes() > FUsedBehindLast + Growth;
    if (spoilt)
        RenewGlobal();
    if (spoilt || grown)
        GiveBack();
    else if (FClasses->TakeUrgent())
        JS_GC(FContext.get());
    else
        JS_MaybeGC(FContext.get());
}

/// Frees garbage, and has free memory go to the system.
void TMozCore::GiveBack() {
    JSContext* cx = FContext.get();
    JS::PrepareForFullGC(cx);
    JS::NonIncrementalGC(cx, JS::GCOptions::Shrink, JS::GCReason::API);
    FUsedBehindLast = UsedBytes();
    Allocations::GiveBack();
}

/// What scripts have left in the global scope leaves too little for others.
bool TMozCore::IsCrowded() {
    const auto crowded = [this] {
        return UsedBytes() > FLimit / 2 ||
               JS_GetGCParameter(FContext.get(), JSGC_BYTES) > FHost.MaxMemory / 2;
    };
    if (crowded())
        JS_GC(FContext.get());
    return crowded();
}

/// Jobs that a script has left behind hold its memory: each is begun and ends at its first step.
void TMozCore::DropJobs() {
    JSContext* cx = FContext.get();
    const JSAutoRealm realm(cx, FGlobal);
    FDropping = true;
    JS_RequestInterruptCallback(cx);
    js::RunJobs(cx);
    FDropping = false;
    JS_ClearPendingException(cx);
}

bool TMozCore::GlobalIsClosed() {
    bool open = true;
    JSContext* cx = FContext.get();
    const JSAutoRealm realm(cx, FGlobal);
    if (!JS_IsExtensible(cx, FGlobal, &open))
        JS_ClearPendingException(cx);
    return !open;
}

std::unique_ptr<TJSCompiledScript> TMozCore::Compile(const string& text, const string& scriptName) {
    JSContext* cx = FContext.get();
    if (FGlobal == nullptr && !RenewGlobal())
        return nullptr;
    const JSAutoRealm realm(cx, FGlobal);
    const JS::RootedScript script(cx, CompileText(text, scriptName, TUse::Again));
    return script ? std::make_unique<TMozScript>(cx, script) : nullptr;
}

void TMozCore::Interrupt() noexcept {
    JS_RequestInterruptCallback(FContext.get());
}

bool TMozCore::IsString(const TJSValue& value) const {
    return static_cast<const JS::Value*>(value.Value)->isString();
}

string TMozCore::TextOf(const TJSValue& value) const {
    JS::RootedString text(FContext.get(), static_cast<const JS::Value*>(value.Value)->toString());
    return ::TextOf(FContext.get(), text);
}

void TMozCore::ReportText(const string& text) {
    FHost.Report({.ScriptName = FScriptName, .Text = text});
}

void TMozCore::ReportEnded() {
    ReportText(FExhausted ? QStringLiteral(
                                "out of memory: a script may hold %1 MB in all, and %2 MB in small objects")
                                .arg(FLimit / MiB)
                                .arg(FHost.MaxMemory / MiB)
                          : QStringLiteral("The script was stopped."));
}

/// A script that was ended leaves no exception behind.
void TMozCore::ReportPending(TColumns columns) {
    JSContext* cx = FContext.get();
    JS::ExceptionStack stack(cx);
    if (FExhausted || !JS_IsExceptionPending(cx))
        ReportEnded();
    else if (JS::StealPendingExceptionStack(cx, &stack))
        return ReportException(stack, columns);
    JS_ClearPendingException(cx);
}

void TMozCore::ReportException(const JS::ExceptionStack& stack, TColumns columns) {
    JSContext* cx = FContext.get();
    JS::ErrorReportBuilder builder(cx);
    if (!builder.init(cx, stack, JS::ErrorReportBuilder::WithSideEffects)) {
        JS_ClearPendingException(cx);
        return ReportText(QStringLiteral("The script failed with an error that has no text."));
    }
    const JSErrorReport* report = builder.report();
    const char* text = builder.toStringResult().c_str();
    // Running out of memory has no place in the script.
    FHost.Report({.ScriptName = report->filename ? QString::fromUtf8(report->filename) : FScriptName,
                  .Line = int(report->lineno),
                  .Column = int(report->column) + (columns == TColumns::FromZero ? 1 : 0),
                  .Text = QString::fromUtf8(text, qsizetype(qstrnlen(text, LongestMessage)))});
}

/// Cells of the collector, all that the library holds behind them, and what there is of the program's.
size_t TMozCore::UsedBytes() const {
    return JS_GetGCParameter(FContext.get(), JSGC_BYTES) + Allocations::Held() + FClasses->OwnedBytes() +
           FCharged;
}

void TMozCore::Charge(size_t bytes) {
    FCharged += bytes;
    if (UsedBytes() <= FLimit)
        return;
    JS_ReportOutOfMemory(FContext.get());
    throw EScriptPending();
}

/// Garbage first, and then the limit: half of what a script has let go would otherwise count.
void TMozCore::LookAtMemory() {
    if (FDepth > 0 && UsedBytes() > std::min(FNextCollection, FLimit))
        JS_GC(FContext.get());
    const size_t used = UsedBytes();
    if (FDepth > 0 && used > FLimit)
        FExhausted = true;
    FNextCollection = used + FLimit / 4;
    const size_t others = used - Allocations::Held(); // allocations are all that the library tells
    const size_t limit = FLimit - std::min(others, FLimit);
    // Near the limit a script gets so far at least before garbage is looked for once more.
    const size_t leastNotice = Allocations::Held() + Growth / 2;
    FAllocations.Set(limit, std::max(leastNotice, std::min(limit, FNextCollection - others)));
}

void TMozCore::OnCollection(JSContext* cx, JSGCStatus status, JS::GCReason /*reason*/, void* self) {
    auto& core = *static_cast<TMozCore*>(self);
    if (status != JSGC_END || core.FDepth == 0)
        return;
    core.FLookAtMemory.store(true, std::memory_order_relaxed);
    JS_RequestInterruptCallback(cx);
}

/// The end of the script: one that caught the library's exception would try again and again.
void TMozCore::OnOutOfMemory(JSContext* cx, void* self) {
    auto& core = *static_cast<TMozCore*>(self);
    if (core.FDepth == 0)
        return;
    core.FExhausted = true;
    JS_RequestInterruptCallback(cx);
}

bool TMozCore::OnInterrupt(JSContext* cx) {
    TMozCore& core = Of(cx);
    if (core.FLookAtMemory.exchange(false, std::memory_order_relaxed))
        core.LookAtMemory();
    if (!core.Ended() && !core.FDropping)
        return true;
    // A request is served once, and jobs of the script may follow: each ends at its first step.
    JS_RequestInterruptCallback(cx);
    return false;
}

void TMozCore::OnRejection(JSContext* /*cx*/, bool /*muted*/, JS::HandleObject promise,
                           JS::PromiseRejectionHandlingState state, void* self) {
    auto& rejected = static_cast<TMozCore*>(self)->FRejected;
    if (state == JS::PromiseRejectionHandlingState::Unhandled) {
        // Where there is no memory for the note, the rejection goes unnoticed.
        [[maybe_unused]] const bool noted = rejected.append(promise);
        return;
    }
    for (size_t i = rejected.length(); i > 0; --i)
        if (rejected[i - 1] == promise)
            rejected.erase(rejected.begin() + (i - 1));
}

MORVANE_MODULE

extern "C" [[gnu::visibility("default")]] TScriptCore* MorvaneMakeScriptCore(const TScriptCoreHost& host);
TScriptCore* MorvaneMakeScriptCore(const TScriptCoreHost& host) {
    return new TMozCore(host);
}
