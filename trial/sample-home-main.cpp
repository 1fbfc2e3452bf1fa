// Makes a home folder for trials of the program: `brimvault-sample-home DIR`; with `--linux-desktop` behind it, one
// that programs of a Linux desktop have been used in.

#include <cstdio>
#include <cstring>
#include <exception>

#include "trial/LinuxDesktop.h"
#include "trial/SampleHome.h"

int main(int argc, char** argv) {
    const bool isDesktop = argc == 3 && std::strcmp(argv[2], "--linux-desktop") == 0;
    if ((argc != 2 && !isDesktop) || argv[1][0] == '-') {
        std::fputs("usage: brimvault-sample-home DIR [--linux-desktop]\n", stderr);
        return 2;
    }
    try {
        const brimvault::trial::SampleHome home(argv[1]);
        home.makeApplications();
        if (isDesktop) {
            brimvault::trial::LinuxDesktop(home.path()).makeAll();
        }
        std::puts(home.path().c_str());
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "brimvault-sample-home: %s\n", problem.what());
        return 1;
    }
}
