#include "platform/status.h"

namespace coffrelune {

Status Status::failure(std::uint32_t code, std::string path, std::string text) {
    Status status;
    status.code_ = code;
    status.path_ = std::move(path);
    status.text_ = std::move(text);
    return status;
}

}  // namespace coffrelune
