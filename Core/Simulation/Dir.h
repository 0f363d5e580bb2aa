// Direction and side of a port, shared by histories, ports and nets.
#ifndef MORVANE_CORE_SIMULATION_DIR_H
#define MORVANE_CORE_SIMULATION_DIR_H

namespace Morvane {

/// As seen from the component that owns the port.
enum Dir
{
    Input = 0,   // hears its net, drives nothing outside
    Output = 1,  // drives its outside net
    Inout = 2,   // ties its two nets together, or drives the one it has
};

/// Which of the two nets of a port: the one in the holding circuit, or the one within.
enum IntExtQual
{
    Inside = 0,   // within a sub-circuit, or behind an inout pin
    Outside = 1,  // in the circuit that holds the component
};

}  // namespace Morvane

#endif  // MORVANE_CORE_SIMULATION_DIR_H
