// 32K x 8 static RAM with separate data in ("Din") and out ("Dout"); tie them outside for a shared bus.
//
// Inputs are read one delay before the evaluation, "Dout" is written at it; rows in priority order:
// - "_CS" H: "Dout" Z;
// - "_CS" L, "_WE" H: "_OE" H gives Z, "_OE" L reads, any other "_OE" gives U;
// - "_CS" L, "_WE" neither H nor L: U, nothing stored;
// - "_CS" L, "_WE" L: writes; "Dout" Z if "_OE" is H or L, else U (a write beats the output enable);
// - "_CS" neither H nor L: U.
// A read gives the addressed cell as it stood when the inputs were read ("uuuuuuuu" if never
// written), or U for an address with an undefined bit. A write stores "Din" as it is, undefined bits
// included, at the evaluation's time; an address with an undefined bit stores nothing and prints a
// warning on the trace. There is no edge detection: each input change during a write pulse writes
// again, at the new address or with the new data.
//
// Timing parameter: delay, ns from any input change to "Dout" and to the store, 70 by default. There
// are no separate set-up, hold or pulse width checks. "Dout" stays undefined until the first input
// change has been evaluated.
#ifndef MORVANE_CORE_COMPONENTS_HM62256B_H
#define MORVANE_CORE_COMPONENTS_HM62256B_H

#include "Core/Components/Component.h"
#include "Core/Components/Memories/GenericMemory.h"
#include "Core/Components/Memories/MemoryCells.h"
#include "Core/Components/ParaMap.h"

#include <memory>
#include <string>
#include <vector>

/// The static RAM: one delay, and every word a history of its own.
class HM62256B : public SingleDelayComponent, public GenericMemory
{
public:
    static constexpr const char* class_name = "HM62256B";
    static constexpr unsigned nof_words = 32768;  // words of 8 bits
    static ParaMap default_parameters();
    static std::string parameter_description();

    HM62256B(const std::string& instance_name, int delay);
    HM62256B(const std::string& instance_name, const ParaMap& params);

    /// Loads the parameters into the words when the chip comes into a circuit.
    void circuit_connect_callback(Circuit* circuit) override;
    /// Forgets every word, then the ports' histories; init loads the parameters again.
    void reset() override;
    void init(int end_time) override;
    void evaluate(int time) override;
    /// "delay", then the loader keys.
    std::vector<std::string> get_valid_param_keys() override;
    void update_after_param_change() override;
    /// Every input is read one delay back.
    int history_reach() const override { return delay(); }

    unsigned word_count() const override { return nof_words; }
    unsigned word_size() const override { return 8; }
    /// An address outside the chip throws std::out_of_range.
    Value read_word(int address, int time) override { return get_value(address, time); }
    void write_word(const Value& value, int address, int time) override { set_value(address, time, value); }
    /// The word at `address` as it stood at `time`; std::out_of_range outside the chip.
    Value get_value(int address, int time) const { return _cells->at(address).value(time); }
    /// Stores the word at `time`; std::out_of_range outside the chip.
    void set_value(int address, int time, const Value& value) { _cells->at(address).set(value, time); }

private:
    void _init();
    /// Reads the delay and, with a circuit, loads the words.
    void _parse_params(Circuit* circuit);
    /// The store of one evaluation: "Din" at `input_time` into the word "A" held then.
    void _write(int input_time, int time);

    std::unique_ptr<ByteCells> _cells;  // nof_words histories of 8 bits
    Port* _a = nullptr;                 // address, 15 bits
    Port* _din = nullptr;               // data to write, 8 bits
    Port* _dout = nullptr;              // data read, 8 bits
    Pin* _we = nullptr;                 // write enable "_WE", active low
    Pin* _oe = nullptr;                 // output enable "_OE", active low
    Pin* _cs = nullptr;                 // chip select "_CS", active low
};

#endif  // MORVANE_CORE_COMPONENTS_HM62256B_H
