#include "platform/posix/posix_contents.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>

#include "platform/posix/interrupted.h"
#include "platform/posix/place.h"

namespace coffrelune {
namespace {

class FileContent final : public Content {
  public:
    FileContent(Place place, UniqueFd fd) : place_(std::move(place)), fd_(std::move(fd)) {}

    Status read(std::span<char> buffer, std::size_t& length) override {
        length = 0;
        while (length < buffer.size()) {
            const ssize_t count = uninterrupted(
                [&] { return ::read(fd_.get(), &buffer[length], buffer.size() - length); });
            if (count < 0) return failureAt(errno, place_);
            if (count == 0) return {};
            length += static_cast<std::size_t>(count);
        }
        return {};
    }

  private:
    Place place_;
    UniqueFd fd_;
};

class TextContent final : public Content {
  public:
    explicit TextContent(std::string text) : text_(std::move(text)) {}

    Status read(std::span<char> buffer, std::size_t& length) override {
        length = text_.copy(buffer.data(), buffer.size(), position_);
        position_ += length;
        return {};
    }

  private:
    std::string text_;
    std::size_t position_ = 0;
};

Status openLink(const Place& place, std::unique_ptr<Content>& content) {
    std::array<char, PATH_MAX> text{};
    const ssize_t length = ::readlink(place.native.c_str(), text.data(), text.size());
    if (length < 0) return failureAt(errno, place);
    content =
        std::make_unique<TextContent>(std::string(text.data(), static_cast<std::size_t>(length)));
    return {};
}

}  // namespace

Status PosixContents::open(const std::string& path, LinkRule links,
                           std::unique_ptr<Content>& content) {
    Place place;
    Status located = table_.paths().locate(path, place);
    if (!located.ok()) return located;
    const bool follows = links == LinkRule::follow;
    UniqueFd fd;
    // A pipe that has taken the file's place would keep the open waiting for a writer.
    const int flags = O_RDONLY | O_NOCTTY | O_NONBLOCK | (follows ? 0 : O_NOFOLLOW);
    int error = openPlace(place, flags | O_NOATIME, fd);
    if (error == EPERM) error = openPlace(place, flags, fd);  // somebody else's
    if (error == ELOOP && !follows) return openLink(place, content);
    if (error != 0) return failureAt(error, place);
    struct stat information {};
    if (::fstat(fd.get(), &information) != 0) return failureAt(errno, place);
    Status there = checkVolume(place, information.st_dev);
    if (!there.ok()) return there;
    if (!S_ISREG(information.st_mode)) return failureAt(EISDIR, place);
    // Where that is refused, what the system remembers is read.
    (void)::posix_fadvise(fd.get(), 0, 0, POSIX_FADV_DONTNEED);
    content = std::make_unique<FileContent>(std::move(place), std::move(fd));
    return {};
}

}  // namespace coffrelune
