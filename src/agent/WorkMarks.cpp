#include "agent/WorkMarks.h"

#include "base/Exceptions.h"
#include "base/Journal.h"
#include "base/PartFile.h"
#include "base/Paths.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

// The note's first byte, rewritten in place.
constexpr char Idle = '-';
constexpr char AtWork = 'W';
constexpr char Crashed = 'C';

std::atomic<int> NoteOfWork = -1; // while a file is at work

void MarkAndDie(int signal) {
    const int note = NoteOfWork.load(std::memory_order_relaxed);
    if (note >= 0) [[maybe_unused]]
        const ssize_t marked = ::pwrite(note, &Crashed, 1, 0);
    (void)::raise(signal); // the handler has been taken away, so this ends the process
}

string NotePath(const string& folder) {
    return folder + QStringLiteral("at-work");
}

string ListPath(const string& folder) {
    return folder + QStringLiteral("suspects.json");
}

/// 64-bit numbers don't survive as JSON's own.
QJsonArray ToJson(const TFileState& state) {
    return {QString::number(state.Device), QString::number(state.Inode), QString::number(state.Size),
            QString::number(state.ModifyTime)};
}

TFileState FromJson(const QJsonArray& json) {
    TFileState state;
    state.Device = json.at(0).toString().toULongLong();
    state.Inode = json.at(1).toString().toULongLong();
    state.Size = json.at(2).toString().toLongLong();
    state.ModifyTime = json.at(3).toString().toLongLong();
    return state;
}

} // namespace

void MarkFatalSignals() {
    if (!MarksFatalSignals)
        return;
    static std::array<char, 64 << 10> stack; // a stack that overflowed can't run the handler
    stack_t other{};
    other.ss_sp = stack.data();
    other.ss_size = stack.size();
    (void)::sigaltstack(&other, nullptr);
    struct sigaction action {};
    action.sa_handler = MarkAndDie;
    action.sa_flags = SA_ONSTACK | SA_RESETHAND | SA_NODEFER;
    for (const int signal : {SIGSEGV, SIGBUS, SIGABRT, SIGILL, SIGFPE})
        (void)::sigaction(signal, &action, nullptr);
}

TWorkMarks::TWorkMarks(const string& folder) {
    if (folder.isEmpty())
        return;
    FFolder = IncludeTrailingDelimiter(folder);
    try {
        ForceDirectories(FFolder);
        Load();
        ReadNote();
    } catch (const std::exception& e) {
        JournalLine(QStringLiteral("Nothing is kept of files at work: %1").arg(MessageOf(e)));
    }
}

TWorkMarks::~TWorkMarks() {
    End();
    if (FNote >= 0)
        ::close(FNote);
}

void TWorkMarks::ReadNote() {
    FNote = ::open(PathBytes(NotePath(FFolder)).constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (FNote < 0)
        throw EFileError(QStringLiteral("open"), NotePath(FFolder), errno);
    QFile file;
    const QByteArray note = file.open(FNote, QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    if (note.isEmpty() || note.front() == Idle)
        return;
    const QJsonObject json = QJsonDocument::fromJson(note.mid(1)).object();
    const string path = json["path"].toString();
    if (path.isEmpty())
        return; // the run died while it wrote the note
    const TFileState state = FromJson(json["state"].toArray());
    TSuspect& suspect = FSuspects[path];
    if (!suspect.State.SameContents(state))
        suspect = {state, 0};
    suspect.Crashes += note.front() == Crashed ? 1 : 0;
    JournalLine(
        QStringLiteral("The last run ended while it worked on \"%1\"%2.")
            .arg(path, note.front() == Crashed ? QStringLiteral(", by a fault in the program") : string()));
    Save();
    [[maybe_unused]] const ssize_t rested = ::pwrite(FNote, &Idle, 1, 0);
}

void TWorkMarks::Begin(const string& path, const TFileState& state) {
    if (FNote < 0)
        return;
    const QJsonObject json{{"path", path}, {"state", ToJson(state)}};
    const QByteArray note = AtWork + QJsonDocument(json).toJson(QJsonDocument::Compact);
    if (::pwrite(FNote, note.constData(), size_t(note.size()), 0) == note.size() &&
        ::ftruncate(FNote, note.size()) == 0)
        NoteOfWork.store(FNote, std::memory_order_relaxed);
}

void TWorkMarks::End() {
    if (NoteOfWork.exchange(-1, std::memory_order_relaxed) >= 0) [[maybe_unused]]
        const ssize_t rested = ::pwrite(FNote, &Idle, 1, 0);
}

const TWorkMarks::TSuspect* TWorkMarks::Find(const string& path, const TFileState& state) const {
    const auto found = FSuspects.constFind(path);
    return found != FSuspects.constEnd() && found->State.SameContents(state) ? &*found : nullptr;
}

bool TWorkMarks::IsSuspect(const string& path, const TFileState& state) const {
    return Find(path, state) != nullptr;
}

int TWorkMarks::Crashes(const string& path, const TFileState& state) const {
    const TSuspect* suspect = Find(path, state);
    return suspect == nullptr ? 0 : suspect->Crashes;
}

void TWorkMarks::Forget(const string& path) {
    if (FSuspects.remove(path) > 0)
        Save();
}

void TWorkMarks::Load() {
    QFile file(ListPath(FFolder));
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QJsonObject all = QJsonDocument::fromJson(file.readAll()).object();
    for (auto it = all.begin(); it != all.end(); ++it)
        FSuspects[it.key()] = {FromJson(it.value().toObject()["state"].toArray()),
                               it.value().toObject()["crashes"].toInt()};
}

void TWorkMarks::Save() const {
    QJsonObject all;
    for (auto it = FSuspects.begin(); it != FSuspects.end(); ++it)
        all[it.key()] = QJsonObject{{"state", ToJson(it->State)}, {"crashes", it->Crashes}};
    try {
        const QByteArray text = QJsonDocument(all).toJson();
        TPartFile file(ListPath(FFolder));
        file.Write(text.constData(), size_t(text.size()));
        file.PublishReplacing();
    } catch (const std::exception& e) {
        JournalLine(MessageOf(e));
    }
}
