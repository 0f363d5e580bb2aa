// Waveforms as a value change dump, the form every waveform viewer reads.
#ifndef MORVANE_WAVE_VCDWRITER_H
#define MORVANE_WAVE_VCDWRITER_H

#include "Wave/WaveSignals.h"

#include <ostream>
#include <string>
#include <vector>

/// Writes the signals from time 0 to `end_time` in ns: one scope per sub-circuit under a top scope
/// named `top`, buses as vectors with their most significant bit first. What a history holds before 0
/// is its value at 0; what it holds after `end_time` was never simulated and is left out.
void write_vcd(std::ostream& out, const std::string& top, const std::vector<WaveSignal>& signals,
               int end_time);

#endif  // MORVANE_WAVE_VCDWRITER_H
