/// The command line: its commands, and what the exit status says.
#pragma once

namespace vantle {

/// Does what the words say, the first of which names the program. Returns the exit status: 0 when it is done,
/// 1 when it failed, 2 when the words make no sense; then a line on standard error says why. Does not return
/// when an interrupt came. Throws only what tells of a lack of memory.
int commandLine(int argc, char** argv);

}  // namespace vantle
