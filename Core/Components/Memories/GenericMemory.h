// What the memory chips share: a row of words, and the ways to fill it before a run.
//
// A chip derives from its Component line and from GenericMemory, and lets the loaders reach its
// words through word_count, word_size, read_word and write_word; the loaders know nothing of how the
// chip stores them. The parameters, loaded in this order:
// - "cbmfile": an object file whose first two bytes are the load address, low byte first;
// - "rawfile" (only without "cbmfile"): a raw binary file, loaded whole from "rawaddress" (0 if absent);
// - "cells": "addr:value;addr:value..." in hexadecimal, stored last so that they overwrite the files.
// File names resolve against the circuit file that holds the chip, through the chain of imports.
// Every word is stored at time 0. A missing file and a bad "cells" piece are logged, never thrown.
#ifndef MORVANE_CORE_COMPONENTS_GENERICMEMORY_H
#define MORVANE_CORE_COMPONENTS_GENERICMEMORY_H

#include "Core/Components/ParaMap.h"
#include "Core/Simulation/Value.h"

#include <string>

class Circuit;
class Component;

/// The second base of a memory chip: the abstract row of words and its loaders.
class GenericMemory
{
public:
    /// `owner` is the chip itself; all log lines go out through it.
    explicit GenericMemory(Component* owner) : _owner(owner) {}
    virtual ~GenericMemory() = default;

    GenericMemory(const GenericMemory&) = delete;
    GenericMemory& operator=(const GenericMemory&) = delete;

    virtual unsigned word_count() const = 0;
    /// Bits in a word.
    virtual unsigned word_size() const = 0;
    /// The word at `address` as it stood at `time`, if the chip keeps time at all.
    virtual Value read_word(int address, int time) = 0;
    virtual void write_word(const Value& value, int address, int time) = 0;

    /// Loads at most one file, "cbmfile" before "rawfile", then applies "cells".
    void init_cells_from_params(Circuit* circuit, ParaMap& params);
    /// With `cbm_format` the file's first two bytes give the address and `address` is not used.
    /// A file that can't be opened is logged and leaves the words as they were.
    void load_file_into_memory(const std::string& path, int address, bool cbm_format);
    /// Stores each valid "addr:value" piece of `text`; warns of every other non-empty piece.
    void set_cell_values(const std::string& text);

    /// The help on the four loader keys; the EPROM writes "Commodore" with a capital.
    static std::string loader_parameter_description(bool capital_commodore);

    Component* owner() const { return _owner; }

private:
    Component* _owner;  // the chip; not owned
};

#endif  // MORVANE_CORE_COMPONENTS_GENERICMEMORY_H
