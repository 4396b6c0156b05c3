#include "base/FolderListing.h"

#include "base/Exceptions.h"
#include "base/Folder.h"
#include "base/Paths.h"

#include <QStringDecoder>

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>

bool MatchesMask(QStringView name, QStringView mask) {
    qsizetype n = 0;
    qsizetype m = 0;
    qsizetype star = -1; // where the last "*" stands, and how much of the name it has eaten
    qsizetype eaten = 0;
    while (n < name.size()) {
        if (m < mask.size() && mask[m] == u'*') {
            star = m++;
            eaten = n;
        } else if (m < mask.size() && (mask[m] == u'?' || mask[m].toCaseFolded() == name[n].toCaseFolded())) {
            ++m;
            ++n;
        } else if (star >= 0) {
            m = star + 1;
            n = ++eaten;
        } else {
            return false;
        }
    }
    while (m < mask.size() && mask[m] == u'*')
        ++m;
    return m == mask.size();
}

namespace {

bool IsDigit(QChar c) {
    return c >= u'0' && c <= u'9';
}

QStringView DigitsAt(const string& text, qsizetype at) {
    qsizetype end = at;
    while (end < text.size() && IsDigit(text[end]))
        ++end;
    return QStringView(text).mid(at, end - at);
}

QStringView WithoutZeros(QStringView digits) {
    while (digits.size() > 1 && digits.front() == u'0')
        digits = digits.mid(1);
    return digits;
}

int CompareNumbers(QStringView a, QStringView b) {
    a = WithoutZeros(a);
    b = WithoutZeros(b);
    return a.size() != b.size() ? int(a.size() - b.size()) : a.compare(b);
}

bool IsRegularFile(int folder, const dirent& entry) {
    if (entry.d_type != DT_UNKNOWN)
        return entry.d_type == DT_REG;
    struct stat info {};
    return ::fstatat(folder, entry.d_name, &info, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(info.st_mode);
}

} // namespace

bool NaturalLess(const string& a, const string& b) {
    qsizetype i = 0;
    qsizetype j = 0;
    while (i < a.size() && j < b.size()) {
        if (IsDigit(a[i]) && IsDigit(b[j])) {
            const QStringView left = DigitsAt(a, i);
            const QStringView right = DigitsAt(b, j);
            if (const int order = CompareNumbers(left, right); order != 0)
                return order < 0;
            i += left.size();
            j += right.size();
        } else {
            const QChar left = a[i++].toCaseFolded();
            const QChar right = b[j++].toCaseFolded();
            if (left != right)
                return left < right;
        }
    }
    if ((i < a.size()) != (j < b.size()))
        return j < b.size();
    return a < b;
}

namespace {

using TDirectory = std::unique_ptr<DIR, int (*)(DIR*)>;

/// A stream of its own: the folder's descriptor has one position for all who read it.
TDirectory OpenListing(const TFolder& folder) {
    const int descriptor = ::openat(folder.Descriptor(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR* dir = descriptor < 0 ? nullptr : ::fdopendir(descriptor);
    if (dir == nullptr)
        throw EFileError("list the folder", folder.Path(), errno);
    return {dir, ::closedir};
}

/// Null at the end. Raises EFileError.
const dirent* NextEntry(const TDirectory& dir, const TFolder& folder) {
    errno = 0;
    const dirent* entry = ::readdir(dir.get());
    if (entry == nullptr && errno != 0)
        throw EFileError("list the folder", folder.Path(), errno);
    return entry;
}

} // namespace

QStringList ListFiles(const string& folder, const string& mask, int* unreadable) {
    return ListFiles(*TFolder::Open(folder), mask, unreadable);
}

QStringList ListFiles(const TFolder& folder, const string& mask, int* unreadable) {
    const TDirectory dir = OpenListing(folder);
    QStringList names;
    while (const dirent* entry = NextEntry(dir, folder)) {
        if (entry->d_name[0] == '.' || !IsRegularFile(folder.Descriptor(), *entry))
            continue;
        QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        const string name = decoder(QByteArrayView(entry->d_name));
        if (decoder.hasError()) {
            if (unreadable != nullptr)
                ++*unreadable;
        } else if (MatchesMask(name, mask)) {
            names.append(name);
        }
    }
    std::sort(names.begin(), names.end(), NaturalLess);
    return names;
}

QList<QByteArray> ListAll(const TFolder& folder) {
    const TDirectory dir = OpenListing(folder);
    QList<QByteArray> names;
    while (const dirent* entry = NextEntry(dir, folder))
        if (const QByteArray name(entry->d_name); name != "." && name != "..")
            names.append(name);
    return names;
}
