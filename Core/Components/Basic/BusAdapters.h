// Adapters between nets of different widths: Join, Split and Splice.
//
// Their ports follow from the parameters: the size key gives the width of the wide side, and every
// other key names a port whose value is a bit expression, items "n" or "from:to" separated by ';'.
// The expression's last bit is the port's bit 0 and says which bit of the wide side it meets, so
// "3:0" keeps the order and "0:3" mirrors it. A port is as wide as its expression.
//
// - Join: the inputs are gathered into "out"; two inputs may not share an output bit, and bits no
//   input covers stay u.
// - Split: "in" is handed out to the outputs; outputs may share a source bit.
// - Splice: inout ports on one internal net, which carries values between the outside nets by the
//   nets' own resolution; it evaluates nothing.
// No delay: a change crosses within the same time. z passes through as z.
#ifndef MORVANE_CORE_COMPONENTS_BUSADAPTERS_H
#define MORVANE_CORE_COMPONENTS_BUSADAPTERS_H

#include "Core/Components/Component.h"
#include "Core/Components/ParaMap.h"
#include "Core/Simulation/PinSpec.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

class Net;

namespace Morvane {

/// A port of an adapter: its name and the bit expression that places it on the wide side.
struct PortSpec
{
    std::string name;        // port name
    std::string expression;  // bit expression, as "7:4" or "7;3:1"
};

}  // namespace Morvane

/// Gathers narrow inputs into the output "out".
class Join : public Component
{
public:
    static constexpr const char* class_name = "Join";
    static ParaMap default_parameters();
    static std::string parameter_description();

    /// "out" gives the width; every other key an input. Bad sizes, expressions or overlaps throw Error.
    Join(const std::string& instance_name, const ParaMap& params);
    /// The same from code; the parameter map is filled to match.
    Join(const std::string& instance_name, unsigned size, const std::vector<Morvane::PortSpec>& specs);

    /// Rebuilds the whole of "out" from the inputs at `time`.
    void evaluate(int time) override;
    /// Evaluates at the same time.
    void port_changed_value(Port* port, const Value& old_value, const Value& new_value, int time) override;
    std::vector<std::string> get_valid_param_keys() override { return {"out"}; }
    /// The ports are fixed at construction.
    void update_after_param_change() override {}
    /// Reads its ports at the present only.
    int history_reach() const override { return 0; }

private:
    unsigned _get_size_from_params() const;
    void _init(unsigned size, const std::vector<Morvane::PortSpec>& specs);
    void _check_for_pin_overlap() const;

    Port* _out = nullptr;                                             // output, the full width
    std::vector<std::pair<Port*, std::unique_ptr<PinSpec>>> _inputs;  // in order of making, with bits
};

/// Hands the input "in" out to narrow outputs.
class Split : public Component
{
public:
    static constexpr const char* class_name = "Split";
    static ParaMap default_parameters();
    static std::string parameter_description();

    /// "in" gives the width; every other key an output. Bad sizes or expressions throw Error.
    Split(const std::string& instance_name, const ParaMap& params);
    /// The same from code; the parameter map is filled to match.
    Split(const std::string& instance_name, unsigned size, const std::vector<Morvane::PortSpec>& specs);

    /// Sets every output from "in" at `time`.
    void evaluate(int time) override;
    /// Evaluates at the same time.
    void port_changed_value(Port* port, const Value& old_value, const Value& new_value, int time) override;
    std::vector<std::string> get_valid_param_keys() override { return {"in"}; }
    /// The ports are fixed at construction.
    void update_after_param_change() override {}
    /// Reads its ports at the present only.
    int history_reach() const override { return 0; }

private:
    unsigned _get_size_from_params() const;
    void _init(unsigned size, const std::vector<Morvane::PortSpec>& specs);

    Port* _in = nullptr;                                               // input, the full width
    std::vector<std::pair<Port*, std::unique_ptr<PinSpec>>> _outputs;  // in order of making, with bits
    // For each output, where each of its letters lies among the input's, most significant first.
    std::vector<std::vector<unsigned>> _taps;
};

/// Joins inout ports of any bit selection through one internal net of `size` bits.
class Splice : public Component
{
public:
    static constexpr const char* class_name = "Splice";
    static ParaMap default_parameters();
    static std::string parameter_description();

    /// "size" gives the width of the internal net; every other key a port. Bad sizes or expressions
    /// throw Error.
    Splice(const std::string& instance_name, const ParaMap& params);
    /// The same from code; the parameter map is filled to match.
    Splice(const std::string& instance_name, unsigned size, const std::vector<Morvane::PortSpec>& specs);
    /// Frees the internal net before the ports go.
    ~Splice() override;

    /// Clears the internal net's history, then the ports'.
    void reset() override;
    /// The internal net carries everything.
    void evaluate(int) override {}
    /// "out", although the size key is "size".
    std::vector<std::string> get_valid_param_keys() override { return {"out"}; }
    /// The ports are fixed at construction.
    void update_after_param_change() override {}
    /// Reads its ports at the present only.
    int history_reach() const override { return 0; }

    Net* net() const { return _net.get(); }
    unsigned size() const { return _size; }

private:
    unsigned _get_size_from_params() const;
    void _init(unsigned size, const std::vector<Morvane::PortSpec>& specs);

    std::vector<std::unique_ptr<PinSpec>> _pin_specs;  // the bits of each port on the net
    std::unique_ptr<Net> _net;                         // internal, `size` bits; dies before the specs
    unsigned _size = 0;                                // bits of the internal net
};

#endif  // MORVANE_CORE_COMPONENTS_BUSADAPTERS_H
