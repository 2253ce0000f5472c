#include "database/DatabaseState.h"

#include <LineFile.h>

namespace kvr::netlistdb {

IDesignDatabase::~IDesignDatabase() = default;

DesignDatabase::DesignDatabase(bool keepSourceNetlists) : m_state(std::make_unique<State>(keepSourceNetlists)) {}

DesignDatabase::~DesignDatabase()
{
    // Kind by kind for both sources: items, clock domains, working copies.
    const bool keepSourceNetlists = m_state->keepSourceNetlists;
    Source *const sources[] = {&m_state->elaborated, &m_state->postMap};
    for (Source *source : sources) {
        source->topModule = nullptr;
        source->root.reset();
    }
    for (Source *source : sources) {
        source->replacedRoots.clear();
    }
    for (Source *source : sources) {
        source->netlists.clear();
    }
    for (const SOURCE_TYPE type : {SOURCE_ELABORATED, SOURCE_POST_MAP}) {
        m_state->clocks.forgetSource(type);
    }
    for (Source *source : sources) {
        source->workingCopy.reset();
    }
    m_state.reset();
    if (keepSourceNetlists) {
        Verific::Libset::Reset();
    }
    Verific::LineFile::DeleteAllLineFiles();
    Verific::LineFile::ResetFileIdMaps();
}

Source *DesignDatabase::State::source(SOURCE_TYPE type)
{
    switch (type) {
    case SOURCE_ELABORATED:
        return &elaborated;
    case SOURCE_POST_MAP:
        return &postMap;
    }
    return nullptr;
}

bool DesignDatabase::load(const std::string & /*path*/)
{
    return true;
}

bool DesignDatabase::save(const std::string & /*path*/, bool /*flag*/)
{
    return true;
}

bool DesignDatabase::getCheckSum(unsigned char * /*buffer*/)
{
    return false;
}

bool DesignDatabase::reset(SOURCE_TYPE type)
{
    if (!isSourceLoaded(type)) {
        return false;
    }
    // The caches keep their entries: an import drops those that would speak for one of its items.
    m_state->clocks.forgetSource(type);
    Source &source = *m_state->source(type);
    source.pool.clear();
    source.reset();
    return true;
}

bool DesignDatabase::isSourceLoaded(SOURCE_TYPE type) const
{
    const Source *const asked = m_state->source(type);
    return asked != nullptr && asked->topModule != nullptr;
}

IVDBNetlist *DesignDatabase::getTopModule(SOURCE_TYPE type)
{
    const Source *const asked = m_state->source(type);
    return asked != nullptr ? asked->topModule : nullptr;
}

IVDBInstance *DesignDatabase::getRoot(SOURCE_TYPE type)
{
    const Source *const asked = m_state->source(type);
    return asked != nullptr ? asked->root.get() : nullptr;
}

Verific::Netlist *DesignDatabase::workingCopy(SOURCE_TYPE type) const
{
    const Source *const asked = m_state->source(type);
    return asked != nullptr ? asked->workingCopy.get() : nullptr;
}

IVDBNet *DesignDatabase::netItem(const Verific::Net *net, SOURCE_TYPE type) const
{
    const Source *const asked = m_state->source(type);
    return asked != nullptr ? asked->pool.find(net) : nullptr;
}

const Verific::Net *DesignDatabase::sourceNet(const IVDBNet *net, SOURCE_TYPE type) const
{
    const Source *const asked = m_state->source(type);
    return asked != nullptr ? asked->pool.find(net) : nullptr;
}

const Verific::Instance *DesignDatabase::sourceInstance(const IVDBInstance *inst, SOURCE_TYPE type) const
{
    const Source *const asked = m_state->source(type);
    return asked != nullptr ? asked->pool.find(inst) : nullptr;
}

std::uint64_t DesignDatabase::generation(SOURCE_TYPE type) const
{
    const Source *const asked = m_state->source(type);
    return asked != nullptr ? asked->generation : 0;
}

std::vector<IVDBInstance *> DesignDatabase::getViewInstances(IVDBNetlist * /*netlist*/)
{
    return {};
}

std::vector<IVDBInstance *> DesignDatabase::getChildInstances(IVDBNetlist * /*netlist*/)
{
    return {};
}

} // namespace kvr::netlistdb
