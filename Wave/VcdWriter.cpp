#include "Wave/VcdWriter.h"

#include "Core/Simulation/ValueHistory.h"

#include <algorithm>
#include <map>
#include <memory>

namespace {

/// The short code that stands for a signal in the value changes: printable characters from '!'.
std::string identifier(std::size_t index)
{
    constexpr std::size_t first = '!';
    constexpr std::size_t count = '~' - '!' + 1;
    std::string code;
    do {
        code += static_cast<char>(first + index % count);
        index /= count;
    } while (index != 0);
    return code;
}

std::string vcd_value(const Value& value, const std::string& code)
{
    std::string text;
    if (value.size() != 1)
        text += 'b';
    for (unsigned i = 0; i < value.size(); ++i)
        text += vcd_state(value.c_str()[i]);
    if (value.size() != 1)
        text += ' ';
    return text + code;
}

/// A scope with its own signals and its sub-scopes, each in order of first mention.
struct Scope
{
    std::string name;
    std::vector<std::size_t> signals;              // indexes into the signal list
    std::vector<std::unique_ptr<Scope>> children;  // in order of first mention

    Scope& child(const std::string& child_name)
    {
        for (auto& c : children) {
            if (c->name == child_name)
                return *c;
        }
        children.push_back(std::make_unique<Scope>(Scope{child_name, {}, {}}));
        return *children.back();
    }
};

void write_scope(std::ostream& out, const Scope& scope, const std::vector<WaveSignal>& signals)
{
    out << "$scope module " << scope.name << " $end\n";
    for (std::size_t i : scope.signals) {
        unsigned width = signals[i].history->size();
        out << "$var wire " << width << ' ' << identifier(i) << ' ' << signals[i].name;
        if (width > 1)
            out << " [" << width - 1 << ":0]";
        out << " $end\n";
    }
    for (const auto& child : scope.children)
        write_scope(out, *child, signals);
    out << "$upscope $end\n";
}

/// One line of the dump after a time stamp.
struct Change
{
    int time;            // ns
    std::size_t signal;  // index into the signal list
    std::string text;    // state letters and code
};

}  // namespace

void write_vcd(std::ostream& out, const std::string& top, const std::vector<WaveSignal>& signals,
               int end_time)
{
    Scope root{top, {}, {}};
    for (std::size_t i = 0; i < signals.size(); ++i) {
        Scope* scope = &root;
        for (const std::string& name : signals[i].scope)
            scope = &scope->child(name);
        scope->signals.push_back(i);
    }
    out << "$version morvane-wave $end\n$timescale 1 ns $end\n";
    write_scope(out, root, signals);
    out << "$enddefinitions $end\n#0\n$dumpvars\n";

    std::vector<Change> changes;
    for (std::size_t i = 0; i < signals.size(); ++i) {
        const ValueHistory& history = *signals[i].history;
        std::string code = identifier(i);
        std::string last = vcd_value(history.value(0), code);
        out << last << '\n';
        for (const ValueHistory::Entry& entry : history.entries()) {
            if (entry.time <= 0 || entry.time > end_time)
                continue;
            // A history also records values that change nothing.
            std::string text = vcd_value(entry.value, code);
            if (text != last)
                changes.push_back(Change{entry.time, i, text});
            last = std::move(text);
        }
    }
    out << "$end\n";
    std::stable_sort(changes.begin(), changes.end(),
                     [](const Change& a, const Change& b) { return a.time < b.time; });
    int time = 0;
    for (const Change& change : changes) {
        if (change.time != time) {
            time = change.time;
            out << '#' << time << '\n';
        }
        out << change.text << '\n';
    }
    // Viewers show a signal up to the last time stamp; the run goes on to the end.
    if (end_time > time)
        out << '#' << end_time << '\n';
}
