// The signals a waveform file shows: which histories, under which scope and name.
#ifndef MORVANE_WAVE_WAVESIGNALS_H
#define MORVANE_WAVE_WAVESIGNALS_H

#include <string>
#include <vector>

class Circuit;
class ValueHistory;

/// One port or net as a waveform shows it.
struct WaveSignal
{
    std::vector<std::string> scope;  // instance names below the root, outermost first
    std::string name;                // within its scope; a net that shares a port's name gets "#" before it
    std::string path;                // dotted path from the root as a label, with the name's "#" in front
    const ValueHistory* history;     // not owned
};

/// The signals of a comma list of dotted paths, in order. A path names a port, else a net, and a
/// path with "%" before it a net only; a path that names a part brings all its ports and, for a
/// sub-circuit, its nets. An empty list selects every port and net of `root`. A signal named twice
/// is shown once; a path that names nothing throws Error.
std::vector<WaveSignal> select_wave_signals(Circuit& root, const std::string& paths);

/// A bit state as one of the four states of a value change dump: 0, 1, x or z.
char vcd_state(char letter);

#endif  // MORVANE_WAVE_WAVESIGNALS_H
