#include "interrupt.h"

#include <csignal>

#include "error.h"

namespace vantle {

namespace {

volatile std::sig_atomic_t raised = 0;

}  // namespace

void catchInterrupts() {
    struct sigaction action {};
    action.sa_handler = [](int) { raised = 1; };
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaction(signal, &action, nullptr);
}

bool interrupted() { return raised != 0; }

void throwIfInterrupted() {
    if (interrupted()) throw Error("interrupted; nothing was written");
}

}  // namespace vantle
