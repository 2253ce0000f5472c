#include "design/ItemFacts.h"

#include "design/ModuleNames.h"
#include "design/ObjectFacts.h"

#include <DataBase.h>

namespace kvr::netlistdb::tool {

ItemFacts factsOf(const Verific::DesignObj *object)
{
    ItemFacts facts;
    if (object != nullptr) {
        facts.sources = sourcesOf(*object);
        facts.attributes = attributesOf(*object);
        if (const char *file = Verific::LineFile::GetAbsFileName(object->Linefile())) {
            facts.file = file;
            facts.line = Verific::LineFile::GetLineNo(object->Linefile());
        }
    }
    return facts;
}

ItemFacts factsOf(ModuleNames &names, const IVDBItem &item)
{
    ItemFacts facts = factsOf(names.sourceOf(item));
    facts.aliases = names.aliasesOf(item);
    return facts;
}

ItemFacts factsOf(ModuleNames &names, const OtherSignal &signal)
{
    ItemFacts facts;
    facts.aliases = names.aliasesOf(signal);
    facts.sources = rangesOf(signal.src);
    return facts;
}

} // namespace kvr::netlistdb::tool
