#include "Cli/CircuitVerifier.h"
#include "Cli/Options.h"
#include "Cli/StdOutSimLog.h"
#include "Core/Circuit/Circuit.h"
#include "Core/Support/Error.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <unistd.h>

void print_help(FILE* stream)
{
    fputs("Morvane, version 2.19.86 Commit: 1412 e993d758211d+.\n"
          "Usage: morvane [-hPqvx] [-n <nets>] [-p <pins>] [-R<print time step>] <CTC file> <TV file> \n"
          "<CTC file>:       [Mandatory] The circuit file.\n"
          "<TV file>:        [Mandatory] The test vector file.\n"
          "-h:               [Optional]  Print this help text.\n"
          "-n <nets>:        [Optional]  Also print the values of these nets.\n"
          "-p <pins>:        [Optional]  Also print the values of these pins/ports.\n"
          "-P:               [Optional]  Force printing of the event log. Overrides -v silence.\n"
          "-q:               [Optional]  Suppress circuit warnings otherwise printed on stderr.\n"
          "-R <resolution>:  [Optional]  The time resolution which results are printed width.\n"
          "                              A value of 0 means the specified times in the TV file.\n"
          "                              Default: 0.\n"
          "-v:               [Optional]  Verify that the outputs assumes the values\n"
          "                              specified in the TV file. Inhibits sim. log printing.\n"
          "-x:               [Optional]  Print values in hexadecimal, if possible.\n",
          stream);
}

void parse_arguments(int argc, char** argv, Options* options)
{
    // Defaults are set here again, whatever the caller left in the record.
    *options = Options();

    int option;
    while ((option = getopt(argc, argv, "hn:p:PqR:vx")) != -1) {
        switch (option) {
        case 'h':
            print_help(stdout);
            exit(0);
        case 'n':
            options->nets = optarg;
            break;
        case 'p':
            options->pins = optarg;
            break;
        case 'P':
            options->force_print = true;
            break;
        case 'q':
            options->check_connections = false;
            break;
        case 'R':
            if (sscanf(optarg, "%d", &options->print_time_step) != 1) {
                fputs("Error: time resolution must be numeric.\n", stderr);
                print_help(stderr);
                exit(1);
            }
            break;
        case 'v':
            options->verify = true;
            options->silent = true;
            break;
        case 'x':
            options->hex = true;
            break;
        default:
            print_help(stderr);
            exit(1);
        }
    }

    if (argc - optind < 2) {
        fputs("ERROR: Must specify both a circuit (CTC) file and a test (TV) file.\n", stderr);
        print_help(stderr);
        exit(1);
    }
    options->ctc_file = argv[optind];
    options->tv_file = argv[optind + 1];
}

int run_circuit(const Options& options, const RunHooks& hooks)
{
    auto verifier = std::make_unique<CliCircuitVerifier>(options.ctc_file, options.tv_file, 0);
    // The sink is destroyed before the verifier, on every path.
    auto sim_log = std::make_unique<StdOutSimLog>();
    verifier->circuit()->set_simlog(sim_log.get());
    if (options.check_connections)
        verifier->check_circuit();
    if (hooks.before_run)
        hooks.before_run(*verifier);
    int failures = 0;
    if (!options.verify) {
        verifier->simulate();
    } else if (verifier->verify()) {
        printf("All tests passed.\n");
    } else {
        failures = verifier->nof_issues();
        printf("%d test%s failed.\n", failures, failures <= 1 ? "" : "s");
    }
    if (hooks.after_run)
        hooks.after_run(*verifier);
    if (!options.silent || options.force_print)
        verifier->print(options.print_time_step, options.pins, options.nets, options.hex);
    sim_log.reset();
    return failures;
}

bool run_reporting_errors(const std::function<void()>& action)
{
    try {
        action();
        return true;
    } catch (const ErrorWithPos& e) {
        // Its text lives in the positioned part only; the plain one is empty.
        printf("%s\n", e.pos_message().c_str());
    } catch (const Error& e) {
        printf("%s\n", e.message().c_str());
    }
    return false;
}

void run_simulation(const Options& options)
{
    run_reporting_errors([&] { run_circuit(options); });
}

int run_verification(const Options& options)
{
    int failures = 0;
    if (!run_reporting_errors([&] { failures = run_circuit(options); }))
        return 1;
    return failures;
}
