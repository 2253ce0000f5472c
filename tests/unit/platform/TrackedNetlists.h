#pragma once

#include <set>

#include <DataBase.h>

namespace platformtest {

/// Notes which netlists are alive, without touching those that may not be: watch() puts a net into a netlist that
/// leaves the list with it.
class TrackedNetlists {
  public:
    /// Watches @p netlist under @p number and returns it.
    Verific::Netlist *watch(Verific::Netlist *netlist, int number)
    {
        netlist->Add(new Mark(m_alive, number));
        return netlist;
    }
    const std::set<int> &alive() const { return m_alive; }

  private:
    class Mark : public Verific::Net {
      public:
        Mark(std::set<int> &alive, int number) : Net(nullptr), m_alive(alive), m_number(number)
        {
            m_alive.insert(m_number);
        }
        ~Mark() override { m_alive.erase(m_number); }

      private:
        std::set<int> &m_alive;
        int m_number;
    };

    std::set<int> m_alive;
};

} // namespace platformtest
