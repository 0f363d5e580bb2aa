#include "Core/Components/Chips74/Chips74Decoders.h"

#include "Core/Components/Basic/BusAdapters.h"
#include "Core/Support/Error.h"
#include "Core/Support/StringUtils.h"

#include <map>
#include <vector>

using Morvane::Input;
using Morvane::Output;

namespace {

/// 1 for H in either case, 0 for everything else, undefined included.
int bit_of(const Value& v)
{
    return state_letter(v) == 'h' ? 1 : 0;
}

}  // namespace

// DM74LS137

ParaMap DM74LS137::default_parameters()
{
    static const std::map<std::string, std::string> DM74LS137_default_params = {{"delay", "38"}};
    return ParaMap(DM74LS137_default_params);
}

std::string DM74LS137::parameter_description()
{
    return "<b>delay</b> The gate delay in ns.";
}

DM74LS137::DM74LS137(const std::string& instance_name, const ParaMap& params)
    : SingleDelayComponent(class_name, instance_name, params)
{
    _init();
    SingleDelayComponent::update_after_param_change();
}

DM74LS137::DM74LS137(const std::string& instance_name, int delay)
    : SingleDelayComponent(class_name, instance_name, delay)
{
    _init();
}

void DM74LS137::_init()
{
    _a = make_pin(Input, "A");
    _b = make_pin(Input, "B");
    _c = make_pin(Input, "C");
    _gl = make_pin(Input, "_GL");
    _g1 = make_pin(Input, "G1");
    _g2 = make_pin(Input, "_G2");
    _y = make_port(8, Output, "Y");
}

int DM74LS137::_get_index(int time)
{
    return bit_of(_c->value(time)) * 4 + bit_of(_b->value(time)) * 2 + bit_of(_a->value(time));
}

void DM74LS137::_set_index(Value& y, int index, char)
{
    y[static_cast<unsigned>(index)] = 'L';
}

void DM74LS137::evaluate(int time)
{
    int input_time = time - delay();
    char gl = state_letter(_gl->value(input_time));
    char g1 = state_letter(_g1->value(input_time));
    char g2 = state_letter(_g2->value(input_time));
    Value y("HHHHHHHH");
    if (gl == 'l' && g1 == 'h' && g2 == 'l') {
        _set_index(y, _get_index(input_time), 'L');
    } else if ((g2 == 'u' && (g1 == 'u' || g1 == 'h')) || (g2 == 'l' && g1 == 'u')) {
        // Undefined enables select the addressed output rather than making it undefined.
        _set_index(y, _get_index(input_time), 'L');
    } else if (gl == 'h' && g1 == 'h' && g2 == 'l') {
        // Latched: the address as it stood the last time the latch was open.
        y.array_set('U');
        for (int t = input_time - 1; t >= 0; --t) {
            if (state_letter(_gl->value(t)) == 'l') {
                y.array_set('H');
                _set_index(y, _get_index(t), 'L');
                break;
            }
        }
    }
    _y->set(y, time);
}

// DM74LS244

ParaMap DM74LS244::default_parameters()
{
    static const std::map<std::string, std::string> DM74LS244_default_params = {{"delay", "33"}};
    return ParaMap(DM74LS244_default_params);
}

std::string DM74LS244::parameter_description()
{
    return "<b>delay</b> The gate delay in ns.";
}

DM74LS244::DM74LS244(const std::string& instance_name, const ParaMap& params)
    : SingleDelayComponent(class_name, instance_name, params)
{
    _init();
    SingleDelayComponent::update_after_param_change();
}

DM74LS244::DM74LS244(const std::string& instance_name, int delay)
    : SingleDelayComponent(class_name, instance_name, delay)
{
    _init();
}

void DM74LS244::_init()
{
    for (int n = 0; n < 2; ++n) {
        _in[n] = make_port(4, Input, fmt("%dA", n + 1));
        _out[n] = make_port(4, Output, fmt("%dY", n + 1));
        _g[n] = make_pin(Input, fmt("%d_G", n + 1));
    }
}

void DM74LS244::evaluate(int time)
{
    int input_time = time - delay();
    for (int n = 0; n < 2; ++n) {
        char g = state_letter(_g[n]->value(input_time));
        if (g == 'h')
            _out[n]->set(Value("zzzz"), time);
        else if (g == 'u')
            _out[n]->set(Value("uuuu"), time);
        else
            _out[n]->set(_in[n]->value(input_time), time);
    }
}

// DM74LS283

ParaMap DM74LS283::default_parameters()
{
    static const std::map<std::string, std::string> DM74LS283_default_params = {{"delay", "24"}};
    return ParaMap(DM74LS283_default_params);
}

std::string DM74LS283::parameter_description()
{
    return "<b>delay</b> The gate delay in ns. Default is 24 ns.";
}

DM74LS283::DM74LS283(const std::string& instance_name, const ParaMap& params)
    : SingleDelayComponent(class_name, instance_name, params)
{
    _init();
    SingleDelayComponent::update_after_param_change();
}

DM74LS283::DM74LS283(const std::string& instance_name, int delay)
    : SingleDelayComponent(class_name, instance_name, delay)
{
    _init();
}

void DM74LS283::_init()
{
    _a = make_port(4, Input, "A");
    _b = make_port(4, Input, "B");
    _c = make_port(4, Output, "C");
    _cin = make_pin(Input, "cin");
    _cout = make_pin(Output, "cout");
}

void DM74LS283::evaluate(int time)
{
    int input_time = time - delay();
    Value a = _a->value(input_time);
    Value b = _b->value(input_time);
    Value cin = _cin->value(input_time);
    if (!a.is_integer() || !b.is_integer() || !cin.is_integer()) {
        _c->set(Value("UUUU"), time);
        _cout->set(Value("U"), time);
        return;
    }
    int sum = a.integer() + b.integer() + cin.integer();
    bool carry = sum > 15;
    Value c(4);
    c.set_to(carry ? sum - 16 : sum);
    _c->set(c, time);
    _cout->set(Value(carry ? "H" : "L"), time);
}

// SN74x688

ParaMap SN74x688::default_parameters()
{
    static const std::map<std::string, std::string> SN74x688_default_params = {{"family", "LS"}};
    return ParaMap(SN74x688_default_params);
}

std::string SN74x688::parameter_description()
{
    return "<b>family</b> Which device family variant to be considered. Supported values are: LS (25ns) and "
           "ALS (22 ns). It affects the timing behaviour.<p><b>delay</b> The gate delay in ns.<p>If both "
           "parameters are specified, the <b>delay</b> parameter overrides <b>family<b>";
}

SN74x688::SN74x688(const std::string& instance_name, const ParaMap& params)
    : SingleDelayComponent(class_name, instance_name, params)
{
    _init();
    _set_delay_from_family(params);
    SingleDelayComponent::update_after_param_change();
}

SN74x688::SN74x688(const std::string& instance_name, int delay)
    : SingleDelayComponent(class_name, instance_name, delay)
{
    _init();
}

void SN74x688::_init()
{
    _g = make_pin(Input, "_G");
    _p_eq_q = make_pin(Output, "_P=Q");
    _p = make_port(8, Input, "P");
    _q = make_port(8, Input, "Q");
}

std::vector<std::string> SN74x688::get_valid_param_keys()
{
    return {"delay", "family"};
}

void SN74x688::_set_delay_from_family(const ParaMap& params)
{
    if (!params.has_key("family")) {
        set_delay(25);
        return;
    }
    const std::string& family = params["family"];
    if (family == "ALS")
        set_delay(22);
    else if (family == "LS")
        set_delay(25);
    else
        throw Error("Error: unknown/unsupported device family of SN74x688: '%s'.", family.c_str());
}

void SN74x688::update_after_param_change()
{
    _set_delay_from_family(parameters());
    SingleDelayComponent::update_after_param_change();
}

std::string SN74x688::aux_info_string()
{
    return fmt("<br>Delay: <i>%d</i>", delay());
}

void SN74x688::evaluate(int time)
{
    int input_time = time - delay();
    char g = state_letter(_g->value(input_time));
    if (g == 'h') {
        _p_eq_q->set(Value("H"), time);
    } else if (g == 'l') {
        Value p = _p->value(input_time);
        Value q = _q->value(input_time);
        if (p.is_integer() && q.is_integer())
            _p_eq_q->set(Value(p.integer() == q.integer() ? "L" : "H"), time);
        else
            _p_eq_q->set(Value("U"), time);
    } else {
        _p_eq_q->set(Value("U"), time);
    }
    _last_evaluation_time = time;
}

// DM74LS154

ParaMap DM74LS154::default_parameters()
{
    static const std::map<std::string, std::string> DM74LS154_default_params = {{"delay", "23"}};
    return ParaMap(DM74LS154_default_params);
}

std::string DM74LS154::parameter_description()
{
    return "<b>delay</b> The gate delay in ns.";
}

DM74LS154::DM74LS154(const std::string& instance_name, const ParaMap& params)
    : Circuit(class_name, instance_name, nullptr)
{
    parameters() = params;
    _init();
    DM74LS154::update_after_param_change();
}

DM74LS154::DM74LS154(const std::string& instance_name, int delay)
    : Circuit(class_name, instance_name, nullptr),
      _delay(delay)
{
    _init();
}

DM74LS154::~DM74LS154()
{
    // The Split owns the output pins and dies before the base destructor would reach them.
    for (Port* p : _split->ports()) {
        if (has_port(p))
            remove_port(p);
    }
    remove(_split.get());
}

void DM74LS154::_init()
{
    _a = make_pin(Input, "A");
    _b = make_pin(Input, "B");
    _c = make_pin(Input, "C");
    _d = make_pin(Input, "D");
    _g1 = make_pin(Input, "_G1");
    _g2 = make_pin(Input, "_G2");
    _y = make_port(16, Output, "Y");

    std::vector<Morvane::PortSpec> specs;
    for (int i = 15; i >= 0; --i)
        specs.push_back({fmt("Y%d", i), fmt("%d", i)});
    _split = std::make_unique<Split>("ysplit", 16, specs);
    add(_split.get(), false);
    for (int i = 0; i < 16; ++i)
        add_port(_split->port(fmt("Y%d", i)));
    _y_net = make_net("y_net", {_y, _split->port("in")});
}

void DM74LS154::port_changed_value(Port* port, const Value&, const Value&, int time)
{
    request_evaluation(time + _delay, this, port);
}

void DM74LS154::update_after_param_change()
{
    parameters().get_value("delay", _delay);
}

void DM74LS154::reset()
{
    _y_net->clear();
    _split->reset();
    Component::reset();
}

int DM74LS154::_get_index(int time)
{
    return bit_of(_d->value(time)) * 8 + bit_of(_c->value(time)) * 4 + bit_of(_b->value(time)) * 2 +
           bit_of(_a->value(time));
}

void DM74LS154::_set_index(Value& y, int index)
{
    y[static_cast<unsigned>(index)] = 'L';
}

void DM74LS154::evaluate(int time)
{
    int input_time = time - _delay;
    char g1 = state_letter(_g1->value(input_time));
    char g2 = state_letter(_g2->value(input_time));
    Value y("HHHHHHHHHHHHHHHH");
    if (g1 == 'l' && g2 == 'l')
        _set_index(y, _get_index(input_time));
    bool undefined = g1 == 'u' || g2 == 'u';
    for (Pin* address : {_a, _b, _c, _d})
        undefined = undefined || state_letter(address->value(input_time)) == 'u';
    if (undefined)
        y.array_set('U');
    // Straight into the net's history, past the event queue: the Split reads it at once and
    // writes all sixteen pins in one go.
    _y_net->set(y, time);
    _split->evaluate(time);
}
