#pragma once

#include "page/PageDetails.h"

#include <string>

namespace kvr::netlistdb::tool {

class OutputStream;
class ProbedDesign;
class Progress;

/// What a page says about where it comes from.
struct PageOrigin {
    std::string command; ///< the files of the design as on a command line of this program
    std::string version; ///< of the program
};

/// Writes a page that shows @p probed to people: one HTML file that needs nothing else. Made as a stream: takes memory
/// in proportion to the largest module.
/// @throws Interrupted, and as OutputStream
void writePage(ProbedDesign &probed, const PageOrigin &origin, const PageDetailsLimits &limits, OutputStream &output,
               Progress &progress, const Interrupt &interrupt);

} // namespace kvr::netlistdb::tool
