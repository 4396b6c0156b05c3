#include "engine/file/FileInput.h"

#include "base/Exceptions.h"
#include "base/Interrupt.h"
#include "base/Paths.h"
#include "engine/file/SourceStore.h"
#include "engine/pdf/Errors.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <unistd.h>

namespace {

constexpr qpdf_offset_t WholeFile = 1 << 20; // files up to this size are read in one piece
constexpr qpdf_offset_t Window = 1 << 16;
constexpr size_t TokenizerBuffer = 128; // the library's
constexpr qpdf_offset_t Alignment = 1 << 12;

// What one piece of work may read: several passes over what is there, and a good deal of any small file.
constexpr qint64 LeastAllowance = 256 << 20;
constexpr qint64 AllowedPasses = 64;
constexpr qint64 SmallestBlock = 1 << 16; // small files may be stored within their entry

/// File systems that compress store less than they hold; that makes no difference worth a test.
qint64 StoredOf(const struct stat& info) {
    constexpr qint64 BlockUnit = 512; // whatever the file system's own is
    return std::min<qint64>(info.st_size, info.st_blocks * BlockUnit + SmallestBlock);
}

int OpenOrShare(const string& path, int descriptor) {
    // O_NONBLOCK: a FIFO of that name must not hold us up.
    return descriptor == TFileInput::NotOpen
               ? ::open(PathBytes(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)
               : ::fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
}

} // namespace

TFileInput::TFileInput(const string& path, int descriptor)
    : FPath(path), FName(ExtractFileName(path).toStdString()), FDescriptor(OpenOrShare(path, descriptor)) {
    if (FDescriptor < 0)
        throw EFileError("open", path, errno);
    if (::fstat(FDescriptor, &FInfo) == 0 && S_ISREG(FInfo.st_mode)) {
        FStored = StoredOf(FInfo);
        GrantReading();
        return;
    }
    ::close(FDescriptor);
    throw EFileError("open", path, S_ISDIR(FInfo.st_mode) ? EISDIR : EINVAL);
}

TFileInput::~TFileInput() {
    if (!FStore)
        ::close(FDescriptor);
}

void TFileInput::MoveTo(std::shared_ptr<TSourceStore> store) {
    if (FStore || FStored < FInfo.st_size) // the holes of a sparse file would be there in the store
        return;
    FStart = store->Take(FDescriptor, FInfo.st_size, FPath);
    ::close(FDescriptor);
    FDescriptor = store->Descriptor();
    FStore = std::move(store);
    FWindow = {}; // of thousands of files, these add up, too
}

void TFileInput::GrantReading() {
    FAllowance = LeastAllowance + AllowedPasses * FStored;
}

void TFileInput::Charge(size_t bytes) {
    RequireGoingOn();
    FAllowance -= std::min<qint64>(qint64(bytes), std::max<qint64>(FAllowance, 0) + 1);
    if (FAllowance < 0)
        throw std::runtime_error(FName + ": read too often");
}

void TFileInput::RequireSound() const {
    if (FAllowance < 0)
        throw EPDFError(QStringLiteral("\"%1\" is damaged, and its repair would take reading it without end.")
                            .arg(FPath));
    if (FError != 0)
        throw EReadError(FPath, FError);
    if (FStore)
        return; // what lies there is ours
    struct stat now {};
    if (::fstat(FDescriptor, &now) != 0)
        throw EReadError(FPath, errno);
    if (now.st_size < FInfo.st_size)
        throw EPDFError(QStringLiteral("\"%1\" was shortened while it was worked on.").arg(FPath));
}

qpdf_offset_t TFileInput::findAndSkipNextEOL() {
    for (; InWindow() || (FPos = NextData(), FillWindow());
         FPos = FWindowStart + qpdf_offset_t(FWindow.size())) {
        const size_t from = FWindow.find_first_of("\r\n", size_t(FPos - FWindowStart));
        if (from == std::string::npos)
            continue;
        const qpdf_offset_t found = FWindowStart + qpdf_offset_t(from);
        for (FPos = found; InWindow() || FillWindow(); ++FPos) {
            const char c = FWindow[size_t(FPos - FWindowStart)];
            if (c != '\r' && c != '\n')
                break;
        }
        return found;
    }
    return FPos;
}

void TFileInput::seek(qpdf_offset_t offset, int whence) {
    const qpdf_offset_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? FPos : FInfo.st_size;
    if (base + offset < 0)
        throw std::runtime_error(FName + ": seek before the beginning of the file");
    FPos = base + offset;
}

size_t TFileInput::read(char* to, size_t length) {
    if (length <= TokenizerBuffer) {
        if (!InWindow())
            FPos = NextData(); // a hole is white space to the tokenizer
    } else {
        Charge(length);
    }
    last_offset = FPos;
    size_t done = 0;
    while (done < length) {
        if (!InWindow()) {
            if (done > 0 && length <= TokenizerBuffer && NextData() > FPos)
                break;                             // so that the next read passes over the hole
            if (length - done >= size_t(Window)) { // stream data: straight to where it is wanted
                const size_t direct = ReadAt(to + done, length - done, FPos);
                FPos += qpdf_offset_t(direct);
                return done + direct;
            }
            if (!FillWindow())
                break;
        }
        const auto at = size_t(FPos - FWindowStart);
        const size_t part = std::min(length - done, FWindow.size() - at);
        std::memcpy(to + done, FWindow.data() + at, part);
        done += part;
        FPos += qpdf_offset_t(part);
    }
    if (done == 0 && length > 0) { // as a read at the end leaves a file
        FPos = std::min<qpdf_offset_t>(FPos, FInfo.st_size);
        last_offset = FPos;
    }
    return done;
}

/// Where there is data from here on: here, behind the hole that is here, or at the end of the file.
qpdf_offset_t TFileInput::NextData() const {
    if (FStored == FInfo.st_size || FPos >= FInfo.st_size)
        return FPos;
    const off_t data = ::lseek(FDescriptor, FPos, SEEK_DATA);
    if (data < 0)
        return errno == ENXIO ? FInfo.st_size : FPos;
    return data;
}

bool TFileInput::FillWindow() {
    if (FPos >= FInfo.st_size)
        return false;
    const bool whole = FInfo.st_size <= WholeFile;
    FWindowStart = whole ? 0 : FPos / Alignment * Alignment;
    const qpdf_offset_t size = std::min(whole ? WholeFile : Window, FInfo.st_size - FWindowStart);
    Charge(size_t(size));
    FWindow.resize(size_t(size));
    FWindow.resize(ReadAt(FWindow.data(), FWindow.size(), FWindowStart));
    return InWindow();
}

size_t TFileInput::ReadAt(char* to, size_t length, qpdf_offset_t offset) {
    length = size_t(std::clamp<qpdf_offset_t>(FInfo.st_size - offset, 0, qpdf_offset_t(length)));
    size_t done = 0;
    while (done < length) {
        const qpdf_offset_t at = FStart + offset + qpdf_offset_t(done);
        const ssize_t got = ::pread(FDescriptor, to + done, length - done, at);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            FError = errno;
        if (got <= 0)
            break;
        done += size_t(got);
    }
    return done;
}
