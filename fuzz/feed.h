#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace coffrelune::fuzz {

/// Cuts the bytes that a fuzzer gives into texts, at a byte that a person can type into a file of
/// the corpus as well (U+001E, "record separator").
class Feed {
  public:
    static constexpr char separator = '\x1E';

    Feed(const std::uint8_t* bytes, std::size_t size) {
        for (std::size_t i = 0; i < size; ++i) bytes_.push_back(static_cast<char>(bytes[i]));
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

/// Ends the fuzzer with the promise that did not hold.
inline void expect(bool holds, const char* promise) {
    if (holds) return;
    (void)std::fprintf(stderr, "FAUTE %s\n", promise);
    std::abort();
}

}  // namespace coffrelune::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);
