#include "Core/Components/Basic/BusAdapters.h"

#include "Core/Simulation/Net.h"
#include "Core/Support/Error.h"
#include "Core/Support/NumberText.h"
#include "Core/Support/StringUtils.h"

#include <climits>
#include <map>

using Morvane::Inout;
using Morvane::Input;
using Morvane::Inside;
using Morvane::Output;
using Morvane::PortSpec;

namespace {

/// Every parameter but the size key names a port, in key order.
std::vector<PortSpec> port_specs_from(const ParaMap& params, const std::string& size_key)
{
    std::vector<PortSpec> specs;
    for (const auto& [key, expression] : params.data()) {
        if (key != size_key)
            specs.push_back(PortSpec{key, expression});
    }
    return specs;
}

/// The parameters that would make these ports, so that a copy by instance specification matches.
void add_params_for(ParaMap& params, const std::string& size_key, unsigned size,
                    const std::vector<PortSpec>& specs)
{
    params[size_key] = fmt("%d", static_cast<int>(size));
    for (const PortSpec& spec : specs)
        params[spec.name] = spec.expression;
}

/// The bit selection of `port`, checked to fit into `size` bits; a bit past the width throws Error.
std::unique_ptr<PinSpec> fitting_pin_spec(const PortSpec& port, unsigned size)
{
    auto pin_spec = std::make_unique<PinSpec>(port.expression);
    if (pin_spec->highest_bit() > static_cast<int>(size) - 1)
        throw Error("Port '%s' (%s) is too big to fit into size %d.", port.name.c_str(),
                    port.expression.c_str(), static_cast<int>(size));
    return pin_spec;
}

/// The size key's number; without the key throws Error with `missing`.
unsigned size_from(const ParaMap& params, const std::string& size_key, const char* missing)
{
    if (!params.has_key(size_key))
        throw Error("%s", missing);
    // A size beyond an int has no meaning for a port and would overflow the fit checks. A text with
    // no number reads as all ones, which the checks take as the size -1.
    std::uint64_t size = str_to_number(params[size_key]);
    if (size != UINT64_MAX && size > static_cast<std::uint64_t>(INT_MAX))
        throw Error("The '%s' size %s is too large.", size_key.c_str(), params[size_key].c_str());
    return static_cast<unsigned>(size);
}

}  // namespace

// Join

ParaMap Join::default_parameters()
{
    static const std::map<std::string, std::string> Join_default_params = {{"out", "8"}};
    return ParaMap(Join_default_params);
}

std::string Join::parameter_description()
{
    return "The Join component requires an <b>out</b> parameter specifying the size of the output port. It "
           "also requires at least one parameter describing the input ports comprising the output. The "
           "name of the input parameter can be arbitrary (not 'out' of course), but the value must follow "
           "the following format: from[:to]?[,from[:to]?]*.<p><i>from</i> indicates the index of the first "
           "bit to be included, and <i>to</i> indicates the index of the last bit to be included.<p>It is "
           "legal to omit the colon and the <i>to</i> index.<p>There may be more than one such range "
           "specified, which then would be separated by semi-colons.<p>The bit index refers to where the "
           "input bits will be placed into the output port. There cannot be overlap between to destination "
           "bits, and bits not referred to in the output will be left uninitialized. The bit width of the "
           "input port will be deduced by the specification.<p><b>Examples:</b><p>3   - A single bit input "
           "that will be mapped to bit #3 in the output.<p>3:0 - A four bit input that will be mapped to "
           "bits 3, 2, 1 and 0 in the output.<p>0:3 - A four bit input mapped to 0, 1, 2, 3: i.e. in "
           "<b>bit reversed</b> order.<p>7;3:1 - Four bits mapped to bits 7, 3, 2 and 1<p>7;3,2 - Three "
           "bits mapped to bits 7, 3 and 2.";
}

Join::Join(const std::string& instance_name, const ParaMap& params)
    : Component(class_name, instance_name, params)
{
    _init(_get_size_from_params(), port_specs_from(parameters(), "out"));
}

Join::Join(const std::string& instance_name, unsigned size, const std::vector<PortSpec>& specs)
    : Component(class_name, instance_name, ParaMap())
{
    add_params_for(parameters(), "out", size, specs);
    _init(size, specs);
}

unsigned Join::_get_size_from_params() const
{
    return size_from(parameters(), "out", "A Join unit needs an 'out' parameter.");
}

void Join::_init(unsigned size, const std::vector<PortSpec>& specs)
{
    _out = make_port(static_cast<int>(size), Output, "out");
    for (const PortSpec& spec : specs) {
        std::unique_ptr<PinSpec> pin_spec = fitting_pin_spec(spec, size);
        Port* input = make_port(pin_spec->size(), Input, spec.name);
        // A released input bit must reach the output as z, not as undefined.
        input->disable_z_translation();
        _inputs.emplace_back(input, std::move(pin_spec));
    }
    _check_for_pin_overlap();
}

void Join::_check_for_pin_overlap() const
{
    for (const auto& [first, first_spec] : _inputs) {
        for (const auto& [second, second_spec] : _inputs) {
            if (first == second)
                continue;
            for (int bit : first_spec->indices()) {
                if (second_spec->includes_bit(bit))
                    throw Error("BusJoin Overlap. Ports '%s' and '%s' both drive pin %d.",
                                first->name().c_str(), second->name().c_str(), bit);
            }
        }
    }
}

void Join::evaluate(int time)
{
    Value joined(static_cast<int>(_out->size()));
    for (const auto& [input, pin_spec] : _inputs) {
        Value part = input->value(time);
        for (int i = 0; i < pin_spec->size(); ++i)
            joined[static_cast<unsigned>(pin_spec->dense_to_sparse(i))] = part[static_cast<unsigned>(i)];
    }
    _out->set(joined, time);
}

void Join::port_changed_value(Port* port, const Value&, const Value&, int time)
{
    request_evaluation(time, this, port);
}

// Split

ParaMap Split::default_parameters()
{
    static const std::map<std::string, std::string> Split_default_params = {{"in", "8"}};
    return ParaMap(Split_default_params);
}

std::string Split::parameter_description()
{
    return "The Split component requires an <b>in</b> parameter specifying the size of the input port. It "
           "also requires at least one parameter describing the output port. The name of the output port "
           "parameter can be arbitrary (not 'in' of course), but the value must follow the following "
           "format: from[:to]?[,from[:to]?]*.<p><i>from</i> indicates the index of the first bit to be "
           "included, and <i>to</i> indicates the index of the last bit to be included.<p>It is legal to "
           "omit the colon and the <i>to</i> index.<p>There may be more than one such range specified, "
           "which then would be separated by semi-colons.<p>The bit index refers to where the output bits "
           "taken from in the input port. There can be overlap between to source bits, i.e. copying a "
           "input bit to multiple destinations is allowed. The bit width of the output port will be "
           "deduced by the specification. <p><b>Examples:</b><p>3   - A single bit output that will be "
           "generated from bit #3 in the input.<p>3:0 - A four bit output that will be taken form bits 3, "
           "2, 1 and 0 in the input.<p>0:3 - A four bit output generated from bits 0, 1, 2, 3: i.e. in "
           "<b>bit reversed</b> order.<p>7;3:1 - Four bits mapped from bits 7, 3, 2 and 1<p>7;3,2 - Three "
           "bits mapped from bits 7, 3 and 2.";
}

Split::Split(const std::string& instance_name, const ParaMap& params)
    : Component(class_name, instance_name, params)
{
    _init(_get_size_from_params(), port_specs_from(parameters(), "in"));
}

Split::Split(const std::string& instance_name, unsigned size, const std::vector<PortSpec>& specs)
    : Component(class_name, instance_name, ParaMap())
{
    add_params_for(parameters(), "in", size, specs);
    _init(size, specs);
}

unsigned Split::_get_size_from_params() const
{
    return size_from(parameters(), "in", "A Split unit needs an 'in' parameter.");
}

void Split::_init(unsigned size, const std::vector<PortSpec>& specs)
{
    _in = make_port(static_cast<int>(size), Input, "in");
    // A released bit of the wide net must reach the outputs as z, not as undefined.
    _in->disable_z_translation();
    for (const PortSpec& spec : specs) {
        std::unique_ptr<PinSpec> pin_spec = fitting_pin_spec(spec, size);
        Port* output = make_port(pin_spec->size(), Output, spec.name);
        // The spec fits, so every bit lies within the input.
        std::vector<unsigned> taps;
        for (int i = pin_spec->size() - 1; i >= 0; --i)
            taps.push_back(size - 1 - static_cast<unsigned>(pin_spec->dense_to_sparse(i)));
        _taps.push_back(std::move(taps));
        _outputs.emplace_back(output, std::move(pin_spec));
    }
}

void Split::evaluate(int time)
{
    // The input's letters where they lie, else those of its value: every evaluation reads the bus.
    Value whole;
    const char* in = _in->plain_letters(time);
    if (in == nullptr) {
        whole = _in->value(time);
        in = whole.size() == _in->size() ? whole.c_str() : nullptr;
    }
    for (std::size_t k = 0; k < _outputs.size(); ++k) {
        const auto& [output, pin_spec] = _outputs[k];
        if (in == nullptr) {
            // Bit by bit, as a value of another width answers.
            Value part(pin_spec->size());
            for (int i = 0; i < pin_spec->size(); ++i)
                part[static_cast<unsigned>(i)] = whole[static_cast<unsigned>(pin_spec->dense_to_sparse(i))];
            output->set(part, time);
            continue;
        }
        const std::vector<unsigned>& taps = _taps[k];
        char letters[256];
        for (std::size_t j = 0; j < taps.size(); ++j)
            letters[j] = in[taps[j]];
        output->set(Value::from_letters(letters, static_cast<unsigned>(taps.size())), time);
    }
}

void Split::port_changed_value(Port* port, const Value&, const Value&, int time)
{
    request_evaluation(time, this, port);
}

// Splice

ParaMap Splice::default_parameters()
{
    static const std::map<std::string, std::string> Splice_default_params = {{"size", "8"}};
    return ParaMap(Splice_default_params);
}

std::string Splice::parameter_description()
{
    return "The Splice component makes it possible to connect Nets with different sizes, by using Inout "
           "ports "
           "(which do not themselves drive any net, merely connects them).<p>This is achieved by specifying "
           "how the bits of these ports are mapped to each other. <p>The mapping is based on the premise "
           "that there is an special, internal net that connects all the specified ports.<p>The <b>size</b> "
           "parameter gives the bit width of that internal net. Every other parameter describes one Inout "
           "port: its name is the name of the parameter, and its value, in the format "
           "from[:to]?[,from[:to]?]*, tells which bits of the internal net the port connects to. Several "
           "ranges are separated by semi-colons, and the bit width of the port is deduced from the "
           "specification.<p><b>Examples:</b><p>Mapping an 8-bit port to two four bit buses:"
           "<table><tr><th>Property</th><th>Value</th></tr><tr><td>size</td><td>8</td></tr>"
           "<tr><td>byte</td><td>7:0</td></tr><tr><td>hi</td><td>7:4</td></tr>"
           "<tr><td>lo</td><td>3:0</td></tr></table><p>Reversing the bit order of a byte:"
           "<table><tr><th>Property</th><th>Value</th></tr><tr><td>size</td><td>8</td></tr>"
           "<tr><td>normal</td><td>7:0</td></tr><tr><td>reverse</td><td>0:7</td></tr></table>"
           "<p>Picking one line of an address bus:<table><tr><th>Property</th><th>Value</th></tr>"
           "<tr><td>size</td><td>16</td></tr><tr><td>A</td><td>15:0</td></tr>"
           "<tr><td>a15</td><td>15</td></tr></table>";
}

Splice::Splice(const std::string& instance_name, const ParaMap& params)
    : Component(class_name, instance_name, params)
{
    _init(_get_size_from_params(), port_specs_from(parameters(), "size"));
}

Splice::Splice(const std::string& instance_name, unsigned size, const std::vector<PortSpec>& specs)
    : Component(class_name, instance_name, ParaMap())
{
    add_params_for(parameters(), "size", size, specs);
    _init(size, specs);
}

Splice::~Splice()
{
    // The net lets go of the ports' inside; the ports then leave their outside nets with the base.
    _net.reset();
}

unsigned Splice::_get_size_from_params() const
{
    return size_from(parameters(), "size", "A Splice unit needs a 'size' parameter.");
}

void Splice::_init(unsigned size, const std::vector<PortSpec>& specs)
{
    _size = size;
    _net = std::make_unique<Net>(fmt("Splice %s", instance_name().c_str()), static_cast<int>(size));
    for (const PortSpec& spec : specs) {
        std::unique_ptr<PinSpec> pin_spec = fitting_pin_spec(spec, size);
        PinSpec* bits = pin_spec.get();
        _pin_specs.push_back(std::move(pin_spec));
        Port* port = make_port(bits->size(), Inout, spec.name);
        // The outside net reaches the others through the internal one, bit by bit.
        _net->add(port, bits, Inside);
        port->disable_z_translation();
    }
}

void Splice::reset()
{
    _net->clear();
    Component::reset();
}
