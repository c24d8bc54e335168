#include "platform/posix/posix_output_file.h"

#include <fcntl.h>

#include "platform/posix/place.h"
#include "platform/posix/whole_file.h"

namespace coffrelune {
namespace {

class PosixOutputFile final : public OutputFile {
  public:
    PosixOutputFile(Place place, UniqueFd fd) : place_(std::move(place)), fd_(std::move(fd)) {}

    Status write(std::string_view text) override {
        const int error = writeAll(fd_.get(), text.data(), text.size());
        return error == 0 ? Status() : failureAt(error, place_);
    }

  private:
    Place place_;
    UniqueFd fd_;
};

}  // namespace

Status createOutputFile(const DriveTable& table, const std::string& path,
                        std::unique_ptr<OutputFile>& file) {
    Place place;
    Status located = table.paths().locate(path, place);
    if (!located.ok()) return located;
    constexpr mode_t usual = 0666;
    UniqueFd fd(
        open(place.native.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOCTTY | O_CLOEXEC, usual));
    if (!fd.valid()) return failureAt(errno, place);
    file = std::make_unique<PosixOutputFile>(std::move(place), std::move(fd));
    return {};
}

}  // namespace coffrelune
