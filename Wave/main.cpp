#include "Wave/WaveOptions.h"

int main(int argc, char** argv)
{
    WaveOptions options;
    parse_wave_arguments(argc, argv, &options);
    int status = run_wave(options);
    return status > 254 ? 255 : status;
}
