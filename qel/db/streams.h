// Byte streams: files on disk and texts in memory. A stream never throws: what goes wrong makes it fail for good, and
// `error` says in one sentence what it was. Bytes pass as they are; the XML reader and writer above give them meaning.
//
// A file is saved whole or not at all. FileOutputStream writes to a new file in the target's folder, and `commit` puts
// it in the target's place once it is on the disk. A stream that is destroyed without a commit removes the new file; a
// process that is killed leaves it behind (".save-...") with the old target untouched, and the next save of that target
// removes it.
#pragma once
#include <cstddef>
#include <string>

namespace db {

// Both have one member each; another number makes the stream fail.
enum class FileOpenMode : int { Plain = 0 };
enum class OutputStreamEncoding : int { Utf8 = 1 };

// What every stream has: the first thing that went wrong, if any.
class Stream {
public:
    virtual ~Stream() = default;
    Stream(Stream const&) = delete;
    Stream& operator=(Stream const&) = delete;

    bool ok() const { return error_.empty(); }
    std::wstring const& error() const { return error_; }

protected:
    Stream() = default;
    bool fail(std::wstring message);  // keeps the first message; returns false

private:
    std::wstring error_;
};

class InputStream : public Stream {
public:
    // The number of bytes read, at most `size`; fewer than asked is no end. 0 is the end or, when not ok(), a failure.
    virtual std::size_t read(char* buffer, std::size_t size) = 0;
    // The number of bytes to expect; 0 when not known. A hint: the file may change while it is read.
    virtual std::size_t sizeHint() const { return 0; }
};

class OutputStream : public Stream {
public:
    // False once the stream has failed; the stream need not be asked after each write, `commit` tells.
    virtual bool write(char const* data, std::size_t size) = 0;
    // Makes what was written lasting. True when all of it is safe; afterwards nothing can be written. A second call
    // only repeats the answer.
    virtual bool commit() = 0;
};

// Closes what it holds.
class FileDescriptor {
public:
    FileDescriptor() = default;
    ~FileDescriptor() { close(); }
    FileDescriptor(FileDescriptor const&) = delete;
    FileDescriptor& operator=(FileDescriptor const&) = delete;

    void reset(int descriptor);
    bool close();  // false when the system reports an error that it had kept back
    bool isOpen() const { return descriptor_ >= 0; }
    int get() const { return descriptor_; }

private:
    int descriptor_ = -1;
};

class FileInputStream : public InputStream {
public:
    explicit FileInputStream(std::wstring const& path, FileOpenMode mode = FileOpenMode::Plain);
    FileInputStream(std::wstring const& path, int mode) : FileInputStream(path, FileOpenMode(mode)) {}

    std::size_t read(char* buffer, std::size_t size) override;
    std::size_t sizeHint() const override { return sizeHint_; }

private:
    void open();
    bool failSystem(int code);

    std::wstring path_;
    FileDescriptor file_;
    std::size_t sizeHint_ = 0;
};

// The target may be missing or an ordinary, writable file, whose permissions (and, where allowed, owner) stay. Saving
// through a symbolic link replaces the file it leads to. The folder must exist and be writable.
class FileOutputStream : public OutputStream {
public:
    explicit FileOutputStream(std::wstring const& path, FileOpenMode mode = FileOpenMode::Plain,
                              OutputStreamEncoding encoding = OutputStreamEncoding::Utf8);
    FileOutputStream(std::wstring const& path, int mode, int encoding) :
        FileOutputStream(path, FileOpenMode(mode), OutputStreamEncoding(encoding)) {}
    ~FileOutputStream() override;

    bool write(char const* data, std::size_t size) override;
    bool commit() override;

private:
    bool openFolder();
    bool openTemporary();
    bool createTemporary(unsigned permissions);
    bool lockTemporary();
    bool replaceTarget();
    bool failSystem(int code);

    std::wstring path_;
    std::string name_;       // of the target, within the folder
    std::string temporary_;  // likewise; empty when there is none to remove
    FileDescriptor folder_, file_;
    bool committed_ = false;
};

class StringInputStream : public InputStream {
public:
    // Gives at most `portion` bytes at a time.
    explicit StringInputStream(std::string text, std::size_t portion = std::string::npos);

    std::size_t read(char* buffer, std::size_t size) override;
    std::size_t sizeHint() const override { return text_.size(); }

private:
    std::string text_;
    std::size_t portion_, position_ = 0;
};

class StringOutputStream : public OutputStream {
public:
    bool write(char const* data, std::size_t size) override;
    bool commit() override;
    std::string const& text() const { return text_; }

private:
    std::string text_;
    bool committed_ = false;
};

}  // namespace db
