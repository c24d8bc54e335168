#pragma once

#include "platform/services.h"

namespace coffrelune {

/// The code page of western European Windows, used as the ANSI code page on Linux.
/// https://encoding.spec.whatwg.org/index-windows-1252.txt (the five bytes that the code page
/// leaves free are the C1 controls of the same number, as Windows decodes them).
class Windows1252 final : public AnsiCodec {
  public:
    bool encode(const std::string& utf8, std::string& bytes) const override;
    std::string decode(const std::string& bytes) const override;
};

}  // namespace coffrelune
