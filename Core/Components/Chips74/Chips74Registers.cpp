#include "Core/Components/Chips74/Chips74Registers.h"

#include "Core/Components/Basic/BusAdapters.h"
#include "Core/Components/Chips74/Chips74Family.h"
#include "Core/Components/Basic/FlipFlop.h"
#include "Core/Simulation/EventSimulator.h"
#include "Core/Support/Error.h"
#include "Core/Support/StringUtils.h"

#include <map>

using Morvane::BitState;
using Morvane::Input;
using Morvane::Output;

namespace {

/// Help on "family" and "delay" of the chips that come in several families.
const char* const family_description =
    "<b>family</b> Which device family variant to be considered. Supported values are: LS, AS and ALS. "
    "It affects the timing behaviour.<p><b>delay</b> The gate delay in ns.<p>If both parameters are "
    "specified, the <b>delay</b> parameter overrides <b>family<b>";

/// L one delay before the last evaluation and H one delay before this one.
bool rising(Port* clock, int last_evaluation, int time, int delay)
{
    return state_letter(clock->value(last_evaluation - delay)) == 'l' &&
           state_letter(clock->value(time - delay)) == 'h';
}

}  // namespace

// SN74x174

ParaMap SN74x174::default_parameters()
{
    static const std::map<std::string, std::string> SN74x174_default_params;
    return ParaMap(SN74x174_default_params);
}

std::string SN74x174::parameter_description()
{
    return family_description;
}

SN74x174::SN74x174(const std::string& instance_name, const ParaMap& params)
    : SingleDelayComponent(class_name, instance_name, params)
{
    _init();
    // The defaults are empty, so the factory may never apply a map: the delay is settled here.
    _set_delay_from_family(params);
}

SN74x174::SN74x174(const std::string& instance_name, int delay)
    : SingleDelayComponent(class_name, instance_name, delay)
{
    _init();
}

void SN74x174::_init()
{
    _clear = make_pin(Input, "_CLR");
    _clock = make_pin(Input, "CLK");
    for (int n = 1; n <= 6; ++n) {
        _q[n - 1] = make_pin(Output, fmt("%dQ", n));
        _d[n - 1] = make_pin(Input, fmt("%dD", n));
    }
}

void SN74x174::_set_delay_from_family(const ParaMap& params)
{
    int delay = 35;  // LS, for a map without either key
    if (params.has_key("family") &&
        !find_family_delay({{"F", 14}, {"AS", 15}, {"ALS", 30}, {"LS", 35}}, params["family"], delay))
        throw Error("Error: unknown device family of SN74x174: '%s'.", params["family"].c_str());
    params.get_value("delay", delay);
    set_delay(delay);
}

void SN74x174::update_after_param_change()
{
    _set_delay_from_family(parameters());
}

std::vector<std::string> SN74x174::get_valid_param_keys()
{
    return {"delay", "family"};
}

std::string SN74x174::aux_info_string()
{
    return fmt("<br>Delay: <i>%d</i>", delay());
}

void SN74x174::reset()
{
    _last_evaluation = 0;
    Component::reset();
}

void SN74x174::evaluate(int time)
{
    int input_time = time - delay();
    char clear = state_letter(_clear->value(input_time));
    if (clear == 'l') {
        _set_all_q(time, BitState::Low);
    } else if (clear != 'h') {
        _set_all_q(time, BitState::Undefined);
    } else {
        char before = state_letter(_clock->value(_last_evaluation - delay()));
        char now = state_letter(_clock->value(input_time));
        if (!Morvane::is_binary(before) || !Morvane::is_binary(now))
            _set_all_q(time, BitState::Undefined);
        else if (before == 'l' && now == 'h')
            _move_d_to_q(input_time, time);
    }
    _last_evaluation = time;
}

void SN74x174::_set_all_q(int time, BitState state)
{
    for (Pin* q : _q)
        q->set(Value(state, 1), time);
}

void SN74x174::_move_d_to_q(int read_time, int write_time)
{
    for (int i = 0; i < 6; ++i)
        _q[i]->set(_d[i]->value(read_time), write_time);
}

// SN74x273

ParaMap SN74x273::default_parameters()
{
    static const std::map<std::string, std::string> SN74x273_default_params = {{"family", "LS"}};
    return ParaMap(SN74x273_default_params);
}

std::string SN74x273::parameter_description()
{
    return "<b>family</b> Which device family variant to be considered. Supported values are only "
           "LS.<p><b>delay</b> The gate delay in ns.<p>If both parameters are specified, the <b>delay</b> "
           "parameter overrides <b>family<b>";
}

SN74x273::SN74x273(const std::string& instance_name, const ParaMap& params)
    : SingleDelayComponent(class_name, instance_name, params)
{
    _init();
    _set_delay_from_family(params);
}

SN74x273::SN74x273(const std::string& instance_name, int delay)
    : SingleDelayComponent(class_name, instance_name, delay)
{
    _init();
}

void SN74x273::_init()
{
    _clear = make_pin(Input, "_CLR");
    _clock = make_pin(Input, "clk");
    _d = make_port(8, Input, "D");
    _q = make_port(8, Output, "Q");
}

void SN74x273::_set_delay_from_family(const ParaMap& params)
{
    int delay = 27;  // LS, also for a map without a family
    if (params.has_key("family") && !find_family_delay({{"LS", 27}}, params["family"], delay))
        throw Error("Error: unknown/unsupported device family of SN74x273: '%s'.", params["family"].c_str());
    params.get_value("delay", delay);
    set_delay(delay);
}

void SN74x273::update_after_param_change()
{
    _set_delay_from_family(parameters());
    SingleDelayComponent::update_after_param_change();
}

std::vector<std::string> SN74x273::get_valid_param_keys()
{
    return {"delay", "family"};
}

std::string SN74x273::aux_info_string()
{
    return fmt("<br>Delay: <i>%d</i>", delay());
}

void SN74x273::reset()
{
    _stored = Value("UUUUUUUU");
    _last_evaluation = 0;
    Component::reset();
}

void SN74x273::evaluate(int time)
{
    int input_time = time - delay();
    if (rising(_clock, _last_evaluation, time, delay()))
        _stored = _d->value(input_time);
    char clear = state_letter(_clear->value(input_time));
    if (clear == 'l') {
        _stored = Value("LLLLLLLL");
        _q->set(_stored, time);
    } else if (clear == 'h') {
        _q->set(_stored, time);
    } else {
        // The store survives an undefined clear and shows again once "_CLR" is H.
        _q->set(Value("UUUUUUUU"), time);
    }
    _last_evaluation = time;
}

// DM74LS374

ParaMap DM74LS374::default_parameters()
{
    static const std::map<std::string, std::string> DM74LS374_default_params = {{"delay", "28"}};
    return ParaMap(DM74LS374_default_params);
}

std::string DM74LS374::parameter_description()
{
    return "<b>delay</b> The gate delay in ns.";
}

DM74LS374::DM74LS374(const std::string& instance_name, const ParaMap& params)
    : Circuit(class_name, instance_name, nullptr)
{
    _init();
    set_parameters(params);
}

DM74LS374::DM74LS374(const std::string& instance_name, int delay)
    : Circuit(class_name, instance_name, nullptr)
{
    _init();
    _delay = delay;
    for (D_flip_flop* ff : _ff)
        ff->set_delay(delay);
}

Component* DM74LS374::_make_part(const std::string& type, const std::string& spec)
{
    Component* part = component_factory().create(type, spec);
    add(part, false);
    return part;
}

void DM74LS374::_init()
{
    Pin* clock = make_pin(Input, "clk");
    Pin* oe = make_pin(Input, "_OE");
    Port* q = make_port(8, Output, "Q");
    Port* d = make_port(8, Input, "D");

    // The join goes in first. The inner names say 373; paths into the chip use them as they are.
    _join = dynamic_cast<Join*>(_make_part("Join", "373join(out=8,0=0,1=1,2=2,3=3,4=4,5=5,6=6,7=7)"));
    _split = dynamic_cast<Split*>(_make_part("Split", "373split(in=8,0=0,1=1,2=2,3=3,4=4,5=5,6=6,7=7)"));

    make_net("Q", {q, _join->port("out")});
    make_net("D", {d, _split->port("in")});
    Net* clock_net = make_net("clk", {clock});
    Net* oe_net = make_net("_OE", {oe});

    for (int i = 0; i < 8; ++i) {
        auto* ff = dynamic_cast<D_flip_flop*>(_make_part("D_flip_flop", fmt("dff[%d]", i)));
        // Built as chips build inner parts: the given delay and no parameters of its own.
        ff->parameters().clear();
        ff->set_delay(28);
        clock_net->add(ff->port("clk"), Morvane::Outside);
        oe_net->add(ff->port("_OE"), Morvane::Outside);
        make_net(fmt("d%d", i), {ff->port("D"), _split->port(std::to_string(i))});
        make_net(fmt("q%d", i), {ff->port("Q"), _join->port(std::to_string(i))});
        _ff[i] = ff;
    }
}

void DM74LS374::update_after_param_change()
{
    parameters().get_value("delay", _delay);
    for (D_flip_flop* ff : _ff)
        ff->set_delay(_delay);
}

void DM74LS374::reset()
{
    _split->reset();
    for (D_flip_flop* ff : _ff)
        ff->reset();
    _join->reset();
    Component::reset();
}

// DM74x574

ParaMap DM74x574::default_parameters()
{
    static const std::map<std::string, std::string> DM74x574_default_params = {{"delay", "28"},
                                                                               {"family", "LS"}};
    return ParaMap(DM74x574_default_params);
}

std::string DM74x574::parameter_description()
{
    return family_description;
}

DM74x574::DM74x574(const std::string& instance_name, const ParaMap& params)
    : Circuit(class_name, instance_name, nullptr)
{
    Component::set_parameters(params);
    _init();
}

DM74x574::DM74x574(const std::string& instance_name, int delay)
    : Circuit(class_name, instance_name, nullptr),
      _delay(delay)
{
    _init();
}

void DM74x574::_init()
{
    _clock = make_pin(Input, "clk");
    _oe = make_pin(Input, "_OE");
    _q = make_port(8, Output, "Q");
    _d = make_port(8, Input, "D");
}

void DM74x574::_set_delay_from_family(const ParaMap& params)
{
    int delay = 28;  // LS, for a map without either key
    if (params.has_key("family") &&
        !find_family_delay({{"F", 13}, {"AS", 10}, {"ALS", 18}, {"LS", 28}}, params["family"], delay))
        throw Error("Error: unknown device family of SN74x574: '%s'.", params["family"].c_str());
    params.get_value("delay", delay);
    _delay = delay;
}

void DM74x574::update_after_param_change()
{
    _set_delay_from_family(parameters());
}

std::string DM74x574::aux_info_string()
{
    return fmt("<br>Delay: <i>%d</i>", _delay);
}

void DM74x574::port_changed_value(Port* port, const Value&, const Value&, int time)
{
    request_evaluation(time + _delay, this, port);
}

void DM74x574::reset()
{
    _stored = Value("UUUUUUUU");
    _last_evaluation = 0;
    Component::reset();
}

void DM74x574::evaluate(int time)
{
    int input_time = time - _delay;
    if (rising(_clock, _last_evaluation, time, _delay))
        _stored = _d->value(input_time);
    char oe = state_letter(_oe->value(input_time));
    if (oe == 'h')
        _q->set(Value("ZZZZZZZZ"), time);
    else if (oe == 'u')
        _q->set(Value("UUUUUUUU"), time);
    else if (oe == 'l')
        _q->set(_stored, time);
    _last_evaluation = time;
}
