/// Ctrl-C and the like: they end a rendering in order, so that nothing half-written stays behind.
#pragma once

namespace vantle {

/// From here on SIGINT, SIGTERM, SIGHUP and SIGXCPU only raise a flag; a fourth one ends the program as
/// usual. Writing to a closed pipe or beyond the limit on a file's size fails as any other write does.
void catchInterrupts();

/// True once one of those signals has come.
bool interrupted();

/// Throws Error once one of those signals has come.
void throwIfInterrupted();

/// Ends the program by the first of those signals that has come, if one has: a shell's loop then ends too,
/// which no exit status brings about. To be called when everything is tidied up.
void endIfInterrupted();

}  // namespace vantle
