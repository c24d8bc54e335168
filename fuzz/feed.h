#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace coffrelune::fuzz {

/// Cuts the bytes that a fuzzer gives into texts, at a byte that a person can type into a file of
/// the corpus as well (U+001E, "record separator").
class Feed {
  public:
    static constexpr char separator = '\x1E';

    Feed(const std::uint8_t* bytes, std::size_t size) {
        bytes_.assign(bytes, bytes + size);
        rest_ = bytes_;
    }
    Feed(const Feed&) = delete;
    Feed& operator=(const Feed&) = delete;

    bool ends() const { return rest_.empty(); }

    std::string text() {
        const std::size_t end = rest_.find(separator);
        std::string text(rest_.substr(0, end));
        rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
        return text;
    }

    std::string rest() {
        std::string text(rest_);
        rest_ = {};
        return text;
    }

  private:
    std::string bytes_;
    std::string_view rest_;
};

/// Places to cut a text at: around its last line end and around two others, and two more, which the
/// text itself chooses. All of them would take most of the time, and the next input has others.
inline std::vector<std::size_t> cutsOf(std::string_view text) {
    constexpr int ofEach = 2;
    constexpr std::uint64_t step = 1021;
    std::vector<std::size_t> cuts = {0};
    std::vector<std::size_t> ends;
    std::uint64_t number = text.size();
    for (std::size_t at = 0; at < text.size(); ++at) {
        number = number * 0x100000001B3 + static_cast<unsigned char>(text[at]);
        if (text[at] == '\n') ends.push_back(at);
    }
    const auto addEnd = [&](std::size_t end) { cuts.insert(cuts.end(), {end, end + 1}); };
    if (!ends.empty()) addEnd(ends.back());
    for (int i = 0; i < ofEach && ends.size() > 1; ++i, number /= step) {
        addEnd(ends[number % (ends.size() - 1)]);
    }
    for (int i = 0; i < ofEach && !text.empty(); ++i, number /= step) {
        cuts.push_back(number % text.size());
    }
    return cuts;
}

/// Ends the fuzzer with the promise that did not hold.
inline void expect(bool holds, const char* promise) {
    if (holds) return;
    (void)std::fprintf(stderr, "FAUTE %s\n", promise);
    std::abort();
}

}  // namespace coffrelune::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);
