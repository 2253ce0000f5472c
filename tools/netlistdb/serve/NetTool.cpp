#include "design/FullNames.h"
#include "design/ItemFacts.h"
#include "design/NetClockRows.h"
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

class NetTool : public Tool {
  public:
    const char *name() const override { return "net"; }
    const char *title() const override { return "One net or bus"; }
    const char *description() const override
    {
        return "Shows a net, or each bit of a bus: other names, source positions, the clocks that reach it (nearest "
               "first), what else reaches it, and the clocks whose registers it reaches.";
    }
    std::vector<Parameter> parameters() const override
    {
        Parameter path("path", Parameter::Type::Text,
                       "Any of the full names of a net or bus, levels joined by '/'; also bus[3] and bus[7:0]");
        path.required = true;
        return {path, formParameter()};
    }
    Json rowSchema() const override
    {
        return schemaOfRow(
            {"net", "clock", "clocks", "networks", "reached_by", "aliases", "sources", "captured_by", "reaches"});
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
        question.find = [&design = form.design(), bits] {
            NetClockChoice choice;
            choice.capture = true;
            return std::make_unique<NetClockRows>(design, bits, choice);
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
