#include "Cli/CliCircuitVerifier.h"

#include "Core/Support/Error.h"

CliCircuitVerifier::CliCircuitVerifier(const std::string& ctc_file, const std::string&, int)
{
    throw Error("Cannot simulate '%s': circuit files are not supported yet.", ctc_file.c_str());
}
