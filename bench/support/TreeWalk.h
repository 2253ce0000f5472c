#pragma once

#include "support/GeneratedDesigns.h"

#include <netlistdb/netlistdb.h>

#include <cstddef>
#include <string>
#include <vector>

namespace kvr::netlistdb::bench {

inline IDesignDatabase::SOURCE_TYPE sourceOf(Shape shape)
{
    return shape == Shape::Flat ? IDesignDatabase::SOURCE_POST_MAP : IDesignDatabase::SOURCE_ELABORATED;
}

/// Imports by the road that fits the shape.
bool import(DesignDatabase &database, Shape shape, Verific::Netlist *netlist);

struct TreeCounts {
    std::size_t instances = 0; ///< without the root
    std::size_t leaves = 0;    ///< instances without children
    std::size_t items = 0;     ///< buses and plain nets, as often as a search lists them
    std::size_t depth = 0;
};

/// Walks every instance.
TreeCounts countTree(IDesignDatabase &database, IDesignDatabase::SOURCE_TYPE source);

/// Compares an imported tree with what the generator knows. Returns an empty text, or what differs.
std::string checkTree(IDesignDatabase &database, Shape shape, std::size_t leafInstances);

/// Full names of all buses and plain nets of the tree, in the order of a search, made without the search.
std::vector<std::string> fullNames(IDesignDatabase &database, IDesignDatabase::SOURCE_TYPE source);
/// Writes names one a line.
void writeLines(const std::vector<std::string> &lines, const std::string &path);

/// Every net (bit) of every instance.
std::vector<InstanceNet> allNets(IDesignDatabase &database, IDesignDatabase::SOURCE_TYPE source);

/// Asks for the clock of the nets that the generator knows it of. Returns an empty text, or what differs.
std::string checkClocks(IDesignDatabase &database, Shape shape, std::size_t leafInstances);

} // namespace kvr::netlistdb::bench
