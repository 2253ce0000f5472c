#pragma once

#include <netlistdb/IVDBNet.h>
#include <netlistdb/PooledItem.h>

#include <memory>
#include <string_view>

namespace Verific {
class Net;
}

namespace kvr::netlistdb {

class NameBlock;
class SourcePaths;

/// A net made from a net of the netlist database.
class NETLISTDB_EXPORT VDBNet : public PooledItem<IVDBNet> {
  public:
    /// A net without owner bus.
    /// @throws std::invalid_argument "net is nullptr"
    explicit VDBNet(const Verific::Net *net);
    /// A net that is a bit of @p ownerBus (null: of none). The bus is not told; the caller also calls its addNet.
    /// @throws std::invalid_argument "net is nullptr"
    VDBNet(IVDBNetBus *ownerBus, const Verific::Net *net);
    ~VDBNet() override;
    VDBNet(const VDBNet &) = delete;
    VDBNet &operator=(const VDBNet &) = delete;

    const std::string &getName() const override;
    std::uint32_t getItemType() const override;
    bool isUserDeclared() const override;
    bool isSelectableForDebugger() const override;
    bool isProtected() const override;
    IVDBLineInfo *getLineInfo() override;
    unsigned long long getWidth() const override;
    /// True when the net is wider than one bit.
    bool isBus() const override;
    IVDBNetBus *getOwnerBus() override;
    bool isPwr() const override;
    bool isGnd() const override;
    bool isMultipleDriven() const override;

    /// The text of getName(), NUL-terminated, without the string that getName() makes when it is called first.
    std::string_view nameText() const;

  private:
    friend class ModuleBuilder;

    /// Shares the path of its source position with other items made with the same @p paths; null: shares with none.
    __attribute__((visibility("hidden"))) VDBNet(IVDBNetBus *ownerBus, const Verific::Net *net, SourcePaths *paths);

    NameBlock *m_name = nullptr; ///< null: empty
    unsigned long long m_width = 0;
    std::unique_ptr<IVDBLineInfo> m_lineInfo;
    IVDBNetBus *m_ownerBus;
    bool m_excluded = false;
    bool m_protected = false;
    bool m_power = false;
    bool m_ground = false;
    bool m_multipleDriven = false;
};

} // namespace kvr::netlistdb
