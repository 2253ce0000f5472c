#include "design/FullNames.h"
#include "design/ItemFacts.h"
#include "design/NetClockRows.h"
#include "design/NetPins.h"
#include "output/JsonRow.h"
#include "serve/RowSchema.h"
#include "serve/Tool.h"

#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

namespace {

/// The net or bus that @p bits are the whole of; null when they are a part of one, or of no net or bus.
IVDBNetBase *itemOf(const std::vector<PathResolver::Bit> &bits)
{
    IVDBNet *first = bits.front().net;
    if (first == nullptr || bits.size() == 1) {
        return first;
    }
    IVDBNetBus *bus = first->getOwnerBus();
    for (const PathResolver::Bit &bit : bits) {
        if (bit.net == nullptr || bit.net->getOwnerBus() != bus) {
            return nullptr;
        }
    }
    return bus != nullptr && bus->getNets().size() == bits.size() ? bus : nullptr;
}

Json listOf(const std::vector<NetPin> &pins)
{
    Json list = Json::array();
    for (const NetPin &pin : pins) {
        list.push_back({{"path", pin.path}, {"type", jsonOrNull(pin.type)}, {"pin", jsonOrNull(pin.pin)}});
    }
    return list;
}

/// The rows of clock-of, each with what the net connects.
class NetRows : public RowSource {
  public:
    NetRows(Design &design, const std::vector<PathResolver::Bit> &bits, const NetClockChoice &choice,
            std::size_t mostPins)
        : m_bits(bits), m_clocks(design, bits, choice), m_pins(design), m_mostPins(mostPins)
    {
    }

    std::vector<Column> columns() const override
    {
        std::vector<Column> columns = m_clocks.columns();
        columns.push_back({"drivers", nullptr});
        columns.push_back({"loads", nullptr});
        columns.push_back({"load_count", nullptr});
        return columns;
    }

    bool step(ResultWriter &writer) override
    {
        if (m_next == m_bits.size()) {
            return false;
        }
        const PathResolver::Bit &bit = m_bits[m_next++];
        NetPins pins;
        if (bit.net != nullptr) {
            pins = m_pins.pinsOf(*bit.instance, *bit.net, m_mostPins);
        }
        const Json drivers = listOf(pins.drivers);
        const Json loads = listOf(pins.loads);
        WithPins more(writer, {&drivers, &loads, pins.isWhole ? Value(pins.loadCount) : Value()});
        m_clocks.step(more);
        return true;
    }

  private:
    /// Hands rows on with some values behind them.
    class WithPins : public ResultWriter {
      public:
        WithPins(ResultWriter &writer, Row values) : m_writer(writer), m_values(std::move(values)) {}
        void begin(const ResultHead &head) override { m_writer.begin(head); }
        void row(const Row &row) override
        {
            Row whole = row;
            whole.insert(whole.end(), m_values.begin(), m_values.end());
            m_writer.row(whole);
        }
        void end(Ending ending, const std::vector<Fact> &facts) override { m_writer.end(ending, facts); }
        void tick() override { m_writer.tick(); }

      private:
        ResultWriter &m_writer;
        Row m_values;
    };

    std::vector<PathResolver::Bit> m_bits;
    NetClockRows m_clocks;
    NetPinFinder m_pins;
    std::size_t m_mostPins;
    std::size_t m_next = 0;
};

class NetTool : public Tool {
  public:
    const char *name() const override { return "net"; }
    const char *title() const override { return "One net or bus"; }
    const char *description() const override
    {
        return "Shows a net, or each bit of a bus: other names, source positions, the clocks that reach it (nearest "
               "first), what else reaches it, the clocks whose registers it reaches, and its drivers and loads: pins "
               "of cells "
               "at every level, and ports of the top.";
    }
    std::vector<Parameter> parameters() const override
    {
        Parameter path("path", Parameter::Type::Text,
                       "Any of the full names of a net or bus, levels joined by '/'; also bus[3] and bus[7:0]");
        path.required = true;
        Parameter pins("pins", Parameter::Type::Number, "Most drivers, and most loads, to list of each bit");
        pins.most = 1000;
        pins.fallback = 10;
        return {path, pins, formParameter()};
    }
    Json rowSchema() const override
    {
        return schemaOfRow({"net", "clock", "clocks", "networks", "reached_by", "aliases", "sources", "captured_by",
                            "reaches", "drivers", "loads", "load_count"});
    }

    Question ask(const ToolCall &call) const override
    {
        ServedForm &form = call.form();
        const std::string path = call.arguments.text("path");
        const std::vector<PathResolver::Bit> bits = form.paths().nets(path);
        form.clocks(&call.call);
        Question question;
        question.head = headOf("clock-of", call, form);
        question.head["path"] = path;
        question.head["width"] = bits.size();
        if (IVDBNetBase *item = itemOf(bits)) {
            IVDBInstance &instance = *bits.front().instance;
            const ItemFacts facts = factsOf(form.design().names(*instance.getModule()), *item);
            question.head["kind"] = item->getItemType() == ITEM_NET_BUS ? "bus" : "net";
            question.head["full_name"] = joined(instance.getPath(), item->getName());
            question.head["user_declared"] = item->isUserDeclared();
            question.head["file"] = jsonOf(facts.fileValue());
            question.head["line"] = jsonOf(facts.lineValue());
            question.head["attributes"] = jsonOf(Value(&facts.attributes));
        }
        question.find = [&design = form.design(), bits, most = call.arguments.number("pins")] {
            NetClockChoice choice;
            choice.capture = true;
            return std::make_unique<NetRows>(design, bits, choice, most);
        };
        return question;
    }
};

} // namespace

std::unique_ptr<Tool> makeNetTool()
{
    return std::make_unique<NetTool>();
}

} // namespace kvr::netlistdb::tool
