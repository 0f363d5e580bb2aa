// 8K x 8 EPROM: the words come from the loader parameters; the chip itself has no write path.
//
// Inputs are read one delay before the evaluation, "D" is written at it; rows in priority order:
// - "_CS" H: Z, whatever "_OE" is;
// - "_CS" L, "_OE" L: the word at "A", or U for an address with an undefined bit;
// - "_CS" L, "_OE" H: Z;
// - "_CS" L, "_OE" neither H nor L: U;
// - "_CS" neither H nor L: U.
// A word that nothing has loaded reads "uuuuuuuu". Addresses wrap at 8192, so a file longer than the
// chip overwrites its start.
//
// Timing parameter: delay, the access time in ns from any input change to "D", 120 by default. "D"
// stays undefined until the first input change has been evaluated.
#ifndef MORVANE_CORE_COMPONENTS_MC27C64_H
#define MORVANE_CORE_COMPONENTS_MC27C64_H

#include "Core/Components/Component.h"
#include "Core/Components/Memories/GenericMemory.h"
#include "Core/Components/ParaMap.h"

#include <string>
#include <vector>

/// The EPROM: a plain row of words with no history, since nothing changes them during a run.
class MC27C64 : public SingleDelayComponent, public GenericMemory
{
public:
    static constexpr const char* class_name = "MC27C64";
    static constexpr int nof_words = 8192;  // words of 8 bits
    static ParaMap default_parameters();
    static std::string parameter_description();

    MC27C64(const std::string& instance_name, int delay);
    MC27C64(const std::string& instance_name, const ParaMap& params);

    /// Loads the parameters into the words when the chip comes into a circuit.
    void circuit_connect_callback(Circuit* circuit) override;
    /// Every word back to "uuuuuuuu", then the ports' histories; init loads the parameters again.
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
    /// `time` is not looked at.
    Value read_word(int address, int /*time*/) override { return read(address); }
    void write_word(const Value& value, int address, int /*time*/) override { write(address, value); }
    /// The word at `address` modulo 8192.
    const Value& read(int address) const { return _cells[_index(address)]; }
    void write(int address, const Value& value) { _cells[_index(address)] = value; }

private:
    void _init();
    /// Reads the delay and, with a circuit, loads the words.
    void _parse_params(Circuit* circuit);
    /// A negative address wraps from the top too, rather than leave the row.
    static int _index(int address) { return ((address % nof_words) + nof_words) % nof_words; }

    Value _cells[nof_words];  // 8 bits each, in the object: a read is one index
    Port* _a = nullptr;       // address, 13 bits
    Port* _d = nullptr;       // data out, 8 bits
    Pin* _oe = nullptr;       // output enable "_OE", active low
    Pin* _cs = nullptr;       // chip select "_CS", active low
};

#endif  // MORVANE_CORE_COMPONENTS_MC27C64_H
