#pragma once

#include "tests/unit/clock/ClockTest.h"

#include <netlistdb/analysis/CrossProbe.h>
#include <netlistdb/netlistdb.h>

#include <memory>
#include <string>

namespace analysis_test {

using clock_test::ELABORATED;
using clock_test::POST_MAP;
using namespace kvr::netlistdb;
using namespace kvr::netlistdb::analysis;

/// Cells that both netlists are made of.
inline const std::string CELLS = R"(
    operator $not(in A, out Y) end
    operator $and(in A, B, out Y) end
    operator $xor(in A, B, out Y) end
    operator $dff(in CLK, D, out Q) end
    operator $sdff(in CLK, SRST, D, out Q) end
    operator $_SDFF_PP0_(in C, D, R, out Q) end
    operator $_SDFF_PP1_(in C, D, R, out Q) end
    operator $_DFF_P_(in C, D, out Q) end
    operator $_AND_(in A, B, out Y) end
    operator $_ANDNOT_(in A, B, out Y) end
    operator $_OR_(in A, B, out Y) end
    operator $_XOR_(in A, B, out Y) end
    operator $_NOT_(in A, out Y) end
)";

/// Loads two netlists from text and says what became of a net as "grade reason net ~inverted".
class CrossProbeTest : public clock_test::ClockTest {
  protected:
    void load(const std::string &rtl, const std::string &mapped)
    {
        elaborated((CELLS + rtl).c_str());
        postMap((CELLS + mapped).c_str());
        probe = std::make_unique<CrossProbe>(*database);
    }

    static IVDBNet *netOf(IVDBInstance *instance, const std::string &name)
    {
        for (IVDBNet *net : instance->getModule()->getNets(false)) {
            if (net->getName() == name) {
                return net;
            }
        }
        ADD_FAILURE() << "no net " << name;
        return nullptr;
    }

    static std::string text(const ProbeMatch &match)
    {
        std::string result = nameOf(match.grade);
        if (match.reason != GoneReason::None) {
            result.append(" ").append(nameOf(match.reason));
        }
        for (const ProbeTarget &target : match.targets) {
            result.append(target.inverted ? " ~" : " ").append(target.net->getName());
        }
        return result;
    }

    std::string found(const std::string &net) const
    {
        IVDBInstance *const root = database->getRoot(ELABORATED);
        return text(probe->find(root, netOf(root, net)));
    }
    std::string foundBack(const std::string &net) const
    {
        IVDBInstance *const root = database->getRoot(POST_MAP);
        return text(probe->findBack(root, netOf(root, net)));
    }

    std::unique_ptr<CrossProbe> probe;
};

} // namespace analysis_test
