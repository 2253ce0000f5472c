#include "commands/PlanAction.h"
#include "design/PlanFile.h"

namespace kvr::netlistdb::tool {

int exportPlan(const PlanRequest &request, Session &session)
{
    const PlanForm form = request.form == "tcl"   ? PlanForm::Tcl
                          : request.form == "csv" ? PlanForm::Csv
                                                  : PlanForm::JsonDocument;
    writePlan(readPlan(request.file), form, session.output);
    return session.finish(true);
}

} // namespace kvr::netlistdb::tool
