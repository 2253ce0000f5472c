#include "SavedFile.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

#include <capnp/serialize.h>
#include <fcntl.h>
#include <kj/io.h>
#include <sys/stat.h>
#include <unistd.h>
#include <xxhash.h>

namespace Verific::saved_file {

namespace {

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the header is copied byte by byte");

// The first byte is not text, and the line ends reveal a transfer that converted them.
constexpr unsigned char MAGIC[8] = {0x8E, 'N', 'L', 'D', 'B', '\r', '\n', 0x1A};
constexpr std::uint32_t VERSION = 1;

struct Header {
    unsigned char magic[8];
    std::uint32_t version;
    std::uint32_t zero;
    std::uint64_t length;
    std::uint64_t checksum;
};
static_assert(sizeof(Header) == 32);

class Checksum {
  public:
    explicit Checksum(const Header &header) : m_state(XXH3_createState())
    {
        if (m_state == nullptr) {
            throw std::bad_alloc();
        }
        XXH3_64bits_reset(m_state.get());
        add(&header, offsetof(Header, checksum));
    }
    void add(const void *data, std::size_t size) { XXH3_64bits_update(m_state.get(), data, size); }
    std::uint64_t value() const { return XXH3_64bits_digest(m_state.get()); }

  private:
    struct Free {
        void operator()(XXH3_state_t *state) const { XXH3_freeState(state); }
    };
    std::unique_ptr<XXH3_state_t, Free> m_state;
};

class ChecksumStream : public kj::OutputStream {
  public:
    explicit ChecksumStream(Checksum &checksum) : m_checksum(checksum) {}
    void write(const void *buffer, std::size_t size) override { m_checksum.add(buffer, size); }

  private:
    Checksum &m_checksum;
};

/// An open file descriptor.
class Descriptor {
  public:
    explicit Descriptor(int number) : m_number(number) {}
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    ~Descriptor() { close(); }

    bool open() const { return m_number >= 0; }
    int number() const { return m_number; }
    bool close()
    {
        const int number = m_number;
        m_number = -1;
        return number < 0 || ::close(number) == 0;
    }

    bool readAll(void *buffer, std::size_t size) const
    {
        char *to = static_cast<char *>(buffer);
        while (size > 0) {
            const ssize_t got = ::read(m_number, to, size);
            if (got > 0) {
                to += got;
                size -= static_cast<std::size_t>(got);
            } else if (got == 0 || errno != EINTR) {
                return false;
            }
        }
        return true;
    }

    bool writeAll(const void *buffer, std::size_t size) const
    {
        const char *from = static_cast<const char *>(buffer);
        while (size > 0) {
            const ssize_t done = ::write(m_number, from, size);
            if (done >= 0) {
                from += done;
                size -= static_cast<std::size_t>(done);
            } else if (errno != EINTR) {
                return false;
            }
        }
        return true;
    }

  private:
    int m_number;
};

class FileStream : public kj::OutputStream {
  public:
    explicit FileStream(Descriptor &file) : m_file(file) {}
    void write(const void *buffer, std::size_t size) override { good = good && m_file.writeAll(buffer, size); }

    bool good = true;

  private:
    Descriptor &m_file;
};

/// A new file beside the one to be written; removed unless it replaces that one.
class TemporaryFile {
  public:
    explicit TemporaryFile(const char *target) : m_file(make(target, m_name)) {}
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;
    ~TemporaryFile()
    {
        if (m_file.open()) {
            m_file.close();
            ::unlink(m_name.c_str());
        }
    }

    Descriptor &file() { return m_file; }
    bool replace(const char *target)
    {
        if (m_file.close() && std::rename(m_name.c_str(), target) == 0) {
            return true;
        }
        ::unlink(m_name.c_str());
        return false;
    }

  private:
    static int make(const char *target, std::string &name)
    {
        for (unsigned attempt = 0; attempt < 100; ++attempt) {
            name = std::string(target) + ".tmp" + std::to_string(::getpid()) + "_" + std::to_string(attempt);
            const int number = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
            if (number >= 0 || errno != EEXIST) {
                return number;
            }
        }
        return -1;
    }

    std::string m_name;
    Descriptor m_file;
};

} // namespace

bool write(const char *name, capnp::MessageBuilder &message)
{
    Header header = {};
    std::memcpy(header.magic, MAGIC, sizeof MAGIC);
    header.version = VERSION;
    header.length = capnp::computeSerializedSizeInWords(message) * sizeof(capnp::word);
    Checksum checksum(header);
    ChecksumStream sum(checksum);
    capnp::writeMessage(sum, message);
    header.checksum = checksum.value();

    TemporaryFile temporary(name);
    if (!temporary.file().open() || !temporary.file().writeAll(&header, sizeof header)) {
        return false;
    }
    FileStream stream(temporary.file());
    capnp::writeMessage(stream, message);
    return stream.good && temporary.replace(name);
}

kj::Array<capnp::word> read(const char *name)
{
    // Without O_NONBLOCK a pipe without a writer would never open.
    const Descriptor file(::open(name, O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status = {};
    if (!file.open() || ::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return nullptr;
    }
    Header header = {};
    if (!file.readAll(&header, sizeof header) || std::memcmp(header.magic, MAGIC, sizeof MAGIC) != 0 ||
        header.version != VERSION || header.zero != 0 ||
        header.length != static_cast<std::uint64_t>(status.st_size) - sizeof header ||
        header.length % sizeof(capnp::word) != 0 || header.length == 0) {
        return nullptr;
    }
    kj::Array<capnp::word> message = kj::heapArray<capnp::word>(header.length / sizeof(capnp::word));
    if (!file.readAll(message.begin(), header.length)) {
        return nullptr;
    }
    Checksum checksum(header);
    checksum.add(message.begin(), header.length);
    if (checksum.value() != header.checksum) {
        return nullptr;
    }
    return message;
}

} // namespace Verific::saved_file
