#include "Core/Components/Basic/Buffers.h"

#include "Core/Support/StringUtils.h"

#include <map>

using Morvane::BitState;
using Morvane::Input;
using Morvane::Output;

// Delay

ParaMap Delay::default_parameters()
{
    static const std::map<std::string, std::string> Delay_default_params = {{"delay", "3"}};
    return ParaMap(Delay_default_params);
}

std::string Delay::parameter_description()
{
    return "<b>delay</b> The gate delay in ns.";
}

Delay::Delay(const std::string& instance_name, const ParaMap& params)
    : SingleDelayComponent(class_name, instance_name, params)
{
    _init();
    SingleDelayComponent::update_after_param_change();
}

Delay::Delay(const std::string& instance_name, int delay)
    : SingleDelayComponent(class_name, instance_name, delay)
{
    _init();
}

void Delay::_init()
{
    _in = make_pin(Input, "in");
    _out = make_pin(Output, "out");
}

void Delay::evaluate(int time)
{
    _out->set(_in->value(time - delay()), time);
}

// ThreeStateBuf

ParaMap ThreeStateBuf::default_parameters()
{
    static const std::map<std::string, std::string> ThreeStateBuf_default_params = {{"delay", "3"}};
    return ParaMap(ThreeStateBuf_default_params);
}

std::string ThreeStateBuf::parameter_description()
{
    return "<b>delay</b> The gate delay in ns.";
}

ThreeStateBuf::ThreeStateBuf(const std::string& instance_name, const ParaMap& params)
    : SingleDelayComponent(class_name, instance_name, params)
{
    _init();
    SingleDelayComponent::update_after_param_change();
}

ThreeStateBuf::ThreeStateBuf(const std::string& instance_name, int delay)
    : SingleDelayComponent(class_name, instance_name, delay)
{
    _init();
}

void ThreeStateBuf::_init()
{
    _in = make_pin(Input, "in");
    _g = make_pin(Input, "_g");
    _out = make_pin(Output, "out");
}

void ThreeStateBuf::evaluate(int time)
{
    int input_time = time - delay();
    BitState d = static_cast<BitState>(_in->value(input_time));
    char g = state_letter(_g->value(input_time));
    if (g == 'h')
        _out->set(Value('z', 1), time);
    else if (g == 'u')
        _out->set(Value('u', 1), time);
    else
        _out->set(Value(d, 1), time);
}

// BusBuffer

ParaMap BusBuffer::default_parameters()
{
    static const std::map<std::string, std::string> BusBuffer_default_params = {{"delay", "10"},
                                                                                {"size", "8"}};
    return ParaMap(BusBuffer_default_params);
}

std::string BusBuffer::parameter_description()
{
    return fmt("<b>delay</b> The buffer delay in ns. Default is %d ns\n<b>size</b> The buffer bit width. "
               "Default is %d.",
               10, 10);
}

BusBuffer::BusBuffer(const std::string& instance_name, const ParaMap& params)
    : SingleDelayComponent(class_name, instance_name, params)
{
    parameters().get_value("size", _size);
    _init();
    SingleDelayComponent::update_after_param_change();
}

BusBuffer::BusBuffer(const std::string& instance_name, int delay, int size)
    : SingleDelayComponent(class_name, instance_name, delay),
      _size(size)
{
    _init();
}

void BusBuffer::_init()
{
    _in = make_port(_size, Input, "in");
    _out = make_port(_size, Output, "out");
    _g = make_pin(Input, "_g");
}

std::vector<std::string> BusBuffer::get_valid_param_keys()
{
    std::vector<std::string> keys = SingleDelayComponent::get_valid_param_keys();
    keys.push_back("size");
    return keys;
}

void BusBuffer::evaluate(int time)
{
    int input_time = time - delay();
    char g = state_letter(_g->value(input_time));
    if (g == 'h') {
        Value released(_size);
        released.array_set('z');
        _out->set(released, time);
    } else if (g == 'u') {
        _out->set(Value(_size), time);
    } else {
        _out->set(_in->value(input_time), time);
    }
}

// Demux1to4

ParaMap Demux1to4::default_parameters()
{
    static const std::map<std::string, std::string> Demux1to4_default_params = {{"delay", "10"}};
    return ParaMap(Demux1to4_default_params);
}

std::string Demux1to4::parameter_description()
{
    return "<b>delay</b> The gate delay in ns.<p><b>bus_io</b> If set to 'true', 'yes' or '1', the IO will "
           "be "
           "bus-based instead of pin-based. I.e.there will be one 2-bit bus input and a 4-bit bus "
           "output,instead of two invidual input pins, and four individual output pins.";
}

Demux1to4::Demux1to4(const std::string& instance_name, const ParaMap& params)
    : SingleDelayComponent(class_name, instance_name, params)
{
    int delay = 10;
    params.get_value("delay", delay);
    set_delay(delay);
    params.get_value("bus_io", _bus_io);
    _init();
}

Demux1to4::Demux1to4(const std::string& instance_name, int delay, bool bus_io)
    : SingleDelayComponent(class_name, instance_name, delay),
      _bus_io(bus_io)
{
    _init();
}

void Demux1to4::_init()
{
    _x = make_pin(Input, "x");
    if (_bus_io) {
        _s_bus = make_port(2, Input, "S");
        _y_bus = make_port(4, Output, "Y");
        return;
    }
    for (int i = 0; i < 4; ++i)
        _y[i] = make_pin(Output, fmt("y%d", i));
    _s0 = make_pin(Input, "s0");
    _s1 = make_pin(Input, "s1");
}

void Demux1to4::update_after_param_change()
{
    SingleDelayComponent::update_after_param_change();
    parameters().get_value("bus_io", _bus_io);
}

Value Demux1to4::_select_value(int time)
{
    // The ports decide the form: a later "bus_io" doesn't make the other form's ports.
    if (_s_bus != nullptr)
        return _s_bus->value(time);
    Value select(2);
    select[0] = _s0->value(time)[0];
    select[1] = _s1->value(time)[0];
    return select;
}

void Demux1to4::_set(const char* pattern, int time)
{
    if (_y_bus != nullptr) {
        _y_bus->set(Value(pattern), time);
        return;
    }
    for (int i = 0; i < 4; ++i)
        _y[i]->set(Value(pattern[3 - i], 1), time);
}

void Demux1to4::evaluate(int time)
{
    int input_time = time - delay();
    char x = state_letter(_x->value(input_time));
    if (x == 'h') {
        _set("HHHH", time);
    } else if (x == 'u') {
        _set("UUUU", time);
    } else if (x == 'l') {
        Value select = _select_value(input_time);
        if (select.has_any('u')) {
            _set("UUUU", time);
            return;
        }
        switch (select.integer()) {
        case 0:
            _set("HHHL", time);
            break;
        case 1:
            _set("HHLH", time);
            break;
        case 2:
            _set("HLHH", time);
            break;
        case 3:
            _set("LHHH", time);
            break;
        default:
            _set("EEEE", time);
            break;
        }
    }
}
