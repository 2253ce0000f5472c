#include "page/PageDesign.h"

#include "design/SourceText.h"

#include <DataBase.h>
#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

PageDesign::PageDesign(ProbedDesign &probed) : m_probed(probed), m_directory(workingDirectory())
{
    m_instances.resize(modules().size());
    m_probes.resize(modules().size());
    m_instances[model().hierarchy.top()] = &design().root();
    // A module stands behind those that it instantiates.
    for (std::uint32_t module = static_cast<std::uint32_t>(modules().size()); module-- > 0;) {
        IVDBInstance *const instance = m_instances[module];
        if (instance == nullptr) {
            continue;
        }
        m_probes[module] = tool::probesOf(design(), *instance->getModule());
        for (std::uint32_t sub = 0; sub < modules()[module].subs.size(); ++sub) {
            IVDBInstance *&child = m_instances[modules()[module].subs[sub].module];
            child = child != nullptr ? child : below(*instance, module, sub);
        }
    }
}

IVDBInstance *PageDesign::below(IVDBInstance &instance, std::uint32_t module, std::uint32_t sub)
{
    const std::uint32_t cell = modules()[module].subs[sub].cell;
    const std::vector<IVDBInstance *> &children = instance.getSubInstances();
    return cell < children.size() ? children[cell] : nullptr;
}

std::int64_t PageDesign::fileNumber(const std::string &file)
{
    if (file.empty()) {
        return NO_FILE;
    }
    const auto [number, isNew] = m_fileNumbers.try_emplace(file, static_cast<std::int64_t>(m_files.size()));
    if (isNew) {
        const bool isBelow = file.compare(0, m_directory.size(), m_directory) == 0;
        m_files.push_back(isBelow ? file.substr(m_directory.size()) : file);
    }
    return number->second;
}

std::uint64_t pageCode(analysis::ElectricalCode code)
{
    using Code = analysis::ElectricalCode;
    if (code.kind() != Code::Clock && code.kind() != Code::Port) {
        return 0;
    }
    return 1 + (code.kind() == Code::Port ? 1U : 0U) + (code.isInverted() ? 2U : 0U) + std::uint64_t(4) * code.number();
}

} // namespace kvr::netlistdb::tool
