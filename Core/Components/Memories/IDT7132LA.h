// 2K x 8 dual-port static RAM: two independent ports, left and right, on one array, with collision
// detection and a BUSY output on each side.
//
// Each side has an address "A", a data bus "IO" (inout, read as it is: a floating bus reads Z), "RW"
// (H read, L write), "_OE" and "_CE" (both active low) and "BUSY". Ports come in pairs, the left one
// first: "AL" "AR", "IOL" "IOR", "BUSYL" "BUSYR", "RWL" "RWR", "_OEL" "_OER", "_CEL" "_CER".
//
// There is no single delay. A change of an input schedules evaluations at the data sheet's times
// after it, and each evaluation asks the pins' histories whether a condition has held long enough:
// - read: address, "RW" H and "_CE" L all held for tAA (and "_CE" for tAOE): the word as it stood tAA
//   ago goes out; an address with an undefined bit gives U. tOH after an address change the output
//   turns U until the new word is there;
// - output stage: "_OE" and "_CE" both low for tLZ leaves high impedance with undefined data, for
//   tAOE and tAA drives; either high for tHZ releases the bus again. An undefined "_OE" or "_CE"
//   changes nothing;
// - write: address and "_CE" L held for tAW and "RW" L for tWP: "IO" is stored as it stands, at the
//   evaluation's time; an address with an undefined bit stores nothing and is reported;
// - collision: both "_CE" L, equal addresses and a write on either side. Neither side stores, the
//   side whose address or "_CE" changed last (the right one on a tie) gets "BUSY" L after tBAA, the
//   other "BUSY" H. Without a collision both "BUSY" go H tBAA later. "BUSY" gates nothing inside.
//
// Timing: the parameter "device" picks a speed grade (LA20, LA25, LA35, LA55, LA100, the default);
// all times in ns. The words are loaded from the loader parameters as for every memory.
#ifndef MORVANE_CORE_COMPONENTS_IDT7132LA_H
#define MORVANE_CORE_COMPONENTS_IDT7132LA_H

#include "Core/Components/Basic/Buffers.h"
#include "Core/Components/Component.h"
#include "Core/Components/Memories/GenericMemory.h"
#include "Core/Components/Memories/MemoryCells.h"
#include "Core/Components/ParaMap.h"
#include "Core/Simulation/Net.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

/// The speed grade; it indexes the table of times.
enum IDT7132DeviceType
{
    LA20 = 0,
    LA25 = 1,
    LA35 = 2,
    LA55 = 3,
    LA100 = 4,
};

/// The dual-port RAM. Sides are 0 (left) and 1 (right).
class IDT7132LA : public Component, public GenericMemory
{
public:
    static constexpr const char* class_name = "IDT7132LA";
    static constexpr unsigned nof_words = 2048;  // words of 8 bits
    static ParaMap default_parameters();
    static std::string parameter_description();
    /// Grade names to grades. A name not in it is inserted by the lookup as LA20.
    static std::map<std::string, IDT7132DeviceType>& device_name_table();

    IDT7132LA(const std::string& instance_name, IDT7132DeviceType device);
    IDT7132LA(const std::string& instance_name, const ParaMap& params);

    void circuit_connect_callback(Circuit* circuit) override;
    /// Forgets every word and the data buses' histories, then the ports' histories. The output
    /// buffers keep theirs.
    void reset() override;
    void init(int end_time) override;
    /// Does nothing: every evaluation carries the port that asked for it.
    void evaluate(int time) override;
    void evaluate_port(int time, Port* port) override;
    /// "device", then the loader keys.
    std::vector<std::string> get_valid_param_keys() override;
    void port_changed_value(Port* port, const Value& old_value, const Value& new_value, int time) override;
    void update_after_param_change() override;
    /// The access time of the grade.
    std::string aux_info_string() override;

    unsigned word_count() const override { return nof_words; }
    unsigned word_size() const override { return 8; }
    /// An address outside the chip throws std::out_of_range.
    Value read_word(int address, int time) override { return get_value(address, time); }
    void write_word(const Value& value, int address, int time) override { set_value(address, time, value); }
    /// The word at `address` as it stood at `time`; std::out_of_range outside the chip.
    Value get_value(int address, int time) const { return _cells->at(address).value(time); }
    /// Stores the word at `time`; std::out_of_range outside the chip.
    void set_value(int address, int time, const Value& value) { _cells->at(address).set(value, time); }

    IDT7132DeviceType device() const { return _device; }
    /// The buffer that drives a side's data bus; its "_g" shows how the output enable was handled.
    BusBuffer* output_stage(int side) const { return _side[side].dbuf.get(); }

private:
    /// The ports and output stage of one side.
    struct Side
    {
        Port* a = nullptr;                // address "A", 11 bits
        Port* io = nullptr;               // data "IO", 8 bits, inout
        Pin* busy = nullptr;              // "BUSY", L when this side lost a collision
        Pin* rw = nullptr;                // "RW", H read, L write
        Pin* oe = nullptr;                // "_OE", output enable, active low
        Pin* ce = nullptr;                // "_CE", chip enable, active low
        std::unique_ptr<Net> bus;         // between the buffer's "out" and "IO" inside, 8 bits
        std::unique_ptr<BusBuffer> dbuf;  // the output stage, delay 0
        Port* dbuf_in = nullptr;          // the buffer's "in": the data to drive
        Pin* dbuf_g = nullptr;            // the buffer's "_g": H releases the bus
        bool dbuf_stale = true;           // "in" or "_g" set since the buffer last ran
    };

    static int _other_side(int side) { return 1 - side; }

    /// Columns of the table of times.
    enum Timing
    {
        tAA,   // address access
        tAOE,  // output enable access
        tOH,   // output hold after an address change
        tLZ,   // output low-Z
        tHZ,   // output high-Z
        tAW,   // address valid to end of write
        tWP,   // write pulse width
        tWZ,   // write enable to output high-Z
        tBAA,  // BUSY access from address
        nof_timings,
    };
    static constexpr int nof_grades = 5;  // LA20 .. LA100
    // ns, by grade LA20, LA25, LA35, LA55, LA100.
    static constexpr int _timing_table[nof_timings][nof_grades] = {
        {20, 25, 35, 55, 100},  // tAA
        {11, 12, 20, 25, 40},   // tAOE
        {3, 3, 3, 3, 10},       // tOH
        {0, 0, 0, 5, 5},        // tLZ
        {10, 10, 15, 25, 40},   // tHZ
        {15, 20, 30, 40, 90},   // tAW
        {15, 15, 25, 30, 55},   // tWP
        {10, 10, 15, 30, 40},   // tWZ
        {20, 20, 20, 30, 50},   // tBAA
    };

    /// The time of the grade in ns; -1 for a grade outside the table.
    int _timing(Timing column) const
    {
        int grade = static_cast<int>(_device);
        return grade >= 0 && grade < nof_grades ? _timing_table[column][grade] : -1;
    }
    // The data sheet's times; those it gives equal to another share that one's column.
    int _tAA() const { return _timing(tAA); }
    int _tACE() const { return _timing(tAA); }
    int _tAOE() const { return _timing(tAOE); }
    int _tOH() const { return _timing(tOH); }
    int _tLZ() const { return _timing(tLZ); }
    int _tHZ() const { return _timing(tHZ); }
    int _tAW() const { return _timing(tAW); }
    int _tEW() const { return _timing(tAW); }
    int _tWP() const { return _timing(tWP); }
    int _tWZ() const { return _timing(tWZ); }
    int _tBAA() const { return _timing(tBAA); }
    int _tBAC() const { return _timing(tBAA); }
    int _tBDC() const { return _timing(tBAA); }
    int _tBDA() const { return _timing(tBAA); }

    void _init();
    /// Reads the grade and, with a circuit, loads the words.
    void _parse_params(Circuit* circuit);

    void _handle_a_transition(int time, int side);
    void _handle_oe_ce_transitions(int time, int side);
    void _handle_rw_transitions(int time, int side);
    void _handle_possible_read_from_memory(int time, int side);
    void _handle_possible_write_to_memory(int time, int side);
    /// Both chips enabled on one address, and at least one side writing.
    bool _access_collision(int time);
    void _assert_busy_if_necessary(int time);
    /// "_OE" or "_CE": L exactly when both are low.
    Value _active(int side, int time);
    /// Sets the port unless it holds the value already from an earlier or equal time on; true if set.
    static bool _set_output(Port* port, const Value& value, int time);
    /// The data that the side's output stage drives from `time` on.
    void _set_buffer_in(Side& s, const Value& value, int time);
    /// Opens, closes or blurs the side's output stage from `time` on.
    void _set_buffer_g(Side& s, char state, int time);
    /// Lets the side's output stage pass on what it was given, if anything.
    void _run_buffer(Side& s, int time);

    IDT7132DeviceType _device = LA100;  // speed grade
    std::unique_ptr<ByteCells> _cells;  // nof_words histories of 8 bits
    Side _side[2];                      // left, right
};

#endif  // MORVANE_CORE_COMPONENTS_IDT7132LA_H
