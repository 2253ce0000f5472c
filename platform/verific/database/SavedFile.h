#pragma once

#include <capnp/message.h>
#include <kj/array.h>

namespace Verific {

/// The container of a saved netlist: a header of 32 bytes and one Cap'n Proto message.
///
/// Header, little endian: 8 bytes of magic, format version (32 bits), zero (32 bits), length of the message in bytes
/// (64 bits), checksum (64 bits; XXH3 over the header before it and the message).
namespace saved_file {

/// Writes @p message to @p name through a temporary file beside it. Returns false when that fails; an
/// earlier file of that name then stays.
bool write(const char *name, capnp::MessageBuilder &message);

/// The message in the file, or null when there is no such file or it is foreign, of a newer version or damaged.
/// Throws std::bad_alloc.
kj::Array<capnp::word> read(const char *name);

} // namespace saved_file
} // namespace Verific
