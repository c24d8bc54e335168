#pragma once

#include <string>
#include <string_view>

#include "platform/services.h"

namespace coffrelune {

/// UTF-8 to the UTF-16 of the system's calls. A byte that is no UTF-8 becomes a lone surrogate (see
/// platform/characters.h).
std::wstring wide(std::string_view text);

/// The way back. A name of the system may hold lone surrogates: each is given three bytes as if it
/// were a character, so that every name comes back from wide() as it was.
std::string narrow(std::wstring_view text);

/// A code page of the system. Near relatives are not taken for a character that it does not hold
/// (a name would come back as another one): "?" stands for each of those.
class AnsiCodePage final : public AnsiCodec {
  public:
    /// The one that the user's programs share.
    AnsiCodePage();
    explicit AnsiCodePage(unsigned codePage) : codePage_(codePage) {}

    unsigned codePage() const { return codePage_; }

    bool encode(const std::string& utf8, std::string& bytes) const override;
    std::string decode(const std::string& bytes) const override;

  private:
    unsigned codePage_;
};

}  // namespace coffrelune
