// The command line of one run.
#ifndef MORVANE_CLI_OPTIONS_H
#define MORVANE_CLI_OPTIONS_H

#include <cstdio>
#include <functional>
#include <string>

class CircuitVerifier;

struct Options
{
    std::string ctc_file;           // path of the circuit file
    std::string tv_file;            // path of the test vector file
    std::string pins;               // comma list of further pins/ports to print
    std::string nets;               // comma list of further nets to print
    int print_time_step = 0;        // ns between printed rows; 0 prints the times of the TV file
    bool verify = false;            // compare outputs with the TV file
    bool silent = false;            // do not print the result table
    bool force_print = false;       // print the table even when silent
    bool check_connections = true;  // report unconnected inputs before the run
    bool hex = false;               // print values in hexadecimal where possible
};

/// Fills the options from the command line; returns only on success, otherwise ends the process.
void parse_arguments(int argc, char** argv, Options* options);

void print_help(FILE* stream);

/// What a companion command does around the run; either may be empty.
struct RunHooks
{
    std::function<void(CircuitVerifier&)> before_run;  // after the connection check
    std::function<void(CircuitVerifier&)> after_run;   // after the run and its summary, before the table
};

/// The run both commands make: build, connection check, simulation or verification with its summary
/// line, table. Errors pass through; returns the number of failed comparisons.
int run_circuit(const Options& options, const RunHooks& hooks = {});

/// Runs `action`; an Error it throws is printed on standard output, and the result is false.
bool run_reporting_errors(const std::function<void()>& action);

/// Simulates and prints; an Error is printed and the run still counts as done.
void run_simulation(const Options& options);

/// Simulates and compares; returns the number of failures, 1 after an Error.
int run_verification(const Options& options);

#endif  // MORVANE_CLI_OPTIONS_H
