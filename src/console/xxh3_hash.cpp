#include "console/xxh3_hash.h"

// The header holds all of it: no library is needed where the program runs.
#define XXH_INLINE_ALL
#include <xxhash.h>

#include <array>

namespace coffrelune::console {
namespace {

class Xxh3Hash final : public ContentHash {
  public:
    void start() override { XXH3_64bits_reset(state_.get()); }

    void add(std::span<const char> bytes) override {
        XXH3_64bits_update(state_.get(), bytes.data(), bytes.size());
    }

    std::string text() override {
        constexpr std::array digits = {'0', '1', '2', '3', '4', '5', '6', '7',
                                       '8', '9', 'a', 'b', 'c', 'd', 'e', 'f'};
        constexpr int bits = 64;
        const XXH64_hash_t hash = XXH3_64bits_digest(state_.get());
        std::string text;
        for (int shift = bits - 4; shift >= 0; shift -= 4) {
            text += digits.at((hash >> static_cast<unsigned>(shift)) & 0xFU);
        }
        return text;
    }

  private:
    struct Free {
        void operator()(XXH3_state_t* state) const { XXH3_freeState(state); }
    };
    std::unique_ptr<XXH3_state_t, Free> state_{XXH3_createState()};
};

}  // namespace

std::unique_ptr<ContentHash> makeContentHash() {
    return std::make_unique<Xxh3Hash>();
}

}  // namespace coffrelune::console
