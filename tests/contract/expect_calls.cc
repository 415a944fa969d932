#include "tests/contract/expect_calls.h"

#include <map>

namespace halden::test {

namespace {

std::string text_of(const expected_call &c) {
    std::string out = c.name;
    for (const expected_argument &a : c.arguments) {
        out += ' ';
        if (const uint64_t *value = std::get_if<uint64_t>(&a.is)) {
            out += std::to_string(*value);
            continue;
        }
        if (const holding *content = std::get_if<holding>(&a.is)) {
            out += "->";
            for (uint8_t byte : content->bytes) out += ' ' + std::to_string(byte);
            continue;
        }
        const place &p = std::get<place>(a.is);
        out += p.name.empty() ? "null" : p.name;
        if (p.offset != 0) out += '+' + std::to_string(p.offset);
    }
    return out;
}

// Names and the addresses they are tied to.
class ties {
  public:
    bool agree(const place &wanted, const void *address, const std::string &given_name) {
        if (wanted.any) return true;
        if (wanted.name.empty()) return address == nullptr;
        if (address == nullptr) return false;
        std::string full = wanted.name;
        if (wanted.offset != 0) full += '+' + std::to_string(wanted.offset);
        if (given_name == full) return true;
        if (!given_name.starts_with("0x")) return false;  // another named buffer
        const uint8_t *base = static_cast<const uint8_t *>(address) - wanted.offset;
        const auto known = bases_.find(wanted.name);
        if (known != bases_.end()) return known->second == base;
        for (const auto &[name, other] : bases_)
            if (other == base) return false;
        bases_[wanted.name] = base;
        return true;
    }

    void let_go(const std::string &name) { bases_.erase(name); }

  private:
    std::map<std::string, const uint8_t *> bases_;
};

bool agree(const expected_call &want, const call &got, ties &known) {
    if (want.name != got.name || want.arguments.size() != got.arguments.size()) return false;
    for (size_t i = 0; i < want.arguments.size(); ++i) {
        const argument &given = got.arguments[i];
        if (const uint64_t *value = std::get_if<uint64_t>(&want.arguments[i].is)) {
            if (given.is_pointer || given.number != *value) return false;
            continue;
        }
        if (!given.is_pointer) return false;
        if (const holding *content = std::get_if<holding>(&want.arguments[i].is)) {
            if (given.bytes != content->bytes) return false;
            continue;
        }
        const std::string name = recording_host::get().text_of({std::string(), {given}}).substr(1);
        if (!known.agree(std::get<place>(want.arguments[i].is), given.pointer, name)) return false;
    }
    return true;
}

}  // namespace

testing::AssertionResult calls_are(const expected &want) {
    const recording_host &host = recording_host::get();
    const std::vector<call> got = host.calls();
    ties known;
    size_t made = 0;
    const auto failure = [&](const std::string &expected_text) {
        return testing::AssertionFailure()
               << "call " << made + 1 << " of " << got.size() << "\n  expected: " << expected_text
               << "\n  made:     " << (made < got.size() ? host.text_of(got[made]) : "no call");
    };
    for (const expected_call &c : want) {
        if (c.name.empty()) {
            known.let_go(std::get<place>(c.arguments[0].is).name);
            continue;
        }
        if (made == got.size() || !agree(c, got[made], known)) return failure(text_of(c));
        ++made;
    }
    if (made != got.size()) return failure("no call");
    return testing::AssertionSuccess();
}

}  // namespace halden::test
