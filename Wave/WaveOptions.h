// The command line of morvane-wave: the run as morvane makes it, and the waveform files to write.
#ifndef MORVANE_WAVE_WAVEOPTIONS_H
#define MORVANE_WAVE_WAVEOPTIONS_H

#include "Wave/WaveJsonWriter.h"

#include "Cli/Options.h"

#include <cstdio>
#include <string>

struct WaveOptions
{
    Options run;              // operands, -q and -v as morvane takes them; no table is printed
    std::string vcd_file;     // -o; "-" is standard output; empty writes none
    std::string json_file;    // -j; the same
    std::string signals;      // -s, comma list of dotted paths; empty selects the root's ports and nets
    WaveWindow window;        // -w, the samples of the WaveJSON file
    bool has_window = false;  // -w was given
};

/// Fills the options from the command line; returns only on success, otherwise ends the process.
void parse_wave_arguments(int argc, char** argv, WaveOptions* options);

void print_wave_help(FILE* stream);

/// Runs as morvane does, then writes the files. Returns the number of failed comparisons in -v mode,
/// or 1 after an Error, whose text is printed on standard output.
int run_wave(const WaveOptions& options);

#endif  // MORVANE_WAVE_WAVEOPTIONS_H
