// A file system as network shares are: it passes everything on to a folder, but knows no leases, no locks, no
// rename that doesn't replace, no hard links, and no sync of folders.
//
//     poor_file_system FOLDER MOUNT-POINT      stays in the foreground until it is unmounted
#define FUSE_USE_VERSION 31
#include <fuse.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::string Folder;

std::string Behind(const char* path) {
    return Folder + path;
}

int Answer(ssize_t result) {
    return result < 0 ? -errno : int(result);
}

int GetAttr(const char* path, struct stat* info, fuse_file_info* file) {
    return Answer(file != nullptr ? ::fstat(int(file->fh), info) : ::lstat(Behind(path).c_str(), info));
}

int ReadDir(const char* path, void* buffer, fuse_fill_dir_t fill, off_t, fuse_file_info*,
            fuse_readdir_flags) {
    DIR* dir = ::opendir(Behind(path).c_str());
    if (dir == nullptr)
        return -errno;
    while (const dirent* entry = ::readdir(dir))
        fill(buffer, entry->d_name, nullptr, 0, fuse_fill_dir_flags(0));
    ::closedir(dir);
    return 0;
}

int Open(const char* path, fuse_file_info* file) {
    const int descriptor = ::open(Behind(path).c_str(), file->flags);
    file->fh = uint64_t(descriptor);
    return descriptor < 0 ? -errno : 0;
}

int Create(const char* path, mode_t mode, fuse_file_info* file) {
    const int descriptor = ::open(Behind(path).c_str(), file->flags | O_CREAT, mode);
    file->fh = uint64_t(descriptor);
    return descriptor < 0 ? -errno : 0;
}

int Rename(const char* from, const char* to, unsigned flags) {
    return flags != 0 ? -EINVAL : Answer(::rename(Behind(from).c_str(), Behind(to).c_str()));
}

fuse_operations Operations() {
    fuse_operations all{};
    all.getattr = GetAttr;
    all.readdir = ReadDir;
    all.open = Open;
    all.create = Create;
    all.rename = Rename;
    all.readlink = [](const char* path, char* to, size_t size) {
        const ssize_t length = ::readlink(Behind(path).c_str(), to, size - 1);
        if (length >= 0)
            to[length] = '\0';
        return length < 0 ? -errno : 0;
    };
    all.mkdir = [](const char* path, mode_t mode) { return Answer(::mkdir(Behind(path).c_str(), mode)); };
    all.unlink = [](const char* path) { return Answer(::unlink(Behind(path).c_str())); };
    all.rmdir = [](const char* path) { return Answer(::rmdir(Behind(path).c_str())); };
    all.symlink = [](const char* to, const char* path) {
        return Answer(::symlink(to, Behind(path).c_str()));
    };
    all.link = [](const char*, const char*) { return -EPERM; };
    all.chmod = [](const char* path, mode_t mode, fuse_file_info*) {
        return Answer(::chmod(Behind(path).c_str(), mode));
    };
    all.chown = [](const char* path, uid_t user, gid_t group, fuse_file_info*) {
        return Answer(::lchown(Behind(path).c_str(), user, group));
    };
    all.truncate = [](const char* path, off_t size, fuse_file_info*) {
        return Answer(::truncate(Behind(path).c_str(), size));
    };
    all.read = [](const char*, char* to, size_t size, off_t at, fuse_file_info* file) {
        return Answer(::pread(int(file->fh), to, size, at));
    };
    all.write = [](const char*, const char* from, size_t size, off_t at, fuse_file_info* file) {
        return Answer(::pwrite(int(file->fh), from, size, at));
    };
    all.fsync = [](const char*, int, fuse_file_info* file) { return Answer(::fsync(int(file->fh))); };
    all.release = [](const char*, fuse_file_info* file) { return Answer(::close(int(file->fh))); };
    // Without these, the kernel would lock by itself.
    all.flock = [](const char*, fuse_file_info*, int) { return -ENOLCK; };
    all.lock = [](const char*, fuse_file_info*, int, struct flock*) { return -ENOLCK; };
    all.utimens = [](const char* path, const timespec times[2], fuse_file_info*) {
        return Answer(::utimensat(AT_FDCWD, Behind(path).c_str(), times, AT_SYMLINK_NOFOLLOW));
    };
    return all;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: poor_file_system FOLDER MOUNT-POINT\n", stderr);
        return 2;
    }
    Folder = argv[1];
    char foreground[] = "-f";
    char* arguments[] = {argv[0], argv[2], foreground, nullptr};
    const fuse_operations operations = Operations();
    return fuse_main(3, arguments, &operations, nullptr);
}
