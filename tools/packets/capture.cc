#include "tools/packets/capture.h"

#include <fcntl.h>
#include <pcap/pcap.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <stdexcept>

namespace halden::packets {
namespace {

struct close_pcap {
    void operator()(pcap_t *p) const { pcap_close(p); }
};
struct close_dumper {
    void operator()(pcap_dumper_t *d) const { pcap_dump_close(d); }
};
using pcap_handle = std::unique_ptr<pcap_t, close_pcap>;

constexpr int longest_frame = 262144;

// A source as the stream that libpcap reads. Nothing is thrown through libpcap: what the source
// throws is kept, and the stream fails.
class capture_stream {
  public:
    explicit capture_stream(const byte_source &source) : source_(source) {}

    FILE *opened() {
        cookie_io_functions_t calls = {};
        calls.read = [](void *self, char *to, size_t most) {
            return static_cast<capture_stream *>(self)->read(to, most);
        };
        FILE *file = fopencookie(this, "rb", calls);
        // What libpcap has read and no more is counted; the buffer is ours.
        if (file != nullptr) std::setvbuf(file, nullptr, _IONBF, 0);
        return file;
    }
    uint64_t bytes_read() const { return bytes_read_; }
    void rethrow() const {
        if (thrown_) std::rethrow_exception(thrown_);
    }

  private:
    ssize_t read(char *to, size_t most) {
        try {
            if (next_ == end_) {
                end_ = source_(buffer_.data(), buffer_.size());
                next_ = 0;
            }
        } catch (...) {
            thrown_ = std::current_exception();
            return -1;
        }
        const size_t taken = std::min(most, end_ - next_);
        std::memcpy(to, buffer_.data() + next_, taken);
        next_ += taken;
        bytes_read_ += taken;
        return static_cast<ssize_t>(taken);
    }

    const byte_source &source_;
    std::array<char, size_t{1} << 16> buffer_;
    size_t next_ = 0, end_ = 0;
    uint64_t bytes_read_ = 0;
    std::exception_ptr thrown_;
};

link_type link_of(pcap_t *file) {
    const int type = pcap_datalink(file);
    if (type == DLT_EN10MB) return link_type::ethernet;
    if (type == DLT_RAW) return link_type::raw_ip;
    const char *name = pcap_datalink_val_to_name(type);
    throw std::runtime_error("packets of link type " +
                             std::string(name ? name : std::to_string(type)) +
                             "; Ethernet (EN10MB) and raw IP (RAW) are read");
}

std::optional<uint64_t> time_of(const timeval &time) {
    constexpr int64_t seconds_end = int64_t{1} << 32, second = 1000000;
    int64_t seconds = time.tv_sec;
    // The 32 bits of a pcap file count on to 2106; libpcap hands them on with a sign.
    if (seconds < 0 && seconds >= INT32_MIN) seconds += seconds_end;
    if (seconds < 0 || seconds >= seconds_end || time.tv_usec < 0 || time.tv_usec >= second)
        return std::nullopt;
    return static_cast<uint64_t>(seconds * second + time.tv_usec);
}

[[noreturn]] void fail(const std::string &path, int error) {
    throw std::runtime_error(path + ": " + std::strerror(error));
}

}  // namespace

capture_result read_capture(const byte_source &source,
                            const std::function<void(const captured &)> &each) {
    capture_stream stream(source);
    FILE *opened = stream.opened();
    if (opened == nullptr) throw std::bad_alloc();
    char why[PCAP_ERRBUF_SIZE] = {};
    const pcap_handle file(pcap_fopen_offline(opened, why));
    if (!file) {
        std::fclose(opened);
        stream.rethrow();
        throw std::runtime_error(why);
    }
    captured packet;
    packet.kind = link_of(file.get());
    capture_result result;
    for (;;) {
        pcap_pkthdr *header = nullptr;
        const u_char *bytes = nullptr;
        const uint64_t at = stream.bytes_read();
        const int got = pcap_next_ex(file.get(), &header, &bytes);
        stream.rethrow();
        if (got == PCAP_ERROR_BREAK) return result;
        if (got != 1) {
            result.cut_short = "packet " + std::to_string(result.packets + 1) + ", at byte " +
                               std::to_string(at) + ": " + pcap_geterr(file.get());
            return result;
        }
        ++result.packets;
        packet.bytes = {bytes, header->caplen};
        packet.wire_length = header->len;
        packet.microseconds = time_of(header->ts);
        each(packet);
    }
}

struct capture_writer::handles {
    pcap_handle format;
    std::unique_ptr<pcap_dumper_t, close_dumper> file;
};

// The descriptor to write to; -1 with errno.
int capture_writer::open_target() {
    if (path_ == "-") return dup(STDOUT_FILENO);
    struct stat there = {};
    const bool exists = stat(path_.c_str(), &there) == 0;
    if (exists && !S_ISREG(there.st_mode)) return open(path_.c_str(), O_WRONLY | O_CLOEXEC);
    final_name_ = path_;
    mode_t mode = there.st_mode & 07777;
    if (exists) {
        // Behind a symbolic link it is the file that is replaced.
        const std::unique_ptr<char, decltype(&std::free)> real(realpath(path_.c_str(), nullptr),
                                                               &std::free);
        if (!real) return -1;
        if (access(real.get(), W_OK) != 0) return -1;
        final_name_ = real.get();
    } else {
        const mode_t kept_away = umask(0);
        umask(kept_away);
        mode = 0666 & ~kept_away;
    }
    temporary_name_ = final_name_ + ".XXXXXX";
    const int descriptor = mkostemp(temporary_name_.data(), O_CLOEXEC);
    if (descriptor < 0)
        temporary_name_.clear();
    else
        (void)!fchmod(descriptor, mode);
    return descriptor;
}

capture_writer::capture_writer(const std::string &path)
    : path_(path), handles_(std::make_unique<handles>()) {
    handles_->format.reset(pcap_open_dead(DLT_EN10MB, longest_frame));
    if (!handles_->format) throw std::bad_alloc();
    const int descriptor = open_target();
    if (path == "-") path_ = "standard output";
    if (descriptor < 0) fail(path_, errno);
    FILE *file = fdopen(descriptor, "wb");
    if (file != nullptr) handles_->file.reset(pcap_dump_fopen(handles_->format.get(), file));
    if (handles_->file) return;
    const int error = errno;
    file != nullptr ? std::fclose(file) : ::close(descriptor);
    if (!temporary_name_.empty()) unlink(temporary_name_.c_str());
    fail(path_, error);
}

capture_writer::~capture_writer() {
    if (!temporary_name_.empty()) unlink(temporary_name_.c_str());
}

void capture_writer::put(std::span<const uint8_t> frame, uint64_t microseconds) {
    pcap_pkthdr header = {};
    header.caplen = header.len = static_cast<bpf_u_int32>(frame.size());
    header.ts.tv_sec = static_cast<decltype(header.ts.tv_sec)>(microseconds / 1000000);
    header.ts.tv_usec = static_cast<decltype(header.ts.tv_usec)>(microseconds % 1000000);
    pcap_dump(reinterpret_cast<u_char *>(handles_->file.get()), &header, frame.data());
    if (std::ferror(pcap_dump_file(handles_->file.get())) != 0) fail(path_, errno);
}

void capture_writer::close() {
    if (pcap_dump_flush(handles_->file.get()) != 0) fail(path_, errno);
    handles_->file.reset();
    if (temporary_name_.empty()) return;
    if (std::rename(temporary_name_.c_str(), final_name_.c_str()) != 0) fail(path_, errno);
    temporary_name_.clear();
}

}  // namespace halden::packets
