#include "system/interrupt.h"

#include <csignal>

#include "Host/error.h"

namespace vantle {

namespace {

volatile std::sig_atomic_t raised = 0;
volatile std::sig_atomic_t firstRaised = 0;

}  // namespace

void catchInterrupts() {
    struct sigaction action {};
    action.sa_handler = [](int signal) {
        // Not the second: `timeout` and terminals may send the first one twice.
        if (raised == 2) std::signal(signal, SIG_DFL);
        if (raised == 0) firstRaised = signal;
        raised = raised + 1;
    };
    for (const int signal : {SIGINT, SIGTERM, SIGXCPU}) sigaction(signal, &action, nullptr);
    // Under nohup it is ignored and stays so.
    if (std::signal(SIGHUP, SIG_IGN) != SIG_IGN) sigaction(SIGHUP, &action, nullptr);
    // These would end the program on the spot; ignored, they fail the write, and it ends in order.
    for (const int signal : {SIGPIPE, SIGXFSZ}) std::signal(signal, SIG_IGN);
}

bool interrupted() { return raised != 0; }

void throwIfInterrupted() {
    if (interrupted()) throw Error("interrupted; nothing was written");
}

void endIfInterrupted() {
    if (!interrupted()) return;
    std::signal(firstRaised, SIG_DFL);
    std::raise(firstRaised);
}

}  // namespace vantle
