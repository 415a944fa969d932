// The one place where fmt and spdlog become code of the library: a logger, its sink and its
// formatter, with the hooks on every error path. Nothing of the library calls them, and nothing
// runs when the library is loaded.

#include "log/fmt_hooks.h"

#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/spdlog.h>

template class spdlog::sinks::stdout_sink_base<spdlog::details::console_mutex>;
template class spdlog::sinks::stderr_sink<spdlog::details::console_mutex>;

namespace {

// GCOVR_EXCL_START: it is there to be compiled
[[gnu::used]] void log_number(const char *name, int number) {
    spdlog::logger logger(name, std::make_shared<spdlog::sinks::stderr_sink_mt>());
    logger.set_formatter(std::make_unique<spdlog::pattern_formatter>());
    logger.error("{}: {}", name, number);
}
// GCOVR_EXCL_STOP

}  // namespace
