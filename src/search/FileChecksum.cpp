// The digest is computed with the plain SHA-256 calls, which OpenSSL 3 keeps but marks as deprecated.
#define OPENSSL_SUPPRESS_DEPRECATED

#include <netlistdb/VDBHelper.h>

#include <openssl/sha.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <stdexcept>

namespace kvr::netlistdb {

void VDBHelper::computeSHA256CheckSum(const std::string &path, unsigned char *digest)
{
    std::ifstream file(path, std::ios::in | std::ios::binary);
    if (!file.good()) {
        throw std::runtime_error("Cannot open \"" + path + "\": " + std::strerror(errno) + ".");
    }
    std::array<char, 4096> buffer{};
    SHA256_CTX context;
    SHA256_Init(&context);
    while (file.good()) {
        file.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
        SHA256_Update(&context, buffer.data(), static_cast<std::size_t>(file.gcount()));
    }
    SHA256_Final(digest, &context);
    file.close();
}

} // namespace kvr::netlistdb
