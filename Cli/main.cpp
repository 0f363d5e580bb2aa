#include "Cli/Options.h"

int main(int argc, char** argv)
{
    Options options;
    parse_arguments(argc, argv, &options);
    if (options.verify) {
        int failures = run_verification(options);
        return failures > 254 ? 255 : failures;
    }
    run_simulation(options);
    return 0;
}
