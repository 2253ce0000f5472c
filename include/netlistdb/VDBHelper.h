#pragma once

#include <netlistdb/Export.h>

#include <regex>
#include <string>

namespace kvr::netlistdb {

class IVDBInstance;
class IVDBNetBase;
class TreeIterator;
class VDBSearchParam;

/// Static functions: matchers that move an iterator on to the next item that passes a test, names, and the checksum of
/// a file.
///
/// No iterator may be null, and none is owned. Every matcher but matchAll tests the current item first, and returns
/// true with the iterator on the item found, or false with it at the end; after an exception it stands on the item. The
/// net matchers report every instance that they pass, whatever the test, and store it as the iterator's context, so
/// that the caller knows whose nets follow.
///
/// Matching an expression takes stack in proportion to the length of a name, and compiling one in proportion to the
/// pattern. Before the stack of the calling thread ends, std::regex_error is thrown with the code error_stack.
class NETLISTDB_EXPORT VDBHelper {
  public:
    VDBHelper() = delete;

    /// The matcher that @p param asks for. Compiles a regular expression anew on each call; callers with many steps use
    /// matchNetRegex with an expression of their own.
    /// @throws std::regex_error, and what the net matchers throw.
    static bool matchParam(TreeIterator *iterator, const VDBSearchParam &param);
    /// Instances, nets and buses.
    /// @throws std::runtime_error "Unknown item iterated" for an item that is not what its type code says.
    static bool matchAllNet(TreeIterator *iterator);
    /// Instances, and nets and buses whose full name holds @p pattern (empty: all).
    /// @throws std::runtime_error "Unknown item iterated"; "Unknown item saved in context" for a net before any
    ///         instance.
    static bool matchNet(TreeIterator *iterator, const std::string &pattern, bool ignoreCase);
    /// Instances, and nets and buses in whose full name std::regex_search finds @p expression.
    /// @throws as matchNet, and std::regex_error.
    static bool matchNetRegex(TreeIterator *iterator, const std::regex &expression);
    /// The current item, whatever it is; never moves.
    static bool matchAll(TreeIterator *iterator);

    // Name matchers, for iterators that yield one kind of item only.

    /// @{
    /// The instance, netlist or port whose own name holds @p pattern (empty: any). Case counts: @p ignoreCase is not
    /// consulted.
    /// @throws std::runtime_error "Unknown item iterated" for an item of another kind.
    static bool matchInstance(TreeIterator *iterator, const std::string &pattern, bool ignoreCase);
    static bool matchNetlist(TreeIterator *iterator, const std::string &pattern, bool ignoreCase);
    static bool matchPort(TreeIterator *iterator, const std::string &pattern, bool ignoreCase);
    /// @}

    /// @{
    /// The instance, netlist or port whose whole own name matches @p expression.
    /// @throws std::runtime_error "Unknown item iterated" for an item of another kind, and std::regex_error.
    static bool matchInstanceRegex(TreeIterator *iterator, const std::regex &expression);
    static bool matchNetlistRegex(TreeIterator *iterator, const std::regex &expression);
    static bool matchPortRegex(TreeIterator *iterator, const std::regex &expression);
    /// @}

    /// The instance's path, "/" and the net's name; the name alone when there is no instance (null) or its path is
    /// empty. @p net must not be null. Costs as much as the path.
    static std::string getNetFullName(IVDBNetBase *net, IVDBInstance *instance);

    /// Writes the SHA-256 digest of a file's bytes to @p digest, which has room for 32 bytes (binary, not text). The
    /// file is never held in memory as a whole.
    /// @throws std::runtime_error `Cannot open "<path>": <reason>.` when the file cannot be opened; the digest is then
    ///         untouched. A read error later ends the input there.
    static void computeSHA256CheckSum(const std::string &path, unsigned char *digest);
};

} // namespace kvr::netlistdb
