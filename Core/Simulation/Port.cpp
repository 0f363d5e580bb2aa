#include "Core/Simulation/Port.h"

#include "Core/Components/ParaMap.h"
#include "Core/Simulation/EventSimulator.h"
#include "Core/Simulation/Net.h"
#include "Core/Support/Error.h"
#include "Core/Support/TLog.h"

#include <cstdio>

using Morvane::Dir;
using Morvane::Inout;
using Morvane::Input;
using Morvane::Inside;
using Morvane::IntExtQual;
using Morvane::Output;
using Morvane::Outside;

Port::Port(int size, Dir dir, const std::string& name, Component* component)
    : ValueHistory(static_cast<unsigned>(size)),
      PortWiring{dir, component},
      BaseObject(name)
{
    _mark_as_port();
}

Port::Port(Port* source, Component* component)
    : ValueHistory(source->size()),
      PortWiring{source->_dir, component, nullptr, nullptr, source->_z_translation},
      BaseObject(source),
      CommentableObject(source->comment_text())
{
    _mark_as_port();
}

Port::~Port()
{
    if (_outside_net != nullptr)
        _outside_net->remove(this);
    if (_inside_net != nullptr)
        _inside_net->remove(this);
}

std::uint64_t Port::_nof_stores = 0;

void Port::set(const Value& value, int time)
{
    ++_nof_stores;
    _set(value, time);
    Dir direction = dir();
    if (direction == Output && _outside_net != nullptr) {
        if (simulator() != nullptr)
            simulator()->request_evaluation(time, _outside_net, this, value);
        else
            fprintf(stderr, "*** ERROR: port '%s' set without simulator. Can't set external net.\n",
                    name().c_str());
    } else if (direction == Inout && simulator() != nullptr) {
        // With nets on both sides the port only ties them together; it drives neither.
        if (_inside_net != nullptr && _outside_net == nullptr)
            simulator()->request_evaluation(time, _inside_net, this, value);
        else if (_outside_net != nullptr && _inside_net == nullptr)
            simulator()->request_evaluation(time, _outside_net, this, value);
    }
}

Value Port::_inout_value(int time)
{
    if (_inside_net == nullptr) {
        if (_outside_net != nullptr)
            return _net_value(_outside_net, time);
        Value own = ValueHistory::value(time);
        _z_translate(own);
        return own;
    }
    if (_outside_net == nullptr) {
        // A stimulus on a root circuit's inout port drives the inside; once there is one, it is read.
        return nof_values() != 0 ? ValueHistory::value(time) : _net_value(_inside_net, time);
    }
    Value inside = _inside_net->value(time, this);
    if (inside != _outside_net->value(time, this))
        inside.set_undefined();
    _z_translate(inside);
    return inside;
}

Value Port::local_net_value(int time, IntExtQual q, bool follow)
{
    Net* side = net(q);
    if (side == nullptr)
        return Value(static_cast<int>(size()));
    return side->local_value(time, follow);
}

void Port::set_net(Net* net, IntExtQual q)
{
    Net::connections_changed();
    if (q == Inside)
        _inside_net = net;
    else
        _outside_net = net;
}

void Port::update(int time)
{
    set(value(time), time);
}

void Port::disconnect(IntExtQual q)
{
    if (q != Inside && q != Outside)
        return;
    Net* side = net(q);
    if (side != nullptr)
        side->remove(this);
}

void Port::set_options(ParaMap& params)
{
    for (const auto& [key, setting] : params.data()) {
        if (key != "ztr")
            throw Error("Invalid Port option: '%s'.", key.c_str());
        if (dir() == Input || dir() == Inout)
            throw Error("Invalid Port ztr usage: the ztr can only be used in Outputs.");
        if (setting == "off")
            disable_z_translation();
        else if (setting == "on")
            enable_z_translation();
        else
            throw Error("Invalid Port option: 'ztr' only takes 'on' or 'off' as values.");
    }
}

void Port::print() const
{
    TLog log("'%s' (0x%p) (net '%s' 0x%p)", name().c_str(), static_cast<const void*>(this),
             _inside_net != nullptr ? _inside_net->name().c_str() : "",
             static_cast<const void*>(_inside_net));
    Dict::print();
    ValueHistory::print();
}

Pin::Pin(Dir dir, const std::string& name) : Port(1, dir, name, nullptr) {}

void Pin::set_clock_pattern(int period, int count, int start)
{
    if (count < 1)
        return;
    int half = period / 2;
    int t = start;
    for (int i = 0; i < count; ++i) {
        set(Value("L"), t);
        set(Value("H"), t + half);
        t += period;
    }
}

PortFactory::~PortFactory()
{
    for (Port* port : _ports)
        delete port;
    _ports.clear();
}

Port* PortFactory::create(int size, Dir dir, const std::string& name)
{
    Port* port = new Port(size, dir, name, nullptr);
    _ports.push_back(port);
    return port;
}

Pin* PortFactory::create_pin(Dir dir, const std::string& name)
{
    Pin* pin = new Pin(dir, name);
    _ports.push_back(pin);
    return pin;
}

Port* PortFactory::copy(Port* source)
{
    Port* port = nullptr;
    if (auto* pin = dynamic_cast<Pin*>(source))
        port = new Pin(pin, nullptr);
    else
        port = new Port(source, nullptr);
    _ports.push_back(port);
    return port;
}
