#include "terminal/CommandLine.h"

#include <cstdio>

int main(int argc, char **argv) {
    const auto line = lmp::CommandLine::parse(argc, argv);
    if (!line) {
        std::fputs(line.error().text.toUtf8().constData(), line.error().usageError ? stderr : stdout);
        return line.error().usageError ? 2 : 0;
    }
    return 0;
}
