#include "command_line.h"

// Only a message that does not fit into memory could still throw, and then there is nothing left to say.
int main(int argc, char** argv) {  // NOLINT(bugprone-exception-escape)
    return vantle::commandLine(argc, argv);
}
