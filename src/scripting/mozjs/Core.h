#pragma once
// One runtime, context and global object of the script library, with the limits under which scripts run.
//
// A script that has used up its memory, or has closed the global object to new variables, would leave nothing
// for those behind it: then a fresh global object takes the place of the old one, with all that was
// registered. Garbage that has grown goes with the script that left it.
#include "scripting/host/ScriptCore.h"
#include "scripting/mozjs/Allocations.h"
#include "scripting/mozjs/Classes.h"

#include <js/GCAPI.h>
#include <js/GCVector.h>
#include <js/Promise.h>

#include <atomic>
#include <vector>

class TMozCore final : public TScriptCore {
public:
    /// Raises Exception where the thread has an engine already or the library gives none.
    explicit TMozCore(const TScriptCoreHost& host);
    ~TMozCore() override;
    TMozCore(const TMozCore&) = delete;
    TMozCore& operator=(const TMozCore&) = delete;

    /// Of a running call.
    [[nodiscard]] static TMozCore& Of(JSContext* cx) {
        return *static_cast<TMozCore*>(JS_GetContextPrivate(cx));
    }

    /// Counts bytes that a call from the script makes outside the library, until the call's end. Raises
    /// EScriptPending beyond the limit.
    void Charge(size_t bytes);
    /// What a call has been charged goes with it.
    class TCall {
    public:
        explicit TCall(JSContext* cx) : FCore(Of(cx)), FBefore(FCore.FCharged) {}
        ~TCall() { FCore.FCharged = FBefore; }
        TCall(const TCall&) = delete;
        TCall& operator=(const TCall&) = delete;

    private:
        TMozCore& FCore;
        const size_t FBefore;
    };

    void RegisterClass(const QMetaObject& type) override;
    void RegisterFunctions(const QMetaObject& type) override;
    void BindObject(QObject& instance, const string& name) override;
    void Declare(qint32 value, const string& name) override;
    [[nodiscard]] bool Evaluate(const string& script, const string& scriptName) override;
    [[nodiscard]] std::unique_ptr<TJSCompiledScript> Compile(const string& text,
                                                             const string& scriptName) override;
    void Interrupt() noexcept override;
    [[nodiscard]] TJSEngine& Engine() const override { return FHost.Engine; }
    [[nodiscard]] bool IsString(const TJSValue& value) const override;
    [[nodiscard]] string TextOf(const TJSValue& value) const override;

private:
    struct TContextCloser {
        void operator()(JSContext* cx) const { JS_DestroyContext(cx); }
    };

    enum class TUse { Once, Again };
    /// The library counts columns from 0 while it compiles and from 1 while it runs.
    enum class TColumns { FromZero, FromOne };

    void SetLimits();
    void OpenGlobal();
    bool RenewGlobal();
    void Register(std::function<void()> step);
    void Do(const std::function<void()>& step);
    JSScript* CompileText(const string& text, const string& scriptName, TUse use);
    bool RunScript(const string& script, const string& scriptName);
    bool RunJobs();
    void CleanUp(bool succeeded);
    bool IsCrowded();
    void DropJobs();
    bool GlobalIsClosed();
    [[nodiscard]] bool Ended() const;
    void ReportPending(TColumns columns);
    void ReportEnded();
    void ReportException(const JS::ExceptionStack& stack, TColumns columns);
    void ReportText(const string& text);
    [[nodiscard]] size_t UsedBytes() const;
    void LookAtMemory();
    void GiveBack();

    static bool OnInterrupt(JSContext* cx);
    static void OnCollection(JSContext* cx, JSGCStatus status, JS::GCReason reason, void* self);
    static void OnOutOfMemory(JSContext* cx, void* self);
    static void OnRejection(JSContext* cx, bool muted, JS::HandleObject promise,
                            JS::PromiseRejectionHandlingState state, void* self);

    const TScriptCoreHost FHost;
    const size_t FLimit; ///< bytes of all that scripts hold
    Allocations::TLimit FAllocations;
    std::unique_ptr<TClassTable> FClasses;
    std::unique_ptr<JSContext, TContextCloser> FContext;
    JS::PersistentRootedObject FGlobal;
    JS::PersistentRootedObjectVector FRejected; ///< promises that nobody has handled yet
    std::vector<std::function<void()>> FRegistered;
    std::atomic<bool> FLookAtMemory = false;
    size_t FCharged = 0;        ///< bytes of running calls outside the library
    size_t FNextCollection = 0; ///< bytes in use at which garbage is looked for
    size_t FUsedBehindLast = 0; ///< bytes in use when the last script had gone
    string FScriptName;         ///< the last one begun
    bool FExhausted = false;    ///< the running script has gone beyond the limit
    bool FDropping = false;     ///< jobs that a script has left behind end at their first step
    int FDepth = 0;             ///< of nested Evaluate
};
