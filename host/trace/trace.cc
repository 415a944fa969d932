#include "host/trace/trace.h"

#include "sdk/trace.h"

#include <fcntl.h>
#include <unistd.h>

#include <spdlog/logger.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace halden::host::trace {

namespace {

constexpr const char *default_pattern = "%Y-%m-%d %H:%M:%S.%e %l %v";
constexpr const char *logger_name = "halden";
// The library reports failures only, all at this level of its own numbering.
constexpr int library_error_level = 11;

std::optional<spdlog::level::level_enum> level_named(std::string_view name) {
    namespace level = spdlog::level;
    static constexpr struct {
        std::string_view name;
        level::level_enum level;
    } levels[] = {{"trace", level::trace},  {"debug", level::debug}, {"info", level::info},
                  {"warning", level::warn}, {"error", level::err},   {"critical", level::critical},
                  {"off", level::off}};
    for (const auto &each : levels)
        if (each.name == name) return each.level;
    return std::nullopt;
}

class sink {
  public:
    sink() {
        to_stderr();
        if (const char *level = std::getenv("HALDEN_LOG_LEVEL"); level && !set_level(level))
            log(spdlog::level::warn,
                std::string("HALDEN_LOG_LEVEL: '") + level +
                    "' is none of trace, debug, info, warning, error, critical, off");
        if (const char *pattern = std::getenv("HALDEN_LOG_PATTERN")) set_pattern(pattern);
        if (const char *file = std::getenv("HALDEN_LOG_FILE"); file && !set_file(file))
            log(spdlog::level::warn,
                std::string("HALDEN_LOG_FILE: '") + file + "' cannot be opened for appending");
    }

    bool set_level(std::string_view name) {
        const auto level = level_named(name);
        if (!level) return false;
        const std::lock_guard guard(lock_);
        level_ = *level;
        logger_->set_level(level_);
        return true;
    }

    void set_pattern(const std::string &pattern) {
        const std::lock_guard guard(lock_);
        pattern_ = pattern;
        logger_->set_pattern(pattern_);
    }

    bool set_file(const std::string &path) {
        if (path.empty()) {
            to_stderr();
            return true;
        }
        // spdlog would make the directories that are missing in front of the file.
        const int there = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
        if (there < 0) return false;
        close(there);
        try {
            use(std::make_shared<spdlog::sinks::basic_file_sink_mt>(path));
            return true;
        } catch (const spdlog::spdlog_ex &) {
            return false;
        }
    }

    void log(spdlog::level::level_enum level, std::string_view text) {
        logger()->log(level, spdlog::string_view_t(text.data(), text.size()));
    }
    void flush() { logger()->flush(); }

  private:
    void to_stderr() { use(std::make_shared<spdlog::sinks::stderr_sink_mt>()); }

    // A logger in use by another thread is replaced, never changed under it.
    void use(spdlog::sink_ptr where) {
        auto next = std::make_shared<spdlog::logger>(logger_name, std::move(where));
        const std::lock_guard guard(lock_);
        next->set_level(level_);
        next->set_pattern(pattern_);
        // A message is a failure: it must not be lost with the process.
        next->flush_on(spdlog::level::warn);
        logger_ = std::move(next);
    }

    std::shared_ptr<spdlog::logger> logger() {
        const std::lock_guard guard(lock_);
        return logger_;
    }

    std::mutex lock_;
    spdlog::level::level_enum level_ = spdlog::level::info;
    std::string pattern_ = default_pattern;
    std::shared_ptr<spdlog::logger> logger_;
};

sink &the_sink() {
    static sink *const made_on_first_use = new sink;  // outlives every thread that may log
    return *made_on_first_use;
}

int expand_and_log(spdlog::level::level_enum level, const char *format, va_list arguments) {
    char small[512];
    va_list again;
    va_copy(again, arguments);
    // The callers have started `arguments`.
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
    const int length = std::vsnprintf(small, sizeof small, format, arguments);
    if (length >= 0 && static_cast<size_t>(length) < sizeof small) {
        the_sink().log(level, {small, static_cast<size_t>(length)});
    } else if (length >= 0) {
        std::vector<char> whole(static_cast<size_t>(length) + 1);
        std::vsnprintf(whole.data(), whole.size(), format, again);
        the_sink().log(level, {whole.data(), static_cast<size_t>(length)});
    } else {
        the_sink().log(level, format);
    }
    va_end(again);
    return length;
}

int from_library(int level, int /*module*/, const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = expand_and_log(
        level == library_error_level ? spdlog::level::err : spdlog::level::info, format, arguments);
    va_end(arguments);
    return length;
}

}  // namespace

bool set_level(std::string_view name) { return the_sink().set_level(name); }
void set_pattern(const std::string &pattern) { the_sink().set_pattern(pattern); }
bool set_file(const std::string &path) { return the_sink().set_file(path); }
void flush() { the_sink().flush(); }

void error(const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    expand_and_log(spdlog::level::err, format, arguments);
    va_end(arguments);
}

}  // namespace halden::host::trace

sdk_trace_cb_t g_trace_cb = halden::host::trace::from_library;
