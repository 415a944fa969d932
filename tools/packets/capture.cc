#include "tools/packets/capture.h"

#include <pcap/pcap.h>

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

link_type link_of(const std::string &path, pcap_t *file) {
    const int type = pcap_datalink(file);
    if (type == DLT_EN10MB) return link_type::ethernet;
    if (type == DLT_RAW) return link_type::raw_ip;
    const char *name = pcap_datalink_val_to_name(type);
    throw std::runtime_error(path + ": packets of link type " +
                             (name ? name : std::to_string(type)) +
                             "; Ethernet (EN10MB) and raw IP (RAW) are read");
}

}  // namespace

capture_result read_capture(const std::string &path,
                            const std::function<void(const captured &)> &each) {
    char why[PCAP_ERRBUF_SIZE] = {};
    const pcap_handle file(pcap_open_offline(path.c_str(), why));
    if (!file) {
        // libpcap puts the path in front of some of its messages.
        const std::string text(why);
        throw std::runtime_error(text.rfind(path, 0) == 0 ? text : path + ": " + text);
    }
    captured packet;
    packet.kind = link_of(path, file.get());
    capture_result result;
    for (;;) {
        pcap_pkthdr *header = nullptr;
        const u_char *bytes = nullptr;
        const int got = pcap_next_ex(file.get(), &header, &bytes);
        if (got == PCAP_ERROR_BREAK) return result;
        if (got != 1) {
            result.cut_short = pcap_geterr(file.get());
            return result;
        }
        ++result.packets;
        packet.bytes = {bytes, header->caplen};
        packet.wire_length = header->len;
        packet.microseconds = static_cast<uint64_t>(header->ts.tv_sec) * 1000000 +
                              static_cast<uint64_t>(header->ts.tv_usec);
        each(packet);
    }
}

struct capture_writer::handles {
    pcap_handle format;
    std::unique_ptr<pcap_dumper_t, close_dumper> file;
};

capture_writer::capture_writer(const std::string &path)
    : path_(path), handles_(std::make_unique<handles>()) {
    handles_->format.reset(pcap_open_dead(DLT_EN10MB, longest_frame));
    if (!handles_->format) throw std::runtime_error(path + ": out of memory");
    handles_->file.reset(pcap_dump_open(handles_->format.get(), path.c_str()));
    if (!handles_->file) {
        const std::string text(pcap_geterr(handles_->format.get()));
        throw std::runtime_error(text.rfind(path, 0) == 0 ? text : path + ": " + text);
    }
}

capture_writer::~capture_writer() = default;

void capture_writer::put(std::span<const uint8_t> frame, uint64_t microseconds) {
    pcap_pkthdr header = {};
    header.caplen = header.len = static_cast<bpf_u_int32>(frame.size());
    header.ts.tv_sec = static_cast<decltype(header.ts.tv_sec)>(microseconds / 1000000);
    header.ts.tv_usec = static_cast<decltype(header.ts.tv_usec)>(microseconds % 1000000);
    pcap_dump(reinterpret_cast<u_char *>(handles_->file.get()), &header, frame.data());
}

void capture_writer::close() {
    if (pcap_dump_flush(handles_->file.get()) != 0)
        throw std::runtime_error(path_ + ": the capture could not be written");
    handles_->file.reset();
}

}  // namespace halden::packets
