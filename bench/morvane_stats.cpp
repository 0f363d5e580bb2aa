// Runs a circuit and its test vectors as morvane does, without the table, and reports the work:
//
//     morvane_stats CIRCUIT.ctc TEST.tv
//
// prints one line of key=value pairs: load and simulation time, net value changes (events), actions
// and component evaluations, the history entries left after the run and the memory they and the
// kept actions take, the peak resident memory, and whether the outputs matched the test (passed,
// as -v checks them; a mismatch is reported as morvane reports it). It runs as the command line
// does: once, with windows on every history that the test doesn't read.
#include "Cli/CircuitVerifier.h"
#include "Core/Circuit/Circuit.h"
#include "Core/Simulation/EventSimulator.h"
#include "Core/Simulation/HistoryRecords.h"
#include "Core/Simulation/Net.h"
#include "Core/Support/Error.h"

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <sys/resource.h>

namespace {

struct Tally
{
    std::uint64_t net_entries = 0;     // history entries of nets
    std::uint64_t port_entries = 0;    // history entries of ports
    std::uint64_t narrow_entries = 0;  // entries of histories of 8 bits or fewer
    std::uint64_t nets = 0;            // nets walked
};

void walk(const Circuit& circuit, Tally& tally)
{
    for (const Net* net : circuit.nets()) {
        ++tally.nets;
        tally.net_entries += net->nof_values();
        if (net->size() <= 8)
            tally.narrow_entries += net->nof_values();
    }
    for (const Component* part : circuit.components()) {
        for (const Port* port : part->ports()) {
            tally.port_entries += port->nof_values();
            if (port->size() <= 8)
                tally.narrow_entries += port->nof_values();
        }
        if (const auto* inner = dynamic_cast<const Circuit*>(part))
            walk(*inner, tally);
    }
}

long resident_kb()
{
    long pages = 0;
    long resident = 0;
    if (FILE* statm = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(statm, "%ld %ld", &pages, &resident) != 2)
            resident = 0;
        std::fclose(statm);
    }
    return resident * 4;
}

double seconds_since(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: morvane_stats CIRCUIT.ctc TEST.tv\n");
        return 2;
    }
    try {
        auto start = std::chrono::steady_clock::now();
        CliCircuitVerifier verifier(argv[1], argv[2], 0);
        verifier.set_single_run("", "");
        double load_s = seconds_since(start);
        long loaded_kb = resident_kb();
        std::size_t loaded_history_bytes = HistoryRecords::bytes_in_use();

        start = std::chrono::steady_clock::now();
        bool passed = verifier.verify();
        double sim_s = seconds_since(start);

        EventSimulator* engine = simulator();
        Tally tally;
        walk(*verifier.circuit(), tally);
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        std::uint64_t entries = tally.net_entries + tally.port_entries;
        std::uint64_t events = Net::nof_recorded_updates();
        double history_bytes = static_cast<double>(HistoryRecords::bytes_in_use() - loaded_history_bytes);
        double grown_kb = static_cast<double>(usage.ru_maxrss - loaded_kb);
        std::printf(
            "STATS load_s=%.3f sim_s=%.3f end_time=%d events=%llu actions=%llu evaluations=%llu "
            "nets=%llu net_entries=%llu port_entries=%llu narrow_entries=%llu kept_actions=%zu "
            "history_bytes_per_entry=%.1f rss_bytes_per_entry=%.1f rss_bytes_per_event=%.1f loaded_kb=%ld "
            "maxrss_kb=%ld events_per_s=%.0f passed=%d\n",
            load_s, sim_s, engine->max_time(), static_cast<unsigned long long>(events),
            static_cast<unsigned long long>(engine->nof_actions_run()),
            static_cast<unsigned long long>(engine->nof_evaluations_run()),
            static_cast<unsigned long long>(tally.nets), static_cast<unsigned long long>(tally.net_entries),
            static_cast<unsigned long long>(tally.port_entries),
            static_cast<unsigned long long>(tally.narrow_entries), engine->nof_actions_kept(),
            entries != 0 ? history_bytes / static_cast<double>(entries) : 0.0,
            entries != 0 ? grown_kb * 1024.0 / static_cast<double>(entries) : 0.0,
            events != 0 ? grown_kb * 1024.0 / static_cast<double>(events) : 0.0, loaded_kb, usage.ru_maxrss,
            sim_s > 0 ? static_cast<double>(events) / sim_s : 0.0, passed ? 1 : 0);
    } catch (const Error& e) {
        std::printf("%s\n", e.message().c_str());
        return 1;
    }
    return 0;
}
