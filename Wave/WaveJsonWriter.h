// Waveforms as WaveJSON, the text form of the timing diagrams in documentation.
#ifndef MORVANE_WAVE_WAVEJSONWRITER_H
#define MORVANE_WAVE_WAVEJSONWRITER_H

#include "Wave/WaveSignals.h"

#include <ostream>
#include <string>
#include <vector>

/// The times a diagram samples: from, from + step, ... up to `to` at the most, in ns.
struct WaveWindow
{
    int from = 0;
    int to = 0;
    int step = 0;

    /// Parses "<from>:<to>:<step>"; false unless 0 <= from <= to and step > 0.
    bool parse(const std::string& text);
};

/// One period of the diagram per sample. A bit shows as 0 or 1, a pulled bit as d or u, a floating one
/// as z, anything else as x; a bus shows its value in hexadecimal where every bit is 0 or 1, z where
/// all float, and x otherwise. A sample like the one before it is a dot.
void write_wavejson(std::ostream& out, const std::string& title, const std::vector<WaveSignal>& signals,
                    const WaveWindow& window);

#endif  // MORVANE_WAVE_WAVEJSONWRITER_H
