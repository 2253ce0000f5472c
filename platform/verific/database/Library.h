#pragma once

#include "DesignObj.h"

#include <memory>

namespace Verific {

class Cell;
class Library;
class Netlist;

/// A set of libraries; the process has one global set.
class VERIFIC_EXPORT Libset {
  public:
    /// The one global set, made on first use.
    static Libset *Global();
    /// Empties the global set: deletes its libraries, cells and netlists. A netlist that an instance outside every
    /// set uses, directly or further down, lives on with its cell and library, no longer found in the set, until its
    /// last user is deleted. Every other pointer into the set is dead afterwards. Allocates nothing.
    static void Reset();

    Libset();
    ~Libset();
    Libset(const Libset &) = delete;
    Libset &operator=(const Libset &) = delete;

    /// Takes ownership of @p library. Returns 0 (and takes nothing) when it already has an owner.
    unsigned Add(Library *library);
    /// The library of that name, or null.
    Library *GetLibrary(const char *name) const;
    Map *GetLibraries() const { return const_cast<Map *>(&m_libraries); }

  private:
    friend class Library;
    friend class NetlistReclaimer;

    void deleteLibraries();

    Map m_libraries;
};

/// A named set of cells.
class VERIFIC_EXPORT Library : public DesignObj {
  public:
    explicit Library(const char *name);
    /// Deletes the cells and their netlists. Netlists that an instance outside every libset uses, directly or further
    /// down, live on as Libset::Reset() says; another Library object of the same name and attributes is then the owner
    /// of their cells.
    ~Library() override;

    /// Takes ownership of @p cell. Returns 0 (and takes nothing) when it already has an owner.
    unsigned Add(Cell *cell);
    Cell *GetCell(const char *name) const;
    Libset *Owner() const { return m_owner; }
    Map *GetCells() const { return const_cast<Map *>(&m_cells); }

    /// The library "Operators" of the global set, made on first use.
    static Library *Operators();
    /// The library "Primitives" of the global set, made on first use.
    static Library *Primitives();

  private:
    friend class Cell;
    friend class Libset;
    friend class Netlist;
    friend class NetlistReclaimer;
    friend class NetlistWriter;

    struct Successor {};
    explicit Library(Successor);
    /// Deletes the cells with all their netlists, used or not.
    void deleteCells();
    /// Deletes the cells without netlists and abandons the others. Returns whether any cell is left.
    bool deleteEmptyCells();
    void handOver(Library &successor);
    void deleteIfAbandoned();
    bool empty() const { return m_cells.Size() == 0 && m_hiddenCells == nullptr; }

    Libset *m_owner = nullptr;
    Map m_cells;
    Cell *m_hiddenCells = nullptr;        ///< successors of deleted cells, which cannot be found by name
    std::unique_ptr<Library> m_successor; ///< takes over what outlives this one: a destructor must not allocate
    bool m_abandoned = false;             ///< kept by its netlists only: deleted with the last cell
};

/// A named design unit; its netlists are its views.
class VERIFIC_EXPORT Cell : public DesignObj {
  public:
    explicit Cell(const char *name);
    /// Deletes the netlists. One that an instance outside every libset uses, directly or further down, lives on as
    /// Libset::Reset() says; another Cell object of the same name and attributes is then its owner.
    ~Cell() override;

    /// Takes ownership of @p netlist. Returns 0 (and takes nothing) when it already has an owner.
    unsigned Add(Netlist *netlist);
    Netlist *GetFirstNetlist() const;
    Netlist *GetNetlist(const char *view_name) const;
    unsigned NumOfNetlists() const { return m_netlists.Size(); }
    Library *Owner() const { return m_owner; }
    Map *GetNetlists() const { return const_cast<Map *>(&m_netlists); }

  private:
    friend class Library;
    friend class Netlist;
    friend class NetlistReader;
    friend class NetlistReclaimer;
    friend class NetlistWriter;

    struct Successor {};
    explicit Cell(Successor);
    void leaveLibrary();
    void handOver(Cell &successor);
    void deleteIfAbandoned();

    Library *m_owner = nullptr;
    Map m_netlists;
    std::unique_ptr<Cell> m_successor; ///< takes over what outlives this one: a destructor must not allocate
    Cell *m_previousHidden = nullptr;  ///< among the hidden cells of the library
    Cell *m_nextHidden = nullptr;
    bool m_abandoned = false; ///< kept by its netlists only: deleted with the last one
    bool m_restored = false;  ///< made by a restore
};

} // namespace Verific
