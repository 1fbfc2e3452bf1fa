// Makes a home folder for trials of the program: `brimvault-sample-home DIR`.

#include <cstdio>
#include <exception>

#include "trial/SampleHome.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: brimvault-sample-home DIR\n", stderr);
        return 2;
    }
    try {
        const brimvault::trial::SampleHome home(argv[1]);
        home.makeApplications();
        std::puts(home.path().c_str());
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "brimvault-sample-home: %s\n", problem.what());
        return 1;
    }
}
