#pragma once

#include "platform/services.h"

namespace coffrelune {

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
