#include "Wave/Progress.h"
#include "Wave/VcdWriter.h"
#include "Wave/WaveOptions.h"

#include "Cli/CircuitVerifier.h"
#include "Core/Simulation/EventSimulator.h"
#include "Core/Support/Error.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <unistd.h>

namespace {

[[noreturn]] void usage_error(const char* message)
{
    fputs(message, stderr);
    print_wave_help(stderr);
    exit(1);
}

/// A file the run writes to, opened before the run so that a wrong name costs no simulation.
class OutputFile
{
public:
    explicit OutputFile(const std::string& name) : _name(name)
    {
        if (name == "-")
            return;
        _file = std::make_unique<std::ofstream>(name, std::ios::binary);
        if (!*_file)
            throw Error("Error: cannot write the file '%s'.", name.c_str());
    }
    std::ostream& stream() { return _file ? *_file : std::cout; }
    void close()
    {
        stream().flush();
        if (!stream())
            throw Error("Error: cannot write the file '%s'.", _name.c_str());
    }

private:
    std::string _name;                     // as the user gave it
    std::unique_ptr<std::ofstream> _file;  // null for standard output
};

}  // namespace

void print_wave_help(FILE* stream)
{
    fputs("Morvane waveforms, version 2.19.86.\n"
          "Usage: morvane-wave [-hqv] [-o <VCD file>] [-j <WaveJSON file> -w <from>:<to>:<step>] "
          "[-s <signals>] <CTC file> <TV file> \n"
          "<CTC file>:       [Mandatory] The circuit file.\n"
          "<TV file>:        [Mandatory] The test vector file.\n"
          "-h:               [Optional]  Print this help text.\n"
          "-j <file>:        [Optional]  Write the signals as WaveDrom WaveJSON, sampled over the window.\n"
          "-o <file>:        [Optional]  Write the signals as a value change dump (VCD), timescale 1 ns.\n"
          "                              A file name of - writes to standard output.\n"
          "-q:               [Optional]  Suppress circuit warnings otherwise printed on stderr.\n"
          "-s <signals>:     [Optional]  Write these signals only: a comma list of dotted paths of\n"
          "                              ports, nets (%<path> for the net where a port has the path)\n"
          "                              and parts (all their ports and nets). Default: every port\n"
          "                              and net of the circuit.\n"
          "-v:               [Optional]  Verify that the outputs assume the values\n"
          "                              specified in the TV file.\n"
          "-w <window>:      [Mandatory with -j] One sample every <step> ns from <from> to <to> ns.\n"
          "At least one of -o and -j. Sub-circuits are scopes of the VCD, buses are vectors. Bit states\n"
          "in the VCD: L and pulled low (n) are 0, H and pulled high (p) are 1, undefined (u) and\n"
          "unknown (x) are x, floating (z) is z. WaveJSON also shows pulled bits as d and u, and a bus\n"
          "in hexadecimal where all its bits are 0 or 1. Exit status: 0; with -v the number of failed\n"
          "tests up to 255; 1 after an error.\n",
          stream);
}

void parse_wave_arguments(int argc, char** argv, WaveOptions* options)
{
    *options = WaveOptions();
    options->run.silent = true;

    int option;
    while ((option = getopt(argc, argv, "hj:o:qs:vw:")) != -1) {
        switch (option) {
        case 'h':
            print_wave_help(stdout);
            exit(0);
        case 'j':
            options->json_file = optarg;
            break;
        case 'o':
            options->vcd_file = optarg;
            break;
        case 'q':
            options->run.check_connections = false;
            break;
        case 's':
            options->signals = optarg;
            break;
        case 'v':
            options->run.verify = true;
            break;
        case 'w':
            if (!options->window.parse(optarg))
                usage_error("Error: the window must be <from>:<to>:<step> in ns, with 0 <= from <= to and "
                            "a step above 0.\n");
            options->has_window = true;
            break;
        default:
            print_wave_help(stderr);
            exit(1);
        }
    }

    if (argc - optind < 2)
        usage_error("ERROR: Must specify both a circuit (CTC) file and a test (TV) file.\n");
    if (options->vcd_file.empty() && options->json_file.empty())
        usage_error("ERROR: Must specify a VCD file (-o) or a WaveJSON file (-j).\n");
    if (!options->json_file.empty() && !options->has_window)
        usage_error("ERROR: A WaveJSON file (-j) needs a window (-w <from>:<to>:<step>).\n");
    options->run.ctc_file = argv[optind];
    options->run.tv_file = argv[optind + 1];
}

int run_wave(const WaveOptions& options)
{
    int failures = 0;
    bool done = run_reporting_errors([&] {
        // Gone before an error is printed, so that the message doesn't share the progress line.
        Progress progress;
        std::vector<WaveSignal> signals;
        std::unique_ptr<OutputFile> vcd;
        std::unique_ptr<OutputFile> json;
        std::string title = std::filesystem::path(options.run.ctc_file).stem().string();

        RunHooks hooks;
        hooks.before_run = [&](CircuitVerifier& verifier) {
            int end_time = verifier.simulation_time() + 1;
            signals = select_wave_signals(*verifier.circuit(), options.signals);
            const WaveWindow& window = options.window;
            if (!options.json_file.empty() && window.to > end_time)
                throw Error("Error: the window %d:%d:%d lies outside the run, which ends at %d ns.",
                            window.from, window.to, window.step, end_time);
            if (!options.vcd_file.empty())
                vcd = std::make_unique<OutputFile>(options.vcd_file);
            if (!options.json_file.empty())
                json = std::make_unique<OutputFile>(options.json_file);
            verifier.set_run_listener([&progress, end_time](bool running) {
                if (running)
                    progress.start(end_time);
                else
                    progress.stop();
            });
        };
        hooks.after_run = [&](CircuitVerifier&) {
            if (vcd) {
                write_vcd(vcd->stream(), title, signals, simulator()->max_time());
                vcd->close();
            }
            if (json) {
                write_wavejson(json->stream(), title, signals, options.window);
                json->close();
            }
        };
        failures = run_circuit(options.run, hooks);
    });
    return done ? failures : 1;
}
