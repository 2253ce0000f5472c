#include "Hierarchy.h"

#include <cstdint>
#include <vector>

namespace kvr::netlistdb::yosys {

namespace {

/// What the user calls @p modules.
std::vector<std::string> namesOf(const std::vector<Module *> &modules)
{
    std::vector<std::string> names;
    for (const Module *module : modules) {
        const std::string &userName = module->userName.text;
        names.push_back(userName.empty() ? std::string(module->type.name()) : userName);
    }
    return names;
}

std::string listOf(const std::vector<Module *> &modules)
{
    return quotedList(namesOf(modules));
}

} // namespace

void refuseRecursion(std::deque<Module> &modules, const ReadFault &fault)
{
    // Depth first without recursion: hierarchies may be deeper than the stack.
    enum class State : std::uint8_t { New, Open, Done };
    struct Step {
        unsigned module;
        std::size_t nextUse;
    };
    std::vector<State> states(modules.size(), State::New);
    std::vector<Step> path;
    for (unsigned start = 0; start < modules.size(); ++start) {
        if (states[start] != State::New) {
            continue;
        }
        states[start] = State::Open;
        path.push_back({start, 0});
        while (!path.empty()) {
            Step &step = path.back();
            const std::vector<unsigned> &uses = modules[step.module].uses;
            if (step.nextUse == uses.size()) {
                states[step.module] = State::Done;
                path.pop_back();
                continue;
            }
            const unsigned used = uses[step.nextUse++];
            if (states[used] == State::New) {
                states[used] = State::Open;
                path.push_back({used, 0});
            } else if (states[used] == State::Open) {
                std::vector<Module *> circle;
                std::size_t at = 0;
                while (path[at].module != used) {
                    ++at;
                }
                for (++at; at < path.size(); ++at) {
                    circle.push_back(&modules[path[at].module]);
                }
                std::string text = "module '" + std::string(modules[used].type.name()) + "' contains itself";
                if (!circle.empty()) {
                    text += " through " + listOf(circle);
                }
                fault.fail(text);
            }
        }
    }
}

Module &chooseTop(std::deque<Module> &modules, const std::string &wanted, const ReadFault &fault)
{
    std::vector<Module *> marked;
    std::vector<Module *> roots;
    std::vector<Module *> variants;
    for (Module &module : modules) {
        if (!wanted.empty() && module.type.name() == wanted) {
            return module;
        }
        if (!wanted.empty() && (module.userName.module == wanted || module.userName.text == wanted)) {
            variants.push_back(&module);
        }
        if (module.markedTop) {
            marked.push_back(&module);
        }
        if (!module.instantiated && !module.blackBox) {
            roots.push_back(&module);
        }
    }
    if (variants.size() > 1) {
        fault.fail(severalMadeFrom(wanted, namesOf(variants)));
    }
    if (variants.size() == 1) {
        return *variants.front();
    }
    if (!wanted.empty()) {
        fault.fail("no module '" + wanted + "', which was asked for as the top");
    }
    if (marked.size() > 1) {
        fault.fail("several modules are marked as top: " + listOf(marked));
    }
    if (marked.size() == 1) {
        return *marked.front();
    }
    if (roots.size() > 1) {
        fault.fail("no module is marked as top, and several are instantiated by no other: " + listOf(roots));
    }
    if (roots.empty()) {
        fault.fail("no module is marked as top, and none with a body is instantiated by no other");
    }
    return *roots.front();
}

} // namespace kvr::netlistdb::yosys
