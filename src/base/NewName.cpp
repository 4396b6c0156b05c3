#include "base/NewName.h"

#include "base/FaultPoint.h"
#include "base/FolderListing.h"
#include "base/RunToken.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr char NotePrefix[] = ".morvane-name-";

bool Unsupported(int error) {
    return error == EINVAL || error == ENOSYS || error == ENOTSUP;
}

bool LinksUnsupported(int error) {
    return Unsupported(error) || error == EPERM || error == EMLINK;
}

int Remove(const TFolder& folder, const QByteArray& name) {
    return WithFaultPoint("unlink", [&] { return ::unlinkat(folder.Descriptor(), name.constData(), 0); });
}

std::atomic<unsigned> Notes = 0;

/// A hidden file that names what is reserved, for as long as it is.
class TNote {
public:
    TNote(const TFolder& folder, const QByteArray& reserved)
        : FFolder(folder), FName(NotePrefix + QByteArray::number(++Notes) + '.' + RunToken()) {
        const int note = WithFaultPoint("create note", [&] {
            return ::openat(folder.Descriptor(), FName.constData(),
                            O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600);
        });
        if (note < 0)
            return;
        FWritten = ::write(note, reserved.constData(), size_t(reserved.size())) == reserved.size();
        ::close(note);
    }
    ~TNote() { (void)Remove(FFolder, FName); }
    TNote(const TNote&) = delete;
    TNote& operator=(const TNote&) = delete;
    [[nodiscard]] bool Written() const { return FWritten; }

private:
    const TFolder& FFolder;
    QByteArray FName;
    bool FWritten = false;
};

int MoveOverReservation(const TFolder& source, const QByteArray& from, const TFolder& target,
                        const QByteArray& to) {
    const TNote note(target, to);
    if (!note.Written())
        return errno == 0 ? EIO : errno;
    const int reserved = WithFaultPoint("reserve", [&] {
        return ::openat(target.Descriptor(), to.constData(),
                        O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600);
    });
    if (reserved < 0)
        return errno;
    ::close(reserved);
    const int moved = WithFaultPoint("rename over", [&] {
        return ::renameat(source.Descriptor(), from.constData(), target.Descriptor(), to.constData());
    });
    const int error = moved == 0 ? 0 : errno;
    if (moved != 0)
        (void)Remove(target, to);
    return error;
}

QByteArray ReadNote(const TFolder& folder, const QByteArray& name) {
    const int note =
        ::openat(folder.Descriptor(), name.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (note < 0)
        return {};
    QByteArray text(256, '\0');
    const ssize_t got = ::read(note, text.data(), size_t(text.size()));
    ::close(note);
    text.resize(std::max<ssize_t>(got, 0));
    return text.contains('/') ? QByteArray() : text;
}

} // namespace

int MoveToNewName(const char* step, const TFolder& source, const QByteArray& from, const TFolder& target,
                  const QByteArray& to) {
    const int moved = WithFaultPoint(step, [&] {
        return ::renameat2(source.Descriptor(), from.constData(), target.Descriptor(), to.constData(),
                           RENAME_NOREPLACE);
    });
    if (moved == 0 || !Unsupported(errno))
        return moved == 0 ? 0 : errno;
    const int linked = WithFaultPoint("link", [&] {
        return ::linkat(source.Descriptor(), from.constData(), target.Descriptor(), to.constData(), 0);
    });
    if (linked != 0)
        return LinksUnsupported(errno) ? MoveOverReservation(source, from, target, to) : errno;
    if (Remove(source, from) == 0)
        return 0;
    const int error = errno;
    (void)Remove(target, to);
    return error;
}

void SweepReservations(const TFolder& folder) {
    for (const QByteArray& name : ListAll(folder)) {
        if (!name.startsWith(NotePrefix) ||
            StateOfRun(name.mid(name.lastIndexOf('.') + 1)) == TRunState::Alive)
            continue;
        const QByteArray reserved = ReadNote(folder, name);
        struct stat info {};
        if (!reserved.isEmpty() && folder.Look(reserved, info) && S_ISREG(info.st_mode) && info.st_size == 0)
            (void)Remove(folder, reserved);
        (void)Remove(folder, name);
    }
}
