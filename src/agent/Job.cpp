#include "agent/Job.h"

#include "agent/RunHost.h"
#include "base/Paths.h"

TJob::TJob(std::unique_ptr<TSourceFile> source, TFolderPtr output, TTurnLog& log,
           const std::function<bool()>& terminated, TTrayHint& hint)
    : Source(std::move(source)), FOutput(std::move(output)), FLog(log), FTerminated(terminated), FHint(hint) {
    Work.Source = Source->Path();
    Work.Descriptor = Source->Descriptor();
}

void TJob::Log(const string& line) {
    if (FSaidBefore > 0) {
        --FSaidBefore;
        return;
    }
    FLines.append(line);
    Flush();
}

void TJob::Hint(const string& text) {
    FHint.SetHint(text);
}

TOutputFile& TJob::OpenResult() {
    Result = std::make_unique<TPartFile>(FOutput, ExtractFileName(Work.Dest));
    Result->TakeModeOf(Work.Descriptor);
    return *Result;
}

qint64 TJob::TakeNumbers(const string& series, qint64 count) {
    return Entry != nullptr ? Entry->TakeNumbers(series, count) : TWorkHost::TakeNumbers(series, count);
}

void TJob::TakePlace() {
    FInPlace = true;
    Flush();
}

void TJob::Release() {
    FHolding = false;
    Flush();
}

void TJob::Drop() {
    FHolding = false;
    FLines.clear();
}

void TJob::BeginAnew() {
    Result.reset();
    FLines.clear();
    FSaidBefore = FSaid;
}

void TJob::Flush() {
    if (!FInPlace || FHolding)
        return;
    FSaid += FLines.size();
    for (const string& line : std::exchange(FLines, {}))
        FLog.Line(line);
}
