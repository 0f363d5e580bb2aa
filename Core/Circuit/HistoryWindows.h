// Windows for the histories of a circuit that nobody reads after a run.
#ifndef MORVANE_CORE_CIRCUIT_HISTORYWINDOWS_H
#define MORVANE_CORE_CIRCUIT_HISTORYWINDOWS_H

#include <set>

class Circuit;
class Port;
class ValueHistory;

/// Gives every port and net of the circuit, at any depth, the window that the parts reading it need
/// (ValueHistory::set_window), so that a long run keeps little more than the present. Histories in
/// `keep_full` stay whole, and so does every history next to a part that can't say how far back it
/// reads. Only for a run after which nothing but the histories in `keep_full` is read.
void window_histories(Circuit& circuit, const std::set<const ValueHistory*>& keep_full);

/// Adds the histories that a reader of the port after the run looks at: the port's and its nets'.
void add_histories_read_through(const Port* port, std::set<const ValueHistory*>& histories);

#endif  // MORVANE_CORE_CIRCUIT_HISTORYWINDOWS_H
