#include "qel/db/streams.h"

#include "qel/utils/text.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace db {

namespace {

std::wstring systemMessage(wchar_t const* what, std::wstring const& path, int code) {
    std::wstring reason = Qelutils::fromUtf8(std::generic_category().message(code));
    return std::wstring(what) + L" \"" + path + L"\": " + reason;
}

// The path of an existing file behind all symbolic links; a path that leads nowhere stays as it is.
std::string resolved(std::string const& path) {
    std::unique_ptr<char, decltype(&std::free)> real{::realpath(path.c_str(), nullptr), &std::free};
    return real ? std::string(real.get()) : path;
}

// The temporary files of a target are numbered, so that a save finds what an earlier one left behind. The target's own
// name would make too long a name: its hash (FNV-1a) stands for it. Should two targets share one, they share the
// numbers.
std::string temporaryName(std::string const& target, int number) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (unsigned char c : target) hash = (hash ^ c) * 0x100000001b3;
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(hash));
    return ".save-" + std::string(digits) + "-" + std::to_string(number);
}

// A temporary file is locked by the stream that writes it until it has its final name or is gone, and whoever takes its
// name away holds that lock. The lock of a process that died is free, wherever that process ran.
bool lock(int file) { return ::flock(file, LOCK_EX | LOCK_NB) == 0; }

bool isNamed(int folder, std::string const& name, struct stat const& file) {
    struct stat named = {};
    return ::fstatat(folder, name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 && named.st_ino == file.st_ino &&
           named.st_dev == file.st_dev;
}

// Does nothing where there is no such file, where it is in use, or where the file system knows no locks.
void removeAbandoned(int folder, std::string const& name) {
    FileDescriptor file;
    file.reset(::openat(folder, name.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status = {};
    if (file.isOpen() && ::fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode) && lock(file.get()) &&
        isNamed(folder, name, status))
        ::unlinkat(folder, name.c_str(), 0);
}

bool hasZero(std::wstring const& path) { return path.find(L'\0') != std::wstring::npos; }

// Why the target can't be replaced, as a number of the system; 0 when it can. A read-only file is refused, although the
// rename would go through: to its user it says that it must not change.
int refusal(int folder, std::string const& name, struct stat const& target) {
    if (S_ISDIR(target.st_mode)) return EISDIR;
    if (!S_ISREG(target.st_mode)) return EINVAL;
    return ::faccessat(folder, name.c_str(), W_OK, AT_EACCESS) == 0 ? 0 : errno;
}

// Only the superuser may give a file away; for all others the new file is their own, with the group where they may.
bool copyPermissions(int file, struct stat const& target) {
    [[maybe_unused]] bool given =
        ::fchown(file, target.st_uid, target.st_gid) == 0 || ::fchown(file, uid_t(-1), target.st_gid) == 0;
    return ::fchmod(file, target.st_mode & 07777) == 0;
}

}  // namespace

bool Stream::fail(std::wstring message) {
    if (ok()) error_ = std::move(message);
    return false;
}

void FileDescriptor::reset(int descriptor) {
    close();
    descriptor_ = descriptor;
}

bool FileDescriptor::close() {
    if (!isOpen()) return true;
    // Never repeated after an interruption: the descriptor is gone either way.
    bool closed = ::close(descriptor_) == 0 || errno == EINTR;
    descriptor_ = -1;
    return closed;
}

// ---- FileInputStream

FileInputStream::FileInputStream(std::wstring const& path, FileOpenMode mode) : path_(path) {
    if (mode != FileOpenMode::Plain)
        failSystem(EINVAL);
    else
        open();
}

void FileInputStream::open() {
    if (hasZero(path_)) {
        failSystem(ENOENT);
        return;
    }
    file_.reset(::open(Qelutils::toUtf8(path_).c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status = {};
    if (!file_.isOpen() || ::fstat(file_.get(), &status) != 0)
        failSystem(errno);
    else if (S_ISDIR(status.st_mode))
        failSystem(EISDIR);
    else if (S_ISREG(status.st_mode))
        sizeHint_ = std::size_t(status.st_size);
}

std::size_t FileInputStream::read(char* buffer, std::size_t size) {
    if (!ok()) return 0;
    ssize_t count;
    do count = ::read(file_.get(), buffer, size);
    while (count < 0 && errno == EINTR);
    if (count < 0) failSystem(errno);
    return std::size_t(std::max<ssize_t>(count, 0));
}

bool FileInputStream::failSystem(int code) { return fail(systemMessage(L"Can't read", path_, code)); }

// ---- FileOutputStream

FileOutputStream::FileOutputStream(std::wstring const& path, FileOpenMode mode, OutputStreamEncoding encoding) :
    path_(path) {
    if (mode != FileOpenMode::Plain || encoding != OutputStreamEncoding::Utf8)
        failSystem(EINVAL);
    else if (openFolder())
        openTemporary();
}

FileOutputStream::~FileOutputStream() {
    if (!temporary_.empty()) ::unlinkat(folder_.get(), temporary_.c_str(), 0);
}

// The folder stays open: the rename then needs no path, and a change of the working directory does no harm.
bool FileOutputStream::openFolder() {
    if (path_.empty() || hasZero(path_)) return failSystem(ENOENT);
    std::string target = resolved(Qelutils::toUtf8(path_));
    std::size_t slash = target.rfind('/');
    name_ = slash == std::string::npos ? target : target.substr(slash + 1);
    if (name_.empty()) return failSystem(EISDIR);
    std::string folder = slash == std::string::npos ? "." : target.substr(0, slash + 1);
    folder_.reset(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return folder_.isOpen() || failSystem(errno);
}

bool FileOutputStream::openTemporary() {
    struct stat target = {};
    bool exists = ::fstatat(folder_.get(), name_.c_str(), &target, 0) == 0;
    if (!exists && errno != ENOENT) return failSystem(errno);
    if (exists)
        if (int code = refusal(folder_.get(), name_, target)) return failSystem(code);
    // Closed to others until it has the permissions of the file that it replaces.
    if (!createTemporary(exists ? 0600 : 0666)) return failSystem(errno);
    return !exists || copyPermissions(file_.get(), target) || failSystem(errno);
}

bool FileOutputStream::createTemporary(unsigned permissions) {
    constexpr int mostAbandoned = 8;  // as many saves of one file would have to die at the same time
    for (int number = 0; number < mostAbandoned; ++number) removeAbandoned(folder_.get(), temporaryName(name_, number));
    for (int number = 0;; ++number) {
        temporary_ = temporaryName(name_, number);
        file_.reset(::openat(folder_.get(), temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, permissions));
        if (file_.isOpen() ? lockTemporary() : errno != EEXIST) break;
    }
    if (!file_.isOpen()) temporary_.clear();
    return file_.isOpen();
}

// False when another save took the new file for an abandoned one, in the moment before it was locked.
bool FileOutputStream::lockTemporary() {
    struct stat status = {};
    bool const taken = !lock(file_.get()) && errno == EWOULDBLOCK;
    return !taken && ::fstat(file_.get(), &status) == 0 && status.st_nlink > 0;
}

bool FileOutputStream::write(char const* data, std::size_t size) {
    if (!ok()) return false;
    if (committed_) return failSystem(EBADF);
    while (size > 0) {
        ssize_t count = ::write(file_.get(), data, size);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return failSystem(errno);
        data += count;
        size -= std::size_t(count);
    }
    return true;
}

bool FileOutputStream::commit() {
    if (!ok() || committed_) return ok();
    committed_ = true;
    return replaceTarget() || failSystem(errno);
}

// In this order: were the rename on the disk before the bytes, a power cut could leave an empty file; and were the file
// closed before the rename, another save could take it for abandoned.
bool FileOutputStream::replaceTarget() {
    if (::fsync(file_.get()) != 0) return false;
    if (::renameat(folder_.get(), temporary_.c_str(), folder_.get(), name_.c_str()) != 0) return false;
    temporary_.clear();
    file_.close();                                          // has nothing to report after the sync
    return ::fsync(folder_.get()) == 0 || errno == EINVAL;  // some file systems can't sync a folder
}

bool FileOutputStream::failSystem(int code) { return fail(systemMessage(L"Can't write", path_, code)); }

// ---- Texts in memory

StringInputStream::StringInputStream(std::string text, std::size_t portion) :
    text_(std::move(text)), portion_(std::max<std::size_t>(portion, 1)) {}

std::size_t StringInputStream::read(char* buffer, std::size_t size) {
    std::size_t count = std::min({size, portion_, text_.size() - position_});
    std::memcpy(buffer, text_.data() + position_, count);
    position_ += count;
    return count;
}

bool StringOutputStream::write(char const* data, std::size_t size) {
    if (committed_) return fail(L"Can't write to a text that is committed");
    text_.append(data, size);
    return true;
}

bool StringOutputStream::commit() {
    committed_ = true;
    return ok();
}

}  // namespace db
